// Draws the panel beside the picture and what is laid over it.
#include "live_view/panel_windows.hpp"

#include <algorithm>
#include <array>
#include <cmath>
#include <deque>
#include <optional>
#include <utility>

#include "live_view/key_commands.hpp"
#include "system/text.hpp"

namespace orvane::host {

namespace {

constexpr const char* keysText = "F1  keys";

PaletteColor colorOf(NoticeKind kind) {
  return kind == NoticeKind::Error     ? palette::error
         : kind == NoticeKind::Warning ? palette::warning
                                       : palette::text;
}

// A strip of this height in the middle.
PixelRect middleOf(const PixelRect& rect, int height) {
  return {rect.left, rect.top + (rect.height - height) / 2, rect.width, height};
}

// What is left without this much of the left side.
PixelRect restOf(const PixelRect& rect, int width) {
  return {rect.left + width, rect.top, rect.width - width, rect.height};
}

// One drawing of the panel and the status line.
class PanelDrawing {
 public:
  PanelDrawing(GdiCanvas& canvas, const WindowLayout& layout, const PanelContent& content)
      : canvas_(canvas), layout_(layout), content_(content) {}

  void draw() {
    const PixelRect& panel = layout_.panel;
    canvas_.fill(panel, palette::panel);
    canvas_.fill({panel.left, panel.top, at(1), panel.height}, palette::line);
    drawCamera();
    const Controls& now = content_.controls;
    drawSlider(SliderKind::Exposure, "Exposure", exposureText(now.exposureUs));
    drawSlider(SliderKind::Gain, "Gain", std::to_string(now.gain));
    drawSlider(SliderKind::Offset, "Offset", std::to_string(now.offset));
    drawHistogram();
    drawLevels();
    drawFocus();
    drawFacts();
    drawRecordButton();
    drawStatusLine();
  }

 private:
  int at(int length) const { return canvas_.at(length); }

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

  void drawSlider(SliderKind kind, const std::string& caption, const std::string& value) {
    const SliderPlace& place = layout_.sliders.at(static_cast<std::size_t>(kind));
    captioned(place.caption, caption, isLive() ? value : unknownText);
    drawTrack(place.track,
              isLive() ? std::optional(placeOf(kind, content_.controls, *content_.state.camera()))
                       : std::nullopt);
  }

  void drawLevels() {
    const PictureLevels& levels = content_.picture.levels();
    for (const LevelKind kind : levelKinds) {
      const SliderPlace& place = layout_.levels.at(static_cast<std::size_t>(kind));
      canvas_.text(place.caption, levelName(kind), TextSize::Small, palette::quietText);
      canvas_.text(place.caption, levelText(kind, levels), TextSize::Small, palette::text,
                   TextAlign::Right);
      drawTrack(place.track, placeOf(kind, levels));
    }
  }

  // Without a place there is no knob.
  void drawTrack(const PixelRect& whole, const std::optional<double>& place) {
    const PixelRect track = middleOf(whole, at(4));
    canvas_.fill(track, palette::raised);
    if (!place) {
      return;
    }
    const int knobWidth = at(8);
    const int way = static_cast<int>(std::lround(*place * (track.width - knobWidth)));
    const PixelRect knob = middleOf(whole, at(16));
    canvas_.fill({track.left, track.top, way, track.height}, palette::accent);
    canvas_.fill({track.left + way, knob.top, knobWidth, knob.height}, palette::accent);
  }

  void drawHistogram() {
    const Histogram& histogram = content_.picture.measurements().histogram;
    captioned(layout_.histogramCaption, "Histogram",
              isMeasured() ? saturationText(histogram.saturated) : "");
    canvas_.fill(layout_.histogram, palette::raised);
    drawHistogramAxis();
    if (!isMeasured()) {
      return;
    }
    if (histogram.channels == 1) {
      drawChannel(histogram.channel[0], palette::greyCurve);
    } else {
      drawChannel(histogram.channel[0], palette::redCurve);
      drawChannel(histogram.channel[2], palette::blueCurve);
      drawChannel(histogram.channel[1], palette::greenCurve);
    }
    // What is black, and what is white in the picture.
    for (const double brightness : {0.0, 1.0}) {
      drawMark(content_.picture.partShownAs(brightness), palette::accent);
    }
    canvas_.text(layout_.histogramNumbers, histogramText(histogram), TextSize::Small,
                 palette::quietText);
  }

