// Draws the panel beside the picture and what is laid over it.
#include "live_view/panel_windows.hpp"

#include <algorithm>
#include <cmath>
#include <utility>

#include "live_view/key_commands.hpp"
#include "live_view/live_texts.hpp"
#include "system/text.hpp"

namespace orvane::host {

namespace {

PaletteColor colorOf(NoticeKind kind) {
  switch (kind) {
    case NoticeKind::Warning:
      return palette::warning;
    case NoticeKind::Error:
      return palette::error;
    case NoticeKind::Information:
      break;
  }
  return palette::text;
}

// One drawing of the panel and the status line.
class PanelDrawing {
 public:
  PanelDrawing(GdiCanvas& canvas, const WindowLayout& layout, const PanelContent& content)
      : canvas_(canvas), layout_(layout), content_(content) {}

  void draw() {
    canvas_.fill(layout_.panel, palette::panel);
    canvas_.fill({layout_.panel.left, layout_.panel.top, at(1), layout_.panel.height},
                 palette::line);
    drawCamera();
    drawSliders();
    drawHistogram();
    drawFocus();
    drawFacts();
    drawRecordButton();
    drawStatusLine();
  }

 private:
  int at(int length) const { return scaled(length, canvas_.dpi()); }

  void captioned(const PixelRect& rect, const std::string& caption, const std::string& value) {
    canvas_.text(rect, caption, TextSize::Normal, palette::quietText);
    canvas_.text(rect, value, TextSize::Normal, palette::text, TextAlign::Right);
  }

  void drawCamera() {
    const std::string& name = content_.state.cameraName();
    canvas_.text(layout_.cameraName, name.empty() ? "No camera" : name, TextSize::Title,
                 isLive() ? palette::text : palette::quietText);
    canvas_.text(layout_.cameraFormat, formatText(content_.state), TextSize::Small,
                 palette::quietText);
  }

  void drawSliders() {
    const ControlsRequest& now = content_.controls;
    drawSlider(SliderKind::Exposure, "Exposure", exposureText(now.exposureUs));
    drawSlider(SliderKind::Gain, "Gain", std::to_string(now.gain));
    drawSlider(SliderKind::Offset, "Offset", std::to_string(now.offset));
  }

  void drawSlider(SliderKind kind, const std::string& caption, const std::string& value) {
    const SliderPlace& place = layout_.sliders.at(static_cast<std::size_t>(kind));
    captioned(place.caption, caption, isLive() ? value : unknownText);
    const int height = at(4);
    const int top = place.track.top + (place.track.height - height) / 2;
    const PixelRect track{place.track.left, top, place.track.width, height};
    canvas_.fill(track, palette::raised);
    if (!isLive()) {
      return;
    }
    const double part = placeOf(kind, content_.controls, *content_.state.camera());
    const int knobWidth = at(8);
    const int way = static_cast<int>(std::lround(part * (track.width - knobWidth)));
    canvas_.fill({track.left, track.top, way, height}, palette::accent);
    const int knobHeight = at(16);
    canvas_.fill({track.left + way, place.track.top + (place.track.height - knobHeight) / 2,
                  knobWidth, knobHeight},
                 palette::accent);
  }

  void drawHistogram() {
    const Histogram& histogram = content_.picture.measurements().histogram;
    const PixelRect& plot = layout_.histogram;
    captioned(layout_.histogramCaption, "Histogram",
              isMeasured() ? saturationText(histogram.saturated) : "");
    canvas_.fill(plot, palette::raised);
    if (!isMeasured()) {
      return;
    }
    if (histogram.channels == 1) {
      drawCurve(histogram.channel[0], palette::greyCurve);
    } else {
      drawCurve(histogram.channel[0], palette::redCurve);
      drawCurve(histogram.channel[2], palette::blueCurve);
      drawCurve(histogram.channel[1], palette::greenCurve);
    }
    canvas_.text(layout_.histogramNumbers, histogramText(histogram), TextSize::Small,
                 palette::quietText);
  }

  // Heights are logarithms, so that a few bright pixels can be seen beside a dark sky.
  void drawCurve(const ChannelHistogram& channel, const PaletteColor& color) {
    const PixelRect& plot = layout_.histogram;
    const std::uint32_t most = *std::max_element(channel.bins.begin(), channel.bins.end());
    const double highest = std::log1p(static_cast<double>(most));
    if (highest <= 0) {
      return;
    }
    std::vector<POINT> points;
    points.reserve(channel.bins.size());
    const int room = plot.height - at(6);
    const auto isUsed = [](std::uint32_t count) { return count > 0; };
    const auto first = std::find_if(channel.bins.begin(), channel.bins.end(), isUsed);
    const auto last = std::find_if(channel.bins.rbegin(), channel.bins.rend(), isUsed);
    const auto end = static_cast<std::size_t>(channel.bins.rend() - last);
    for (auto bin = static_cast<std::size_t>(first - channel.bins.begin()); bin < end; ++bin) {
      const double part = std::log1p(static_cast<double>(channel.bins.at(bin))) / highest;
      points.push_back(
          {plot.left + static_cast<LONG>(bin) * (plot.width - 1) /
                           static_cast<LONG>(channel.bins.size() - 1),
           plot.top + plot.height - at(2) - static_cast<LONG>(std::lround(part * room))});
    }
    canvas_.polyline(points, color);
  }

