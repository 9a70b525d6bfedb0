// Black point, white point and gamma of the picture. They do not change the frames, so not what is
// recorded.
#pragma once

#include <array>
#include <optional>
#include <string>

#include "live_view/key_commands.hpp"

namespace orvane::host {

struct PictureLevels {
  double black = 0;  ///< this brightness of the picture and any below become black; 0 to 1
  double white = 1;  ///< this brightness and any above become white; 0 to 1
  double gamma = 1;  ///< more than 1 brightens what lies between

  bool operator==(const PictureLevels&) const = default;

  /// The brightness that is shown for this one; both 0 to 1.
  double applied(double brightness) const;

  /// The brightness for which this one is shown.
  double inverse(double shown) const;
};

enum class LevelKind { Black, White, Gamma };

inline constexpr std::array levelKinds = {LevelKind::Black, LevelKind::White, LevelKind::Gamma};

/// A level's place on its slider, 0 to 1. The scale of black and white is finer for low levels,
/// that of gamma is logarithmic with 1 in the middle.
double placeOf(LevelKind kind, const PictureLevels& now);

/// The levels after a slider was moved to this place. Black stays below white.
PictureLevels levelsAfter(LevelKind kind, double place, const PictureLevels& now);

/// The levels after this command; none if it changes no level.
std::optional<PictureLevels> levelsAfter(ViewCommand command, const PictureLevels& now);

/// "Black", "White" or "Gamma".
std::string levelName(LevelKind kind);

/// "12 %", "2.3 %", "0.04 %" or "1.25".
std::string levelText(LevelKind kind, const PictureLevels& now);

}  // namespace orvane::host
