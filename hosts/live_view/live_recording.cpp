// A recording that is started and stopped by a key.
#include "live_view/live_recording.hpp"

#include <algorithm>
#include <exception>
#include <utility>

#include "formats/ser_time.hpp"
#include "system/disk_space.hpp"
#include "system/file.hpp"
#include "system/system.hpp"
#include "system/text.hpp"

namespace orvane::host {

namespace {

FrameCorrection cutTo(const std::optional<Region>& region) {
  FrameCorrection correction;
  correction.region = region;
  return correction;
}

RecordingFacts factsOf(const RecordingWish& wish, const oc::CaptureState& camera,
                       const std::vector<std::string>& sdks, const std::optional<Region>& region) {
  RecordingFacts facts;
  facts.program = "live_view " ORVANE_VERSION;
  facts.sdks = sdks;
  facts.camera = camera.camera;
  facts.observer = wish.observer;
  facts.telescope = wish.telescope;
  facts.target = wish.target;
  facts.filter = wish.filter;
  facts.layout = correctedLayout(camera.layout, cutTo(region));
  facts.region = region;
  facts.settings = camera.settings;
  facts.temperatureAtStart = camera.temperature;
  return facts;
}

std::filesystem::path unusedPath(const std::filesystem::path& directory, const RecordingWish& wish,
                                 const std::string& camera) {
  const std::string name = nameFromTemplate(
      wish.nameTemplate,
      {localTime(std::time(nullptr)), camera, wish.target, wish.filter, wish.observer});
  return directory /
         pathFromUtf8(unusedName(directory, name, {".ser", settingsLogEnding}) + ".ser");
}

SerDescription descriptionOf(const RecordingFacts& facts) {
  const auto now = std::chrono::system_clock::now();
  return {facts.layout,    facts.observer,     facts.camera.name,
          facts.telescope, serLocalTicks(now), serTicks(now)};
}

}  // namespace

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

LiveRecording::LiveRecording(const std::filesystem::path& directory, const RecordingWish& wish,
                             const oc::CaptureState& camera, const std::vector<std::string>& sdks,
                             oc::FrameQueue frames, const std::optional<Region>& region)
    : directory_(directory),
      limit_(wish.limit),
      facts_(factsOf(wish, camera, sdks, region)),
      failedReadsBefore_(camera.failedReads),
      path_(unusedPath(directory, wish, camera.camera.name)),
      frameBytes_(frameBytes(facts_.layout)),
      recorder_(path_, descriptionOf(facts_), cutTo(region), std::move(frames),
                {.exposureUs = camera.settings.exposureUs, .sharesFrames = region.has_value()}) {}

std::optional<std::chrono::milliseconds> LiveRecording::timeLeft() const {
  if (!limit_.microseconds) {
    return std::nullopt;
  }
  const auto left = std::chrono::microseconds(*limit_.microseconds) - (Clock::now() - start_);
  return std::chrono::ceil<std::chrono::milliseconds>(left);
}

bool LiveRecording::isLimitReached() const {
  const auto left = timeLeft();
  return (left && left->count() <= 0) ||
         (limit_.frames && recorder_.acceptedFrames() >= *limit_.frames);
}

void LiveRecording::close(const oc::CaptureState& camera) {
  recorder_.stop();
  while (!recorder_.waitForEnd(std::chrono::hours(1))) {
  }
  std::exception_ptr failure;
  std::string error;
  try {
    recorder_.requireSuccess();
  } catch (const oc::Error& lost) {
    error = lost.what();  // LiveSession reports it
  } catch (const std::exception& failed) {
    error = failed.what();
    failure = std::current_exception();
  }
  if (recorder_.writtenFrames() > 0) {
    try {
      writeLog(camera, error);
    } catch (const std::exception&) {
      failure = failure ? failure : std::current_exception();
    }
  }
  if (failure) {
    std::rethrow_exception(failure);
  }
}

void LiveRecording::writeLog(const oc::CaptureState& camera, const std::string& error) {
  const RecordingTimes times = recorder_.times();
  RecordingFacts facts = facts_;
  facts.file = utf8FromPath(path_.filename());
  facts.temperatureAtEnd = camera.temperature;
  facts.end = times.last;
  facts.start = times.first - std::chrono::microseconds(facts.settings.exposureUs);
  facts.frames = recorder_.writtenFrames();
  facts.droppedFrames = recorder_.droppedFrames();
  facts.gaps = times.count.gaps;
  facts.failedReads = camera.failedReads - failedReadsBefore_;
  if (times.seconds > 0) {
    facts.framesPerSecond = static_cast<double>(facts.frames - 1) / times.seconds;
  }
  facts.error = error;
  const std::string text = settingsLog(facts);
  OutputFile log(std::filesystem::path(path_).replace_extension(settingsLogEnding));
  log.writeAt(0, {reinterpret_cast<const std::uint8_t*>(text.data()), text.size()});
  log.close();
}

RecordingProgress LiveRecording::progress(double framesPerSecond) const {
  RecordingProgress now;
  now.file = utf8FromPath(path_.filename());
  now.frames = recorder_.writtenFrames();
  now.bytes = now.frames * static_cast<std::int64_t>(frameBytes_);
  now.seconds = std::chrono::duration<double>(Clock::now() - start_).count();
  now.droppedFrames = recorder_.droppedFrames();
  now.freeBytes = freeSpace(directory_);
  if (now.freeBytes && framesPerSecond > 0) {
    now.secondsToFull =
        static_cast<double>(*now.freeBytes) / (framesPerSecond * static_cast<double>(frameBytes_));
  }
  if (const auto left = timeLeft()) {
    now.secondsToLimit = std::max(0.0, std::chrono::duration<double>(*left).count());
  }
  if (limit_.frames && framesPerSecond > 0) {
    const std::int64_t framesLeft =
        std::max<std::int64_t>(0, *limit_.frames - recorder_.acceptedFrames());
    const double seconds = static_cast<double>(framesLeft) / framesPerSecond;
    now.secondsToLimit = std::min(seconds, now.secondsToLimit.value_or(seconds));
  }
  return now;
}

}  // namespace orvane::host
