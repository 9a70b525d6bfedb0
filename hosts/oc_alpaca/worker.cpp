// A worker process: the only kind of process of this program that loads the makers' SDKs.
//
// One thread reads the server's commands, and ends the process when the server is gone. The
// camera's thread carries them out. A CaptureThread calls the library.
#include "oc_alpaca/worker.hpp"

#include <algorithm>
#include <chrono>
#include <cmath>
#include <condition_variable>
#include <deque>
#include <memory>
#include <mutex>
#include <optional>
#include <stdexcept>
#include <thread>

#include "oc_alpaca/transpose.hpp"
#include "oc_alpaca/worker_protocol.hpp"
#include "sdk_check/cures.hpp"
#include "sdk_check/examination.hpp"
#include "session/camera_catalogue.hpp"
#include "session/causes.hpp"
#include "system/child_process.hpp"
#include "system/system.hpp"
#include "system/text.hpp"

namespace orvane::host {

namespace {

using Clock = std::chrono::steady_clock;
using std::chrono::microseconds;
using std::chrono::milliseconds;

// A stream with the exposure of this and below is not opened anew for an exposure: the frame that
// is being exposed takes no longer than that.
constexpr microseconds shortExposure{250000};

// After new settings, this many frames may still have the settings before.
constexpr int framesBeforeSettings = 2;

// An SDK has no more frames than this waiting.
constexpr int mostOldFrames = 8;

// How long a call for a frame may take: a new exposure waits for its end. If a frame takes longer
// than this, calls find none in between.
constexpr milliseconds longestCall{10};

// A camera that nobody uses streams with this exposure, which makes little work.
constexpr microseconds idleExposure{1000000};
constexpr std::chrono::seconds timeUntilIdle{5};

// The commands of the server, which arrive on a thread of their own, and the news of the camera.
class Commands {
 public:
  // Waits for a command, for news or for the time.
  std::optional<Json> next(milliseconds wait) {
    std::unique_lock<std::mutex> lock(mutex_);
    changed_.wait_for(lock, wait, [this] { return !waiting_.empty() || hasNews_; });
    hasNews_ = false;
    if (waiting_.empty()) {
      return std::nullopt;
    }
    Json command = std::move(waiting_.front());
    waiting_.pop_front();
    return command;
  }

  void add(Json command) {
    const std::lock_guard<std::mutex> lock(mutex_);
    waiting_.push_back(std::move(command));
    changed_.notify_one();
  }

  void tellNews() {
    const std::lock_guard<std::mutex> lock(mutex_);
    hasNews_ = true;
    changed_.notify_one();
  }

 private:
  std::mutex mutex_;
  std::condition_variable changed_;
  std::deque<Json> waiting_;
  bool hasNews_ = false;
};

// The picture that is being taken. While a camera streams, frames that it exposed before wait in
// its SDK. They are thrown away until a call for a frame finds none, or enough have come.
struct Exposure {
  ExposeCommand command;
  std::uint64_t opening = 0;     // the frame must be of this opening
  std::uint64_t emptyReads = 0;  // CaptureState::emptyReads at the start
  int oldFrames = 0;             // that may still be waiting in the SDK
  Clock::time_point drained{};   // when none was waiting any more
  int framesToSkip = 0;          // that come after that and do not count
  microseconds shortest{0};      // from that to a frame that counts
};

Json examinationOf(const std::string& directory) {
  Json sdks = Json::array();
  for (const Sdk& sdk : allSdks()) {
    const SdkFindings findings = examineSdk(sdk, fullSdkDirectory(directory));
    sdks.push_back({{"maker", sdk.maker},
                    {"file", validUtf8(utf8FromPath(findings.file.filename()))},
                    {"isPresent", findings.isPresent},
                    {"isHealthy", findings.isPresent && findings.isHealthy()},
                    {"cures", curesOf(findings)}});
    for (Json& cure : sdks.back()["cures"]) {
      cure = validUtf8(cure.get<std::string>());
    }
  }
  return sdks;
}

class Worker {
 public:
  Worker(std::string sdkDirectory, const std::string& memory)
      : sdkDirectory_(std::move(sdkDirectory)) {
    if (!memory.empty()) {
      memory_.emplace(memory);
    }
  }

  int run() {
    // Detached: at the end of the process it may wait for a line.
    std::thread([this] { readCommands(); }).detach();
    while (true) {
      constexpr milliseconds longestWait{200};
      constexpr milliseconds waitWhileDraining{2};
      const bool isDraining = exposure_ && exposure_->oldFrames > 0;
      const std::optional<Json> command =
          commands_.next(isDraining ? waitWhileDraining : longestWait);
      try {
        if (command) {
          execute(*command);
        }
        if (capture_) {
          lookForFrames();
          tellTemperature();
          slowDown();
        }
      } catch (const oc::Error& error) {
        fail(explainedSentence(error.what()));
      } catch (const std::exception& error) {
        fail(validUtf8(error.what()));
      }
    }
  }

