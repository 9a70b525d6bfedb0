// Which key does what.
#include "live_view/key_commands.hpp"

#include <gtest/gtest.h>

#include <set>
#include <string_view>

namespace orvane::host {

namespace {

TEST(CommandOfKey, KeysOfTheHelpDoWhatItSays) {
  const std::pair<int, ViewCommand> plain[] = {
      {keys::up, ViewCommand::LongerExposure}, {keys::down, ViewCommand::ShorterExposure},
      {keys::right, ViewCommand::MoreGain},    {keys::left, ViewCommand::LessGain},
      {keys::plus, ViewCommand::MoreOffset},   {keys::numberPadPlus, ViewCommand::MoreOffset},
      {keys::minus, ViewCommand::LessOffset},  {keys::numberPadMinus, ViewCommand::LessOffset},
      {'R', ViewCommand::ToggleRecording},     {'C', ViewCommand::ShowCameras},
      {'F', ViewCommand::NextFormat},          {'B', ViewCommand::NextBin},
      {'T', ViewCommand::NextLimit},           {'O', ViewCommand::ChooseRecordings},
      {keys::f5, ViewCommand::Rescan},         {'S', ViewCommand::ToggleStretch},
      {'Z', ViewCommand::ToggleZoom},          {'X', ViewCommand::ToggleCrosshair},
      {'N', ViewCommand::ToggleNightMode},     {'H', ViewCommand::ToggleHelp},
      {keys::f1, ViewCommand::ToggleHelp},     {keys::escape, ViewCommand::Dismiss},
  };
  for (const auto& [key, command] : plain) {
    EXPECT_EQ(commandOfKey({key, false}), command) << key;
  }
}

TEST(CommandOfKey, ShiftMakesLargerSteps) {
  EXPECT_EQ(commandOfKey({keys::up, true}), ViewCommand::MuchLongerExposure);
  EXPECT_EQ(commandOfKey({keys::down, true}), ViewCommand::MuchShorterExposure);
  EXPECT_EQ(commandOfKey({keys::right, true}), ViewCommand::MuchMoreGain);
  EXPECT_EQ(commandOfKey({keys::left, true}), ViewCommand::MuchLessGain);
  EXPECT_EQ(commandOfKey({'C', true}), ViewCommand::NextCamera);
  EXPECT_EQ(commandOfKey({'O', true}), ViewCommand::ChooseSdk);
  EXPECT_EQ(commandOfKey({keys::plus, true}), ViewCommand::MoreOffset);  // where + needs it
}

TEST(CommandOfKey, DigitsChangeTheLevels) {
  const std::pair<int, std::pair<ViewCommand, ViewCommand>> digits[] = {
      {'1', {ViewCommand::LessBlack, ViewCommand::MuchLessBlack}},
      {'2', {ViewCommand::MoreBlack, ViewCommand::MuchMoreBlack}},
      {'3', {ViewCommand::LessWhite, ViewCommand::MuchLessWhite}},
      {'4', {ViewCommand::MoreWhite, ViewCommand::MuchMoreWhite}},
      {'5', {ViewCommand::LessGamma, ViewCommand::MuchLessGamma}},
      {'6', {ViewCommand::MoreGamma, ViewCommand::MuchMoreGamma}},
      {'0', {ViewCommand::ResetLevels, ViewCommand::ResetLevels}},
  };
  for (const auto& [key, commands] : digits) {
    EXPECT_EQ(commandOfKey({key, false}), commands.first) << key;
    EXPECT_EQ(commandOfKey({key, true}), commands.second) << key;
  }
}

TEST(CommandOfKey, WithControlArrowsMoveTheRegion) {
  const std::pair<int, std::pair<ViewCommand, ViewCommand>> arrows[] = {
      {keys::left, {ViewCommand::RegionLeft, ViewCommand::RegionFarLeft}},
      {keys::right, {ViewCommand::RegionRight, ViewCommand::RegionFarRight}},
      {keys::up, {ViewCommand::RegionUp, ViewCommand::RegionFarUp}},
      {keys::down, {ViewCommand::RegionDown, ViewCommand::RegionFarDown}},
  };
  for (const auto& [key, commands] : arrows) {
    EXPECT_EQ(commandOfKey({key, false, true}), commands.first) << key;
    EXPECT_EQ(commandOfKey({key, true, true}), commands.second) << key;
  }
  EXPECT_EQ(commandOfKey({'R', false, true}), ViewCommand::None);
  EXPECT_EQ(commandOfKey({'W', false}), ViewCommand::WholeFrame);
}

TEST(CommandOfKey, OtherKeysDoNothing) {
  EXPECT_EQ(commandOfKey({'Q', false}), ViewCommand::None);
  EXPECT_EQ(commandOfKey({0x10, true}), ViewCommand::None);          // Shift itself
  EXPECT_EQ(commandOfKey({keys::enter, false}), ViewCommand::None);  // for the list of cameras only
}

// A letter that the help names does something, and one that does something is named.
TEST(HelpLines, SayEachKeyOnceAndNameEveryLetterThatDoesSomething) {
  std::set<std::string_view> named;
  for (const HelpLine& line : helpLines()) {
    EXPECT_TRUE(named.insert(line.keys).second) << line.keys;
    EXPECT_FALSE(line.meaning.empty());
  }
  named.insert("H");  // beside F1
  for (char letter = 'A'; letter <= 'Z'; ++letter) {
    EXPECT_EQ(commandOfKey({letter, false}) != ViewCommand::None,
              named.contains(std::string_view(&letter, 1)))
        << letter;
  }
}

}  // namespace

}  // namespace orvane::host
