// A recording that is started and stopped by a key.
#include "live_view/live_recording.hpp"

#include <array>
#include <system_error>
#include <utility>

#include "formats/ser_time.hpp"
#include "system/system.hpp"
#include "system/text.hpp"

namespace orvane::host {

namespace {

SerDescription descriptionOf(const oc::CameraInfo& camera, const FrameLayout& layout) {
  const auto now = std::chrono::system_clock::now();
  return {layout, "", camera.name, "", serLocalTicks(now), serTicks(now)};
}

FrameCorrection cutTo(const std::optional<Region>& region) {
  FrameCorrection correction;
  correction.region = region;
  return correction;
}

}  // namespace

std::string recordingName(const std::tm& localTime, const std::string& camera) {
  std::array<char, 32> time{};
  const std::size_t length =
      std::strftime(time.data(), time.size(), "%Y-%m-%d_%H-%M-%S_", &localTime);
  std::string name(time.data(), length);
  constexpr std::string_view refused = "<>:\"/\\|?*";
  for (const char letter : utf8Beginning(camera, 60)) {
    const bool isControl = static_cast<unsigned char>(letter) < ' ';
    name += isControl || refused.find(letter) != std::string_view::npos ? '-' : letter;
  }
  return name + ".ser";
}

std::filesystem::path unusedPath(const std::filesystem::path& directory, const std::string& name) {
  const std::filesystem::path first = directory / pathFromUtf8(name);
  std::filesystem::path path = first;
  std::error_code ignored;
  for (int number = 2; std::filesystem::exists(path, ignored); ++number) {
    path = first;
    path.replace_extension() += "_" + std::to_string(number);
    path += first.extension();
  }
  return path;
}

std::string contentText(const RecordingProgress& recording) {
  // The file appears with its first frame.
  const std::string content = recording.frames == 0
                                  ? "no frame, so there is no file."
                                  : std::to_string(recording.frames) +
                                        (recording.frames == 1 ? " frame in " : " frames in ") +
                                        inQuotes(recording.file) + ".";
  return recording.droppedFrames == 0 ? content
                                      : content + " Dropped, since the disk did not keep up: " +
                                            std::to_string(recording.droppedFrames) + ".";
}

LiveRecording::LiveRecording(const std::filesystem::path& directory, const oc::CameraInfo& camera,
                             const FrameLayout& layout, oc::FrameQueue frames,
                             const std::optional<Region>& region)
    : path_(unusedPath(directory, recordingName(localTime(std::time(nullptr)), camera.name))),
      frameBytes_(frameBytes(region ? layoutOf(*region, layout) : layout)),
      recorder_(path_, descriptionOf(camera, correctedLayout(layout, cutTo(region))), cutTo(region),
                std::move(frames), {.sharesFrames = region.has_value()}) {}

void LiveRecording::close() {
  recorder_.stop();
  while (!recorder_.waitForEnd(std::chrono::hours(1))) {
  }
  try {
    recorder_.requireSuccess();
  } catch (const oc::Error&) {
    // LiveSession reports a lost camera.
  }
}

RecordingProgress LiveRecording::progress() const {
  const std::int64_t frames = recorder_.writtenFrames();
  return {utf8FromPath(path_.filename()), frames, frames * static_cast<std::int64_t>(frameBytes_),
          std::chrono::duration<double>(Clock::now() - start_).count(), recorder_.droppedFrames()};
}

}  // namespace orvane::host