 private:
  void readCommands() {
    while (const std::optional<std::string> line = pipe_.readLine()) {
      commands_.add(Json::parse(*line));
    }
    // The server is gone. The camera is closed if its SDK lets it be closed.
    commands_.add({{"do", "leave"}});
    constexpr std::chrono::seconds timeToClose{3};
    std::this_thread::sleep_for(timeToClose);
    endThisProcess(1);
  }

  void tell(const Json& event) {
    pipe_.writeLine(event.dump(-1, ' ', false, Json::error_handler_t::replace));
  }

  void execute(const Json& command) {
    const std::string what = command.at("do");
    if (what == "scan") {
      scan();
    } else if (what == "find") {
      find(command.at("name"), command.at("ordinal"));
    } else if (what == "open") {
      open(settingsFrom(command.at("settings")));
    } else if (what == "expose") {
      expose(exposeCommandFrom(command));
    } else if (what == "abort") {
      exposure_.reset();
    } else {
      capture_.reset();
      exposure_.reset();
      if (what == "leave") {
        endThisProcess(0);
      }
      tell({{"is", "closed"}});
    }
  }

  void scan() {
    const oc::Scan found = readCatalogue(sdkDirectory_);
    Json event{{"is", "scanned"},
               {"error", explained(found.error)},
               {"cameras", Json::array()},
               {"sdks", examinationOf(sdkDirectory_)}};
    for (const oc::CameraInfo& camera : found.cameras) {
      event["cameras"].push_back(camera.json);
    }
    tell(event);
  }

  void find(const std::string& name, int ordinal) {
    const oc::Scan found = readCatalogue(sdkDirectory_);
    oc::CameraInfo wanted;
    wanted.name = name;
    wanted.ordinal = ordinal;
    camera_ = oc::findAgain(found.cameras, wanted);
    if (!camera_) {
      throw oc::Error("The camera was not found." +
                      (found.error.empty() ? "" : " " + explainedSentence(found.error)));
    }
    tell({{"is", "found"}, {"json", camera_->json}});
  }

  void open(const oc::Settings& settings) {
    capture_.reset();
    exposure_.reset();
    oc::CaptureOptions options;
    options.capacity = 2;
    options.longestCall = longestCall;
    options.onNews = [this] { commands_.tellNews(); };
    capture_ = std::make_unique<oc::CaptureThread>(options);
    const Clock::time_point start = Clock::now();
    capture_->open(camera_.value(), settings).get();
    openDuration_ = Clock::now() - start;
    lastUse_ = Clock::now();
    const oc::FrameLayout layout = capture_->state().layout;
    tell({{"is", "opened"}, {"width", layout.width}, {"height", layout.height}});
  }

  void expose(const ExposeCommand& command) {
    exposure_.reset();
    exposing_ = command.number;
    if (!capture_) {
      throw oc::Error("The camera is not open.");
    }
    tell({{"is", "accepted"}, {"number", command.number}});
    Exposure exposure;
    exposure.command = command;
    const oc::Settings before = capture_->state().settings;
    const oc::Settings& now = command.settings;
    const microseconds longest(std::max(before.exposureUs, now.exposureUs));
    const bool isShort = longest <= std::max<Clock::duration>(shortExposure, openDuration_);
    microseconds longestFrame(now.exposureUs);
    if (!isShort || before.bin != now.bin || before.format != now.format) {
      // A camera that is opened begins to expose at once. One that streams first ends its exposure.
      const Clock::time_point start = Clock::now();
      capture_->reopen(now).get();
      openDuration_ = Clock::now() - start;
    } else {
      exposure.framesToSkip = apply(before, now) ? framesBeforeSettings : 0;
      exposure.oldFrames = mostOldFrames;
      exposure.shortest = shortestWait(now.exposureUs);
      longestFrame = longest;
    }
    exposure.opening = capture_->state().opening;
    exposure.emptyReads = capture_->state().emptyReads;
    checkSize(command);
    exposure_ = exposure;
    lastUse_ = Clock::now();
    tell({{"is", "exposing"}, {"number", command.number}, {"longest", longestFrame.count()}});
  }

  // A frame that comes after this time began to be exposed after its start. If reading the sensor
  // takes longer than the exposure, a frame comes that much later.
  microseconds shortestWait(std::int64_t exposureUs) const {
    const double rate = capture_->state().framesPerSecond;
    const microseconds exposure(exposureUs);
    const microseconds period(rate > 0 ? std::llround(1e6 / rate) : 0);
    return period > exposure * 6 / 5 ? exposure + period : exposure;
  }

  void checkSize(const ExposeCommand& command) const {
    const oc::FrameLayout layout = capture_->state().layout;
    const Region& region = command.region;
    if (region.left + region.width > layout.width || region.top + region.height > layout.height) {
      throw std::runtime_error(
          "At bin " + std::to_string(command.settings.bin) + " the camera sends frames of " +
          dimensionsText(layout.width, layout.height) + " pixels, and the picture needs " +
          dimensionsText(region.left + region.width, region.top + region.height) + ".");
    }
  }

