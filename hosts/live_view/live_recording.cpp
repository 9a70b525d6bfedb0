// A recording that is started and stopped by a key.
#include "live_view/live_recording.hpp"

#include <array>
#include <system_error>

#include "formats/ser_time.hpp"
#include "system/system.hpp"
#include "system/text.hpp"

namespace orvane::host {

namespace {

std::filesystem::path newPath(const std::filesystem::path& directory,
                              const CameraDescription& camera) {
  return unusedPath(directory, recordingName(localTime(std::time(nullptr)), camera.name));
}

SerDescription descriptionOf(const CameraDescription& camera, const FrameLayout& layout) {
  const auto now = std::chrono::system_clock::now();
  return {layout, "", camera.name, "", serLocalTicks(now), serTicks(now)};
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
    path.replace_filename(pathFromUtf8(utf8FromPath(first.stem()) + "_" + std::to_string(number) +
                                       utf8FromPath(first.extension())));
  }
  return path;
}

LiveRecording::LiveRecording(const std::filesystem::path& directory,
                             const CameraDescription& camera, const FrameLayout& layout)
    : path_(newPath(directory, camera)),
      frameBytes_(frameBytes(layout)),
      writer_(path_, descriptionOf(camera, layout)) {}

void LiveRecording::addFrame(std::span<const std::uint8_t> frame) {
  writer_.addFrame(frame, serTicks(std::chrono::system_clock::now()));
}

void LiveRecording::keepValid() {
  const Clock::time_point now = Clock::now();
  if (now - checkpoint_ >= std::chrono::seconds(1)) {
    checkpoint_ = now;
    writer_.checkpoint();
  }
}

RecordingProgress LiveRecording::progress() const {
  const std::int64_t frames = writer_.frameCount();
  return {utf8FromPath(path_.filename()), frames, frames * static_cast<std::int64_t>(frameBytes_),
          std::chrono::duration<double>(Clock::now() - start_).count()};
}

}  // namespace orvane::host
