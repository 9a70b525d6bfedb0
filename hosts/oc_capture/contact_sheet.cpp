// A contact sheet: some frames of a recording side by side.
#include "oc_capture/contact_sheet.hpp"

#include <algorithm>
#include <vector>

#include "imaging/canvas.hpp"
#include "imaging/stretch.hpp"
#include "system/text.hpp"

namespace orvane::host {

namespace {

constexpr Colour background{24, 26, 30};
constexpr Colour titleColour{240, 240, 240};
constexpr Colour captionColour{170, 176, 186};

constexpr int mostFrames = 12;
constexpr int columns = 4;
constexpr int longestSide = 400;
constexpr int border = 24;
constexpr int captionHeight = 36;
constexpr int titleHeight = 104;

// Frame numbers, evenly spaced from the first to the last.
std::vector<std::int32_t> chosenFrames(std::int32_t frames) {
  const std::int32_t count = std::min(frames, mostFrames);
  std::vector<std::int32_t> chosen;
  for (std::int32_t number = 0; number < count; ++number) {
    const std::int64_t last = frames - 1;
    chosen.push_back(count == 1 ? 0 : static_cast<std::int32_t>(last * number / (count - 1)));
  }
  return chosen;
}

std::string caption(const SerFacts& facts, std::int32_t frame) {
  std::string text = "frame " + std::to_string(frame);
  if (!facts.timeStamps.empty()) {
    const auto stamp = static_cast<double>(facts.timeStamps[static_cast<std::size_t>(frame)]);
    const double seconds = (stamp - static_cast<double>(facts.timeStamps.front())) / 1e7;
    text += "   " + decimal(seconds, 3) + " s";
  }
  return text;
}

std::vector<ScreenImage> thumbnails(const SerReader& recording,
                                    const std::vector<std::int32_t>& frames,
                                    const FrameCorrection& correction, StatusLine& line) {
  std::vector<ScreenImage> pictures;
  for (const std::int32_t frame : frames) {
    Image image = recording.readImage(frame);
    const BayerPattern bayer = correctImage(image, recording.facts().bayer, correction);
    pictures.push_back(previewOf(std::move(image), bayer, longestSide));
    if (line.isDue()) {
      line.show("Contact sheet: " + std::to_string(pictures.size()) + " of " +
                std::to_string(frames.size()) + " frames");
    }
  }
  return pictures;
}

}  // namespace

ScreenImage contactSheet(const SerReader& recording, const FrameCorrection& correction,
                         const std::string& title, const std::string& subtitle, StatusLine& line) {
  const std::vector<std::int32_t> frames = chosenFrames(recording.facts().frames);
  const std::vector<ScreenImage> pictures = thumbnails(recording, frames, correction, line);
  int width = 200;  // minimum, for the captions
  int height = 1;
  for (const ScreenImage& picture : pictures) {
    width = std::max(width, picture.width);
    height = std::max(height, picture.height);
  }
  const int cellWidth = width + border;
  const int cellHeight = height + captionHeight + border;
  const int count = static_cast<int>(frames.size());
  const int rows = (count + columns - 1) / columns;
  Canvas canvas(border + std::max(cellWidth * std::min(count, columns), 900),
                titleHeight + std::max(1, rows) * cellHeight, background);
  canvas.text(border, border, title, titleColour, 3);
  canvas.text(border, border + 40, subtitle, captionColour);
  for (int index = 0; index < count; ++index) {
    const auto at = static_cast<std::size_t>(index);
    const int x = border + index % columns * cellWidth;
    const int y = titleHeight + index / columns * cellHeight;
    canvas.picture(x, y, pictures[at]);
    canvas.text(x, y + pictures[at].height + 8, caption(recording.facts(), frames[at]),
                captionColour);
  }
  return canvas.image();
}

}  // namespace orvane::host
