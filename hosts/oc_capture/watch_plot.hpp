// What a watch has seen as a plot over time.
#pragma once

#include <string>

#include "imaging/image.hpp"
#include "oc_capture/watch_history.hpp"

namespace orvane::host {

/// Temperature, samples and saturated pixels, one below the other. There must be a point.
ScreenImage watchPlot(const WatchHistory& history, const std::string& title);

}  // namespace orvane::host