  // Percent of the full scale.
  void drawHistogramAxis() {
    const PixelRect& axis = layout_.histogramAxis;
    for (const int percent : {0, 25, 50, 75, 100}) {
      const double part = percent / 100.0;
      drawMark(part, palette::line);
      const int width = at(60);
      const int middle = plotColumn(layout_.histogram, part);
      const int left = std::clamp(middle - width / 2, axis.left, axis.right() - width);
      canvas_.text({left, axis.top, width, axis.height},
                   std::to_string(percent) + (percent == 100 ? " %" : ""), TextSize::Small,
                   palette::quietText,
                   percent == 0     ? TextAlign::Left
                   : percent == 100 ? TextAlign::Right
                                    : TextAlign::Centre);
    }
  }

  void drawMark(double part, const PaletteColor& color) {
    const PixelRect& plot = layout_.histogram;
    const int left = std::min(plotColumn(plot, part), plot.right() - at(1));
    canvas_.fill({left, plot.top, at(1), plot.height}, color);
  }

  // Heights are logarithms, so that a few bright pixels can be seen beside a dark sky.
  void drawChannel(const ChannelHistogram& channel, const PaletteColor& color) {
    const auto height = [](std::uint32_t count) { return std::log1p(static_cast<double>(count)); };
    const auto& bins = channel.bins;
    const double highest = height(*std::ranges::max_element(bins));
    if (highest <= 0) {
      return;
    }
    const auto isUsed = [](std::uint32_t count) { return count > 0; };
    const auto first = std::ranges::find_if(bins, isUsed) - bins.begin();
    const auto end = bins.rend() - std::find_if(bins.rbegin(), bins.rend(), isUsed);
    const int room = layout_.histogram.height - at(6);
    std::vector<double> heights;
    for (auto bin = first; bin < end; ++bin) {
      heights.push_back(height(bins.at(static_cast<std::size_t>(bin))) / highest * room);
    }
    drawCurve(layout_.histogram, at(2), heights, first, std::ssize(bins), color);
  }

  // A curve through points above equal steps of a plot. Heights are in pixels above the plot's
  // margin; they begin at the step `first`.
  void drawCurve(const PixelRect& plot, int margin, const std::vector<double>& heights,
                 std::ptrdiff_t first, std::ptrdiff_t steps, const PaletteColor& color) {
    std::vector<POINT> points;
    points.reserve(heights.size());
    for (const double height : heights) {
      const std::ptrdiff_t step = first + std::ssize(points);
      points.push_back({plot.left + static_cast<LONG>(step * (plot.width - 1) / (steps - 1)),
                        plot.bottom() - margin - static_cast<LONG>(std::lround(height))});
    }
    canvas_.polyline(points, color);
  }

  void drawFocus() {
    const Measurements& measured = content_.picture.measurements();
    const auto star = measured.focus.star;
    drawFigure(
        layout_.focus[0],
        {"Star diameter", diameterText(star ? std::optional(star->halfFluxDiameter) : std::nullopt),
         "least " + diameterText(measured.leastDiameter)},
        measured.diameters);
    drawFigure(layout_.focus[1],
               {"Disc sharpness", sharpnessText(measured.focus.sharpness),
                "most " + sharpnessText(measured.mostSharpness)},
               measured.sharpnesses);
  }

  struct Figure {
    std::string caption;
    std::string value;
    std::string best;
  };

  void drawFigure(const FocusPlace& place, const Figure& figure, const std::deque<double>& trend) {
    canvas_.text(place.caption, figure.caption, TextSize::Normal, palette::quietText);
    canvas_.fill(place.trend, palette::raised);
    if (!isMeasured()) {
      return;
    }
    canvas_.text(place.figure, figure.value, TextSize::Figure, palette::text);
    canvas_.text(place.best, figure.best, TextSize::Small, palette::quietText);
    std::vector<double> heights(trend.begin(), trend.end());
    if (heights.size() < 2) {
      return;
    }
    // From 0, so that the noise of a good focus does not fill the plot.
    const double scale = (place.trend.height - at(6)) / (*std::ranges::max_element(heights) * 1.1);
    for (double& height : heights) {
      height *= scale;
    }
    constexpr std::ptrdiff_t steps = LivePicture::trendLength;
    drawCurve(place.trend, at(3), heights, steps - std::ssize(heights), steps, palette::accent);
  }

  void drawFacts() {
    const LiveState& state = content_.state;
    const std::pair<const char*, std::string> facts[] = {
        {"Frame rate", rateText(state.capture.framesPerSecond)},
        {"Temperature", temperatureText(state.capture.temperature)},
        {"Frames", isLive() ? std::to_string(state.capture.frames) : unknownText},
        {"Recorded", content_.state.region ? regionText(*content_.state.region) : "whole frame"},
        {"Picture", std::string(content_.picture.isStretched() ? "brightened" : "as it is") +
                        (content_.picture.isPixelByPixel() ? ", 1:1" : ", whole")},
    };
    PixelRect line{layout_.facts.left, layout_.facts.top, layout_.facts.width, at(21)};
    for (const auto& [caption, value] : facts) {
      if (line.bottom() > layout_.facts.bottom()) {
        break;
      }
      captioned(line, caption, value);
      line.top = line.bottom();
    }
  }