  void drawFocus() {
    const Focus& focus = content_.picture.measurements().focus;
    captioned(layout_.focusCaption, "Focus", "");
    if (!isMeasured()) {
      canvas_.fill(layout_.focusTrend, palette::raised);
      return;
    }
    canvas_.text(layout_.focusCaption, focusCaption(focus), TextSize::Small, palette::quietText,
                 TextAlign::Right);
    canvas_.text(layout_.focusFigure, focusText(focus), TextSize::Figure, palette::text);
    if (content_.picture.measurements().leastDiameter) {
      canvas_.text(layout_.focusFigure,
                   "best " + decimal(*content_.picture.measurements().leastDiameter, 2) + " px",
                   TextSize::Normal, palette::quietText, TextAlign::Right);
    }
    drawTrend();
  }

  void drawTrend() {
    const PixelRect& plot = layout_.focusTrend;
    canvas_.fill(plot, palette::raised);
    const std::deque<double>& diameters = content_.picture.measurements().diameters;
    if (diameters.size() < 2) {
      return;
    }
    const double most = *std::max_element(diameters.begin(), diameters.end());
    // From 0, so that the noise of a good focus does not fill the plot.
    const double scale = (plot.height - at(6)) / (most * 1.1);
    const int step = plot.width - 1;
    std::vector<POINT> points;
    const std::size_t missing = LivePicture::trendLength - diameters.size();
    for (std::size_t index = 0; index < diameters.size(); ++index) {
      const auto number = static_cast<LONG>(index + missing);
      points.push_back({plot.left + number * step / static_cast<LONG>(LivePicture::trendLength - 1),
                        plot.top + plot.height - at(3) -
                            static_cast<LONG>(std::lround(diameters[index] * scale))});
    }
    canvas_.polyline(points, palette::accent);
  }

  void drawFacts() {
    const LiveState& state = content_.state;
    const std::pair<const char*, std::string> facts[] = {
        {"Frame rate", rateText(state.capture.framesPerSecond)},
        {"Temperature", temperatureText(state.capture.temperature)},
        {"Frames", isLive() ? std::to_string(state.capture.frames) : unknownText},
        {"Picture", std::string(content_.picture.isStretched() ? "brightened" : "as it is") +
                        (content_.picture.isPixelByPixel() ? ", 1:1" : ", whole")},
    };
    const int height = at(21);
    PixelRect line{layout_.facts.left, layout_.facts.top, layout_.facts.width, height};
    for (const auto& [caption, value] : facts) {
      if (line.top + height > layout_.facts.top + layout_.facts.height) {
        break;
      }
      captioned(line, caption, value);
      line.top += height;
    }
  }

  void drawRecordButton() {
    const PixelRect& button = layout_.record;
    const auto& recording = content_.state.recording;
    canvas_.fill(button, palette::raised);
    canvas_.outline(button, recording ? palette::recording : palette::line);
    const int side = at(12);
    const PixelRect sign{button.left + at(14), button.top + (button.height - side) / 2, side, side};
    const PixelRect label{sign.left + side + at(12), button.top,
                          button.width - at(14) - side - at(24), button.height};
    if (recording) {
      canvas_.fill(sign, palette::recording);
      canvas_.text(label, recordingText(*recording), TextSize::Normal, palette::text);
    } else {
      canvas_.dot(sign, isLive() ? palette::recording : palette::line);
      canvas_.text(label, "Record", TextSize::Normal,
                   isLive() ? palette::text : palette::quietText);
    }
    canvas_.text(label, "R", TextSize::Small, palette::quietText, TextAlign::Right);
  }

  void drawStatusLine() {
    const PixelRect& line = layout_.status;
    const int margin = at(16);
    canvas_.fill(line, palette::panel);
    canvas_.fill({line.left, line.top, line.width, at(1)}, palette::line);
    const std::string keys = "F1  keys";
    const int keysWidth = canvas_.textWidth(keys, TextSize::Small);
    const Notice notice = statusLine(content_.state);
    canvas_.text({line.left + margin, line.top, line.width - 3 * margin - keysWidth, line.height},
                 notice.text, TextSize::Normal, colorOf(notice.kind));
    canvas_.text({line.left, line.top, line.width - margin, line.height}, keys, TextSize::Small,
                 palette::quietText, TextAlign::Right);
  }

