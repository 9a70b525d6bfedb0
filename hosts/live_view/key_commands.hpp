// Which command each key gives, and the help about the keys.
#pragma once

#include <span>
#include <string_view>

namespace orvane::host {

/// The commands of keys and buttons.
enum class ViewCommand {
  None,
  LongerExposure,
  ShorterExposure,
  MuchLongerExposure,
  MuchShorterExposure,
  MoreGain,
  LessGain,
  MuchMoreGain,
  MuchLessGain,
  MoreOffset,
  LessOffset,
  ShowCameras,
  NextCamera,
  NextFormat,
  NextBin,
  ToggleRecording,
  Rescan,
  ChooseRecordings,
  ChooseSdk,
  NextLimit,
  ToggleStretch,
  ToggleZoom,
  ToggleNightMode,
  ToggleCrosshair,
  LessBlack,
  MoreBlack,
  LessWhite,
  MoreWhite,
  LessGamma,
  MoreGamma,
  MuchLessBlack,
  MuchMoreBlack,
  MuchLessWhite,
  MuchMoreWhite,
  MuchLessGamma,
  MuchMoreGamma,
  ResetLevels,
  RegionLeft,
  RegionRight,
  RegionUp,
  RegionDown,
  RegionFarLeft,
  RegionFarRight,
  RegionFarUp,
  RegionFarDown,
  WholeFrame,
  ToggleHelp,
  Dismiss,
};

/// A key that was pressed: the character of a capital letter or a digit, or a virtual key code of
/// Windows.
struct KeyPress {
  int key = 0;
  bool withShift = false;
  bool withControl = false;
};

namespace keys {
constexpr int enter = 0x0D;
constexpr int escape = 0x1B;
constexpr int pageUp = 0x21;
constexpr int pageDown = 0x22;
constexpr int left = 0x25;
constexpr int up = 0x26;
constexpr int right = 0x27;
constexpr int down = 0x28;
constexpr int numberPadPlus = 0x6B;
constexpr int numberPadMinus = 0x6D;
constexpr int f1 = 0x70;
constexpr int f5 = 0x74;
constexpr int plus = 0xBB;
constexpr int minus = 0xBD;
}  // namespace keys

/// The key's command, or None.
ViewCommand commandOfKey(const KeyPress& press);

/// One line of the help.
struct HelpLine {
  std::string_view keys;
  std::string_view meaning;
};

/// What the keys do, in the order to be shown.
std::span<const HelpLine> helpLines();

}  // namespace orvane::host