  void drawRecordButton() {
    const PixelRect& button = layout_.record;
    const auto& recording = content_.state.recording;
    canvas_.fill(button, palette::raised);
    canvas_.outline(button, recording ? palette::recording : palette::line);
    const int side = at(12);
    const int margin = at(14);
    const int half = button.height / 2;
    const PixelRect upper{button.left + margin, button.top + at(4), button.width - 2 * margin,
                          half - at(4)};
    const PixelRect lower{upper.left, upper.bottom(), upper.width, upper.height};
    const PixelRect sign{upper.left, middleOf(upper, side).top, side, side};
    const PixelRect label = restOf(upper, side + at(12));
    if (recording) {
      canvas_.fill(sign, palette::recording);
      canvas_.text(label, recordingText(*recording), TextSize::Normal, palette::text);
      canvas_.text(lower, recordingDetails(*recording), TextSize::Small,
                   isAlarming(*recording) ? palette::warning : palette::quietText);
    } else {
      const std::string limit = limitText(content_.state.limit);
      canvas_.dot(sign, isLive() ? palette::recording : palette::line);
      canvas_.text(label, "Record", TextSize::Normal,
                   isLive() ? palette::text : palette::quietText);
      canvas_.text(lower, limit.empty() ? "until stopped" : "for " + limit, TextSize::Small,
                   palette::quietText);
      canvas_.text(lower, "T", TextSize::Small, palette::quietText, TextAlign::Right);
    }
    canvas_.text(label, "R", TextSize::Small, palette::quietText, TextAlign::Right);
  }

  void drawStatusLine() {
    const PixelRect& line = layout_.status;
    const PixelRect& place = layout_.notice;
    canvas_.fill(line, palette::panel);
    canvas_.fill({place.left, place.top, place.width, line.top - place.top}, palette::panel);
    canvas_.fill({place.left, place.top, place.width, at(1)}, palette::line);
    canvas_.fill({place.right(), line.top, line.right() - place.right(), at(1)}, palette::line);
    const Notice notice = statusLine(content_.state);
    canvas_.paragraph(layout_.noticeText, notice.text, colorOf(notice.kind));
    canvas_.text({line.left, line.top, line.width - at(16), line.height}, keysText, TextSize::Small,
                 palette::quietText, TextAlign::Right);
  }

  bool isLive() const { return content_.state.phase == LivePhase::Streaming; }
  bool isMeasured() const { return isLive() && content_.picture.measurements().areThere; }

