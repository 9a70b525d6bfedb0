// The region of the frame that is recorded: drawn with the mouse, moved with keys.
#include "live_view/region_choice.hpp"

#include <algorithm>
#include <array>
#include <cmath>
#include <utility>

namespace orvane::host {

namespace {

constexpr int largeMove = 32;

struct Move {
  ViewCommand command;
  RegionMove move;
};

constexpr std::array moves = {
    Move{ViewCommand::RegionLeft, {-1, 0}},
    Move{ViewCommand::RegionRight, {1, 0}},
    Move{ViewCommand::RegionUp, {0, -1}},
    Move{ViewCommand::RegionDown, {0, 1}},
    Move{ViewCommand::RegionFarLeft, {-largeMove, 0}},
    Move{ViewCommand::RegionFarRight, {largeMove, 0}},
    Move{ViewCommand::RegionFarUp, {0, -largeMove}},
    Move{ViewCommand::RegionFarDown, {0, largeMove}},
};

// Start and length of one side.
std::pair<int, int> sideBetween(double one, double other, int frameSide) {
  const auto inside = [&](double place) {
    return static_cast<int>(std::lround(std::clamp(place, 0.0, static_cast<double>(frameSide))));
  };
  const int start = inside(std::min(one, other));
  return {start, (inside(std::max(one, other)) - start) / 2 * 2};
}

}  // namespace

std::optional<Region> regionBetween(double x1, double y1, double x2, double y2, int frameWidth,
                                    int frameHeight) {
  const auto [left, width] = sideBetween(x1, x2, frameWidth);
  const auto [top, height] = sideBetween(y1, y2, frameHeight);
  if (width < leastRegionSide || height < leastRegionSide) {
    return std::nullopt;
  }
  return Region{left, top, width, height};
}

std::optional<RegionMove> regionMoveOf(ViewCommand command) {
  const auto* const found = std::ranges::find(moves, command, &Move::command);
  return found == moves.end() ? std::nullopt : std::optional(found->move);
}

Region movedRegion(const Region& region, const RegionMove& move, int frameWidth, int frameHeight) {
  Region moved = region;
  moved.left = std::clamp(region.left + move.right, 0, std::max(0, frameWidth - region.width));
  moved.top = std::clamp(region.top + move.down, 0, std::max(0, frameHeight - region.height));
  return moved;
}

PixelRect regionOutline(const Region& region, const PictureView& view) {
  const auto x = [&](int frameX) { return static_cast<int>(std::lround(view.screenX(frameX))); };
  const auto y = [&](int frameY) { return static_cast<int>(std::lround(view.screenY(frameY))); };
  const int left = x(region.left);
  const int top = y(region.top);
  return {left, top, x(region.left + region.width) - left, y(region.top + region.height) - top};
}

}  // namespace orvane::host
