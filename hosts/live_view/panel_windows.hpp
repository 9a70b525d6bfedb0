// Draws the panel beside the picture and what is laid over it.
#pragma once

#include <cstddef>
#include <string>

#include "live_view/gdi_canvas_windows.hpp"
#include "live_view/live_controls.hpp"
#include "live_view/live_picture.hpp"
#include "live_view/live_session.hpp"
#include "live_view/live_texts.hpp"
#include "live_view/window_layout.hpp"

namespace orvane::host {

/// Everything that the panel and the status line show.
struct PanelContent {
  const LiveState& state;
  const Controls& controls;
  const LivePicture& picture;
};

/// The panel and the status line.
void drawPanel(GdiCanvas& canvas, const WindowLayout& layout, const PanelContent& content);

/// How many lines this notice needs, in a layout for one line.
int noticeLines(GdiCanvas& canvas, const WindowLayout& layout, const std::string& notice);

// What lies over the picture, whose area is given.

/// A ring around the star that is measured.
void drawStarMark(GdiCanvas& canvas, const PixelRect& picture, const PictureView& view,
                  const Star& star);

/// The outline of the region that is recorded, and its size.
void drawRegion(GdiCanvas& canvas, const PixelRect& picture, const PictureView& view,
                const Region& region);

void drawCrosshair(GdiCanvas& canvas, const PixelRect& picture, const PictureView& view);

/// How far a long exposure is, at the lower edge.
void drawCountdown(GdiCanvas& canvas, const PixelRect& picture, const Countdown& countdown);

void drawHelp(GdiCanvas& canvas, const PixelRect& picture);

ListPlace cameraListPlace(const PixelRect& picture, std::size_t cameras, int dpi);

void drawCameraList(GdiCanvas& canvas, const PixelRect& picture, const LiveState& state,
                    std::size_t selected);

}  // namespace orvane::host