  // Waits until the settings are in force. False if they were before.
  bool apply(const oc::Settings& before, const oc::Settings& now) {
    const auto isInForce = [&now](const oc::Settings& settings) {
      return settings.exposureUs == now.exposureUs && settings.gain == now.gain &&
             settings.offset == now.offset;
    };
    if (isInForce(before)) {
      return false;
    }
    const std::uint64_t refusals = capture_->state().refusals;
    capture_->apply(now.exposureUs, now.gain.value_or(0), now.offset);
    while (true) {
      const oc::CaptureState state = capture_->state();
      if (state.refusals > refusals) {
        throw oc::Error(state.refusal);
      }
      if (isInForce(state.settings) || state.phase == oc::Phase::Lost) {
        return true;
      }
      std::this_thread::sleep_for(milliseconds(1));
    }
  }

  // Frames that do not count are thrown away: the camera streams all the time.
  void lookForFrames() {
    if (exposure_ && exposure_->oldFrames > 0 &&
        capture_->state().emptyReads > exposure_->emptyReads) {
      endDraining();
    }
    while (const oc::Frame frame = capture_->next(milliseconds(0))) {
      if (!exposure_ || frame.opening() != exposure_->opening) {
        continue;
      }
      if (exposure_->oldFrames > 0 || exposure_->framesToSkip > 0) {
        // It does not count, but the camera is not silent.
        tell({{"is", "frame"}, {"number", exposure_->command.number}});
      }
      if (exposure_->oldFrames > 1) {
        --exposure_->oldFrames;
      } else if (exposure_->oldFrames == 1) {
        endDraining();
      } else if (frame.arrival() < exposure_->drained) {
        continue;
      } else if (exposure_->framesToSkip > 0) {
        --exposure_->framesToSkip;
      } else if (frame.arrival() >= exposure_->drained + exposure_->shortest) {
        deliver(frame);
      }
    }
  }

  void endDraining() {
    exposure_->oldFrames = 0;
    exposure_->drained = Clock::now();
  }

  void deliver(const oc::Frame& frame) {
    const ExposeCommand command = exposure_->command;
    exposure_.reset();
    const FrameLayout part{command.region.width, command.region.height, frame.format()};
    const std::size_t size = frameBytes(part);
    const std::span<std::uint8_t> memory = memory_.value().bytes();
    if (command.offset > memory.size() || size > memory.size() - command.offset) {
      throw std::runtime_error("The picture is larger than its memory.");
    }
    transposeRegion({frame.data(), frame.size()}, frame.layout(), command.region,
                    memory.subspan(command.offset, size));
    const auto start = frame.arrivalTime() - microseconds(command.settings.exposureUs);
    tell({{"is", "picture"}, {"number", command.number}, {"start", utcText(start)}});
    lastUse_ = Clock::now();
  }

  void tellTemperature() {
    const Clock::time_point now = Clock::now();
    if (now - temperatureTold_ < std::chrono::seconds(1)) {
      return;
    }
    if (const std::optional<double> celsius = capture_->state().temperature) {
      temperatureTold_ = now;
      tell({{"is", "temperature"}, {"celsius", *celsius}});
    }
  }

  void slowDown() {
    const oc::Settings settings = capture_->state().settings;
    if (!exposure_ && settings.exposureUs < idleExposure.count() &&
        Clock::now() - lastUse_ > timeUntilIdle) {
      capture_->apply(idleExposure.count(), settings.gain.value_or(0), settings.offset);
      lastUse_ = Clock::now();
    }
  }

  void fail(const std::string& text) {
    const bool isLost = !capture_ || capture_->state().phase == oc::Phase::Lost ||
                        capture_->state().phase == oc::Phase::Idle;
    exposure_.reset();
    if (isLost) {
      capture_.reset();
    }
    tell({{"is", "failed"}, {"number", exposing_}, {"text", text}, {"lost", isLost}});
  }

  const std::string sdkDirectory_;
  std::optional<SharedMemory> memory_;
  ParentPipe pipe_;
  Commands commands_;
  std::optional<oc::CameraInfo> camera_;
  Clock::duration openDuration_{0};
  std::optional<Exposure> exposure_;
  std::uint64_t exposing_ = 0;  // the number of the last exposure
  Clock::time_point lastUse_;
  Clock::time_point temperatureTold_;
  std::unique_ptr<oc::CaptureThread> capture_;  // last: it uses the commands
};

}  // namespace

int runWorker(const std::string& sdkDirectory, const std::string& memory) {
  catchStopRequests();  // a request to stop is for the server, which ends its workers
  useFineSleep();
  return Worker(sdkDirectory, memory).run();
}

}  // namespace orvane::host