  GdiCanvas& canvas_;
  const WindowLayout& layout_;
  const PanelContent& content_;
};

// Darkens the picture and draws an empty list over it.
void drawBox(GdiCanvas& canvas, const PixelRect& picture, const ListPlace& list,
             const std::string& title) {
  canvas.dim(picture);
  canvas.fill(list.box, palette::panel);
  canvas.outline(list.box, palette::line);
  canvas.text(list.title, title, TextSize::Title, palette::text);
}

}  // namespace

void drawPanel(GdiCanvas& canvas, const WindowLayout& layout, const PanelContent& content) {
  PanelDrawing(canvas, layout, content).draw();
}

int noticeLines(GdiCanvas& canvas, const WindowLayout& layout, const std::string& notice) {
  if (canvas.textWidth(notice, TextSize::Normal) <= layout.noticeText.width) {
    return 1;
  }
  return canvas.paragraphLines(notice, layout.wrappedNoticeWidth);
}

void drawStarMark(GdiCanvas& canvas, const PixelRect& picture, const PictureView& view,
                  const Star& star) {
  const int x = picture.left + static_cast<int>(std::lround(view.screenX(star.x)));
  const int y = picture.top + static_cast<int>(std::lround(view.screenY(star.y)));
  const int radius =
      std::max(canvas.at(11), static_cast<int>(std::lround(star.halfFluxDiameter * view.scale)));
  const PixelRect inside{picture.left + radius, picture.top + radius, picture.width - 2 * radius,
                         picture.height - 2 * radius};
  if (inside.contains(x, y)) {
    canvas.circle(x, y, radius, palette::accent);
  }
}

void drawRegion(GdiCanvas& canvas, const PixelRect& picture, const PictureView& view,
                const Region& region) {
  PixelRect outline = regionOutline(region, view);
  outline.left += picture.left;
  outline.top += picture.top;
  canvas.outlineWithin(picture, outline, palette::warning);
  const PixelRect label{std::max(outline.left, picture.left) + canvas.at(6),
                        std::max(outline.top, picture.top) + canvas.at(4), canvas.at(200),
                        canvas.at(18)};
  if (label.right() <= picture.right() && label.bottom() <= picture.bottom()) {
    canvas.text(label, regionText(region), TextSize::Small, palette::warning);
  }
}

void drawCrosshair(GdiCanvas& canvas, const PixelRect& picture, const PictureView& view) {
  const int left = picture.left + view.onScreen.left;
  const int top = picture.top + view.onScreen.top;
  const int middleX = left + view.onScreen.width / 2;
  const int middleY = top + view.onScreen.height / 2;
  canvas.fill({left, middleY, view.onScreen.width, canvas.at(1)}, palette::accent);
  canvas.fill({middleX, top, canvas.at(1), view.onScreen.height}, palette::accent);
  canvas.circle(middleX, middleY, canvas.at(24), palette::accent);
}

void drawHelp(GdiCanvas& canvas, const PixelRect& picture) {
  const auto lines = helpLines();
  const ListPlace list = placeList(picture, 520, static_cast<int>(lines.size()), canvas.dpi());
  drawBox(canvas, picture, list, "Keys");
  const int keysWidth = canvas.at(112);
  for (int number = 0; number < list.rows; ++number) {
    const HelpLine& line = lines[static_cast<std::size_t>(number)];
    const PixelRect row = list.row(number);
    canvas.text({row.left, row.top, keysWidth, row.height}, std::string(line.keys),
                TextSize::Normal, palette::accent);
    canvas.text(restOf(row, keysWidth), std::string(line.meaning), TextSize::Normal, palette::text);
  }
}

void drawCountdown(GdiCanvas& canvas, const PixelRect& picture, const Countdown& countdown) {
  const int width = std::min(canvas.at(240), picture.width);
  const int height = canvas.at(40);
  const PixelRect box{picture.left + (picture.width - width) / 2,
                      picture.bottom() - height - canvas.at(12), width, height};
  canvas.fill(box, palette::panel);
  canvas.outline(box, palette::line);
  canvas.text({box.left, box.top, box.width, height - canvas.at(10)}, countdown.text,
              TextSize::Normal, palette::text, TextAlign::Centre);
  const PixelRect track{box.left + canvas.at(12), box.bottom() - canvas.at(10),
                        box.width - canvas.at(24), canvas.at(4)};
  canvas.fill(track, palette::raised);
  canvas.fill({track.left, track.top, static_cast<int>(std::lround(countdown.part * track.width)),
               track.height},
              palette::accent);
}

ListPlace cameraListPlace(const PixelRect& picture, std::size_t cameras, int dpi) {
  return placeList(picture, 640, static_cast<int>(cameras), dpi);
}

void drawCameraList(GdiCanvas& canvas, const PixelRect& picture, const LiveState& state,
                    std::size_t selected) {
  const ListPlace list = cameraListPlace(picture, state.cameras.size(), canvas.dpi());
  drawBox(canvas, picture, list, state.cameras.empty() ? "No cameras" : "Choose a camera");
  std::array<int, std::tuple_size_v<CameraDetails>> widths{};
  for (const oc::CameraInfo& camera : state.cameras) {
    const CameraDetails details = cameraDetails(camera);
    for (std::size_t column = 0; column < details.size(); ++column) {
      widths.at(column) =
          std::max(widths.at(column), canvas.textWidth(details.at(column), TextSize::Small));
    }
  }
  const int inset = canvas.at(8);
  for (int number = 0; number < list.rows; ++number) {
    const auto position = static_cast<std::size_t>(number);
    const oc::CameraInfo& camera = state.cameras[position];
    const PixelRect row = list.row(number);
    if (position == selected) {
      canvas.fill(row, palette::raised);
      canvas.fill({row.left, row.top, canvas.at(3), row.height}, palette::accent);
    }
    PixelRect inner{row.left + inset, row.top, row.width - 2 * inset, row.height};
    canvas.text({inner.left, inner.top, canvas.at(18), inner.height}, std::to_string(camera.index),
                TextSize::Small, palette::quietText, TextAlign::Right);
    const CameraDetails details = cameraDetails(camera);
    for (std::size_t column = details.size(); column-- > 0;) {
      if (widths.at(column) > 0) {
        const int left = inner.right() - widths.at(column);
        canvas.text({left, inner.top, widths.at(column), inner.height}, details.at(column),
                    TextSize::Small, palette::quietText);
        inner.width -= widths.at(column) + canvas.at(14);
      }
    }
    canvas.text(restOf(inner, canvas.at(30)), camera.name, TextSize::Normal,
                state.chosen == position ? palette::accent : palette::text);
  }
}

}  // namespace orvane::host