  bool isLive() const { return content_.state.phase == LivePhase::Streaming; }
  bool isMeasured() const { return isLive() && content_.picture.measurements().areThere; }

  GdiCanvas& canvas_;
  const WindowLayout& layout_;
  const PanelContent& content_;
};

void drawBox(GdiCanvas& canvas, const ListPlace& list, const std::string& title) {
  canvas.fill(list.box, palette::panel);
  canvas.outline(list.box, palette::line);
  canvas.text(list.title, title, TextSize::Title, palette::text);
}

}  // namespace

void drawPanel(GdiCanvas& canvas, const WindowLayout& layout, const PanelContent& content) {
  PanelDrawing(canvas, layout, content).draw();
}

void drawEmptyPicture(GdiCanvas& canvas, const WindowLayout& layout, const LiveState& state) {
  canvas.text(layout.picture, emptyPictureText(state), TextSize::Title, palette::quietText,
              TextAlign::Centre);
}

void drawStarMark(GdiCanvas& canvas, const WindowLayout& layout, const PictureView& view,
                  const Star& star) {
  const int x = layout.picture.left + static_cast<int>(std::lround(view.screenX(star.x)));
  const int y = layout.picture.top + static_cast<int>(std::lround(view.screenY(star.y)));
  const int radius = std::max(scaled(11, canvas.dpi()),
                              static_cast<int>(std::lround(star.halfFluxDiameter * view.scale)));
  const PixelRect& shown = layout.picture;
  const PixelRect inside{shown.left + radius, shown.top + radius, shown.width - 2 * radius,
                         shown.height - 2 * radius};
  if (inside.contains(x, y)) {
    canvas.circle(x, y, radius, palette::accent);
  }
}

void drawCrosshair(GdiCanvas& canvas, const WindowLayout& layout, const PictureView& view) {
  const int left = layout.picture.left + view.onScreen.left;
  const int top = layout.picture.top + view.onScreen.top;
  const int middleX = left + view.onScreen.width / 2;
  const int middleY = top + view.onScreen.height / 2;
  const int line = scaled(1, canvas.dpi());
  canvas.fill({left, middleY, view.onScreen.width, line}, palette::accent);
  canvas.fill({middleX, top, line, view.onScreen.height}, palette::accent);
  canvas.circle(middleX, middleY, scaled(24, canvas.dpi()), palette::accent);
}

void drawHelp(GdiCanvas& canvas, const WindowLayout& layout) {
  const auto lines = helpLines();
  const int dpi = canvas.dpi();
  const ListPlace list = placeList(layout.picture, 520, static_cast<int>(lines.size()), dpi);
  canvas.dim(layout.picture);
  drawBox(canvas, list, "Keys");
  const int keysWidth = scaled(112, dpi);
  for (int number = 0; number < list.rows; ++number) {
    const HelpLine& line = lines[static_cast<std::size_t>(number)];
    const PixelRect row = list.row(number);
    canvas.text({row.left, row.top, keysWidth, row.height}, std::string(line.keys),
                TextSize::Normal, palette::accent);
    canvas.text({row.left + keysWidth, row.top, row.width - keysWidth, row.height},
                std::string(line.meaning), TextSize::Normal, palette::text);
  }
}

ListPlace cameraListPlace(const WindowLayout& layout, std::size_t cameras, int dpi) {
  return placeList(layout.picture, 540, static_cast<int>(cameras), dpi);
}

void drawCameraList(GdiCanvas& canvas, const WindowLayout& layout, const LiveState& state,
                    std::size_t selected) {
  const int dpi = canvas.dpi();
  const ListPlace list = cameraListPlace(layout, state.cameras.size(), dpi);
  canvas.dim(layout.picture);
  drawBox(canvas, list, state.cameras.empty() ? "No cameras" : "Choose a camera");
  const int inset = scaled(8, dpi);
  for (int number = 0; number < list.rows; ++number) {
    const auto position = static_cast<std::size_t>(number);
    const oc::CameraInfo& camera = state.cameras[position];
    const PixelRect row = list.row(number);
    const bool isSelected = position == selected;
    if (isSelected) {
      canvas.fill(row, palette::raised);
      canvas.fill({row.left, row.top, scaled(3, dpi), row.height}, palette::accent);
    }
    const PixelRect inner{row.left + inset, row.top, row.width - 2 * inset, row.height};
    canvas.text(inner, std::to_string(position + 1), TextSize::Small, palette::quietText);
    canvas.text({inner.left + scaled(24, dpi), inner.top, inner.width / 2, inner.height},
                camera.name, TextSize::Normal,
                state.chosen == position ? palette::accent : palette::text);
    canvas.text(inner, cameraDetails(camera), TextSize::Small, palette::quietText,
                TextAlign::Right);
  }
}

}  // namespace orvane::host
