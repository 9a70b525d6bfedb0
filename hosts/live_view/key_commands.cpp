// Which command each key gives, and the help about the keys.
#include "live_view/key_commands.hpp"

#include <algorithm>
#include <array>

namespace orvane::host {

namespace {

struct Binding {
  int key;
  ViewCommand command;
  ViewCommand withShift;
};

constexpr std::array bindings = {
    Binding{keys::up, ViewCommand::LongerExposure, ViewCommand::MuchLongerExposure},
    Binding{keys::down, ViewCommand::ShorterExposure, ViewCommand::MuchShorterExposure},
    Binding{keys::pageUp, ViewCommand::MuchLongerExposure, ViewCommand::MuchLongerExposure},
    Binding{keys::pageDown, ViewCommand::MuchShorterExposure, ViewCommand::MuchShorterExposure},
    Binding{keys::right, ViewCommand::MoreGain, ViewCommand::MuchMoreGain},
    Binding{keys::left, ViewCommand::LessGain, ViewCommand::MuchLessGain},
    Binding{keys::plus, ViewCommand::MoreOffset, ViewCommand::MoreOffset},
    Binding{keys::numberPadPlus, ViewCommand::MoreOffset, ViewCommand::MoreOffset},
    Binding{keys::minus, ViewCommand::LessOffset, ViewCommand::LessOffset},
    Binding{keys::numberPadMinus, ViewCommand::LessOffset, ViewCommand::LessOffset},
    Binding{'C', ViewCommand::ShowCameras, ViewCommand::NextCamera},
    Binding{'F', ViewCommand::NextFormat, ViewCommand::NextFormat},
    Binding{'B', ViewCommand::NextBin, ViewCommand::NextBin},
    Binding{'R', ViewCommand::ToggleRecording, ViewCommand::ToggleRecording},
    Binding{'T', ViewCommand::NextLimit, ViewCommand::NextLimit},
    Binding{'O', ViewCommand::ChooseRecordings, ViewCommand::ChooseSdk},
    Binding{keys::f5, ViewCommand::Rescan, ViewCommand::Rescan},
    Binding{'S', ViewCommand::ToggleStretch, ViewCommand::ToggleStretch},
    Binding{'Z', ViewCommand::ToggleZoom, ViewCommand::ToggleZoom},
    Binding{'N', ViewCommand::ToggleNightMode, ViewCommand::ToggleNightMode},
    Binding{'X', ViewCommand::ToggleCrosshair, ViewCommand::ToggleCrosshair},
    Binding{'H', ViewCommand::ToggleHelp, ViewCommand::ToggleHelp},
    Binding{keys::f1, ViewCommand::ToggleHelp, ViewCommand::ToggleHelp},
    Binding{'1', ViewCommand::LessBlack, ViewCommand::MuchLessBlack},
    Binding{'2', ViewCommand::MoreBlack, ViewCommand::MuchMoreBlack},
    Binding{'3', ViewCommand::LessWhite, ViewCommand::MuchLessWhite},
    Binding{'4', ViewCommand::MoreWhite, ViewCommand::MuchMoreWhite},
    Binding{'5', ViewCommand::LessGamma, ViewCommand::MuchLessGamma},
    Binding{'6', ViewCommand::MoreGamma, ViewCommand::MuchMoreGamma},
    Binding{'0', ViewCommand::ResetLevels, ViewCommand::ResetLevels},
    Binding{'W', ViewCommand::WholeFrame, ViewCommand::WholeFrame},
    Binding{keys::escape, ViewCommand::Dismiss, ViewCommand::Dismiss},
};

constexpr std::array bindingsWithControl = {
    Binding{keys::left, ViewCommand::RegionLeft, ViewCommand::RegionFarLeft},
    Binding{keys::right, ViewCommand::RegionRight, ViewCommand::RegionFarRight},
    Binding{keys::up, ViewCommand::RegionUp, ViewCommand::RegionFarUp},
    Binding{keys::down, ViewCommand::RegionDown, ViewCommand::RegionFarDown},
};

constexpr std::array lines = {
    HelpLine{"Up  Down", "exposure longer, shorter; with Shift ten times"},
    HelpLine{"Right  Left", "gain more, less; with Shift in large steps"},
    HelpLine{"+  \u2212", "offset (black level) more, less"},
    HelpLine{"R", "start and stop recording to a SER file"},
    HelpLine{"T", "time limit of recordings: the next one, or none"},
    HelpLine{"O", "folder for recordings; with Shift that of the SDKs"},
    HelpLine{"C", "choose a camera; with Shift the next one"},
    HelpLine{"F", "next pixel format"},
    HelpLine{"B", "next binning factor"},
    HelpLine{"F5", "look for cameras again"},
    HelpLine{"S", "brighten the picture, or show it as it is"},
    HelpLine{"1 2   3 4   5 6", "black, white, gamma less, more; 0 resets them"},
    HelpLine{"Z", "whole frame, or pixel by pixel (drag to move)"},
    HelpLine{"X", "crosshair"},
    HelpLine{"N", "night mode: everything red"},
    HelpLine{"Click", "measure the focus of the star that is clicked"},
    HelpLine{"Right drag", "record only this region (or drag with Shift)"},
    HelpLine{"Ctrl + arrows", "move the region; with Shift in large steps"},
    HelpLine{"W", "record the whole frame"},
    HelpLine{"F1  H", "show and hide these keys"},
    HelpLine{"Esc", "close what lies over the picture"},
};

}  // namespace

ViewCommand commandOfKey(const KeyPress& press) {
  const std::span<const Binding> table =
      press.withControl ? std::span<const Binding>(bindingsWithControl) : bindings;
  const auto found = std::ranges::find(table, press.key, &Binding::key);
  if (found == table.end()) {
    return ViewCommand::None;
  }
  return press.withShift ? found->withShift : found->command;
}

std::span<const HelpLine> helpLines() {
  return lines;
}

}  // namespace orvane::host
