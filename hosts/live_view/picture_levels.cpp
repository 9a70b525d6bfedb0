// Black point, white point and gamma of the picture. They do not change the frames, so not what is
// recorded.
#include "live_view/picture_levels.hpp"

#include <algorithm>
#include <cmath>
#include <iterator>

#include "system/text.hpp"

namespace orvane::host {

namespace {

constexpr double largestGamma = 5;   // the smallest is the reciprocal
constexpr double leastRange = 0.02;  // between the places of black and white

struct Step {
  ViewCommand command;
  LevelKind kind;
  int direction;
  bool isLarge = false;
};

constexpr Step commandSteps[] = {
    {ViewCommand::LessBlack, LevelKind::Black, -1},
    {ViewCommand::MoreBlack, LevelKind::Black, 1},
    {ViewCommand::LessWhite, LevelKind::White, -1},
    {ViewCommand::MoreWhite, LevelKind::White, 1},
    {ViewCommand::LessGamma, LevelKind::Gamma, -1},
    {ViewCommand::MoreGamma, LevelKind::Gamma, 1},
    {ViewCommand::MuchLessBlack, LevelKind::Black, -1, true},
    {ViewCommand::MuchMoreBlack, LevelKind::Black, 1, true},
    {ViewCommand::MuchLessWhite, LevelKind::White, -1, true},
    {ViewCommand::MuchMoreWhite, LevelKind::White, 1, true},
    {ViewCommand::MuchLessGamma, LevelKind::Gamma, -1, true},
    {ViewCommand::MuchMoreGamma, LevelKind::Gamma, 1, true},
};

double placeOfLevel(double level) {
  return std::sqrt(std::clamp(level, 0.0, 1.0));
}

double levelAt(double place) {
  return place * place;
}

}  // namespace

double PictureLevels::applied(double brightness) const {
  const double relative = std::clamp((brightness - black) / (white - black), 0.0, 1.0);
  return gamma == 1 ? relative : std::pow(relative, 1 / gamma);
}

double PictureLevels::inverse(double shown) const {
  return black + std::pow(shown, gamma) * (white - black);
}

double placeOf(LevelKind kind, const PictureLevels& now) {
  switch (kind) {
    case LevelKind::Black:
      return placeOfLevel(now.black);
    case LevelKind::White:
      return placeOfLevel(now.white);
    case LevelKind::Gamma:
      break;
  }
  return std::clamp(0.5 + 0.5 * std::log(now.gamma) / std::log(largestGamma), 0.0, 1.0);
}

PictureLevels levelsAfter(LevelKind kind, double place, const PictureLevels& now) {
  PictureLevels after = now;
  const double inside = std::clamp(place, 0.0, 1.0);
  switch (kind) {
    case LevelKind::Black:
      after.black = levelAt(std::min(inside, placeOfLevel(now.white) - leastRange));
      break;
    case LevelKind::White:
      after.white = levelAt(std::max(inside, placeOfLevel(now.black) + leastRange));
      break;
    case LevelKind::Gamma:
      after.gamma = inside == 0.5 ? 1 : std::pow(largestGamma, 2 * inside - 1);
      break;
  }
  return after;
}

std::optional<PictureLevels> levelsAfter(ViewCommand command, const PictureLevels& now) {
  if (command == ViewCommand::ResetLevels) {
    return PictureLevels();
  }
  const Step* const step = std::ranges::find(commandSteps, command, &Step::command);
  if (step == std::end(commandSteps)) {
    return std::nullopt;
  }
  // Whole hundredths, so that steps forth and back lead to the same level.
  const double hundredths = std::round(100 * placeOf(step->kind, now));
  return levelsAfter(step->kind, (hundredths + step->direction * (step->isLarge ? 10 : 1)) / 100,
                     now);
}

std::string levelName(LevelKind kind) {
  return kind == LevelKind::Black ? "Black" : kind == LevelKind::White ? "White" : "Gamma";
}

std::string levelText(LevelKind kind, const PictureLevels& now) {
  if (kind == LevelKind::Gamma) {
    return decimal(now.gamma, 2);
  }
  const double percent = 100 * (kind == LevelKind::Black ? now.black : now.white);
  const int decimals = percent <= 0 || percent >= 9.95 ? 0 : percent < 0.95 ? 2 : 1;
  return decimal(percent, decimals) + " %";
}

}  // namespace orvane::host
