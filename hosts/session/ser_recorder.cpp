// Writes a camera's frames into a SER file on a thread of its own.
#include "session/ser_recorder.hpp"

#include <algorithm>
#include <span>
#include <utility>

#include "formats/ser_time.hpp"

namespace orvane::host {

namespace {

using Clock = std::chrono::steady_clock;

constexpr std::chrono::seconds betweenCheckpoints{1};

double secondsFrom(std::chrono::system_clock::time_point first,
                   std::chrono::system_clock::time_point last) {
  return std::chrono::duration<double>(last - first).count();
}

}  // namespace

std::size_t recordingCapacity(std::int64_t waitingBytes, std::size_t frameBytes) {
  constexpr std::size_t least = 3;
  return std::max(least, static_cast<std::size_t>(waitingBytes) / frameBytes) + 1;
}

SerRecorder::SerRecorder(const std::filesystem::path& path, const SerDescription& description,
                         const FrameCorrection& correction, oc::FrameQueue frames,
                         const RecordingOptions& options)
    : correction_(correction),
      sharesFrames_(options.sharesFrames),
      frames_(std::move(frames)),
      takenBefore_(frames_.taken()),
      droppedBefore_(frames_.dropped()),
      writer_(path, description, options.existing),
      gaps_(options.exposureUs),
      thread_([this] { run(); }) {}

SerRecorder::~SerRecorder() {
  stop();
  thread_.join();
}

bool SerRecorder::waitForEnd(std::chrono::milliseconds time) {
  std::unique_lock lock(mutex_);
  return ended_.wait_for(lock, time, [this] { return hasEnded_; });
}

void SerRecorder::requireSuccess() const {
  if (failure_) {
    std::rethrow_exception(failure_);
  }
}

void SerRecorder::run() {
  try {
    writeFrames();
    writer_.close();
  } catch (...) {
    failure_ = std::current_exception();
    frames_.close();
    try {
      writer_.close();
    } catch (const std::exception&) {
      // The first failure is reported. The file is valid, though it may lack time stamps.
    }
  }
  {
    const std::lock_guard lock(mutex_);
    hasEnded_ = true;
  }
  ended_.notify_all();
}

void SerRecorder::writeFrames() {
  Clock::time_point checkpoint = Clock::now();
  while (oc::Frame frame = frames_.next()) {
    const std::span<const std::uint8_t> bytes =
        correctFrame(bytesToCorrect(frame), frame.layout(), correction_);
    const auto time = stamps_.add(frame.arrival(), frame.arrivalTime());
    writer_.addFrame(bytes, serTicks(time));
    noteTime(time);
    writtenFrames_ = writer_.frameCount();
    current_ = std::move(frame);
    currentPixels_ = bytes;
    if (Clock::now() - checkpoint >= betweenCheckpoints) {
      writer_.checkpoint();
      checkpoint = Clock::now();
    }
  }
}

std::span<std::uint8_t> SerRecorder::bytesToCorrect(const oc::Frame& frame) {
  const std::span bytes(frame.data(), frame.size());
  if (!sharesFrames_) {
    return bytes;
  }
  copy_.assign(bytes.begin(), bytes.end());
  return copy_;
}

void SerRecorder::noteTime(std::chrono::system_clock::time_point time) {
  const std::lock_guard lock(mutex_);
  if (writtenFrames_ == 0) {
    times_.first = time;
  } else {
    for (const FrameGap& gap : gaps_.add(secondsFrom(times_.last, time))) {
      if (times_.firstGaps.size() < RecordingTimes::mostGaps) {
        times_.firstGaps.push_back(gap);
      }
    }
  }
  times_.last = time;
}

RecordingTimes SerRecorder::times() const {
  const std::lock_guard lock(mutex_);
  RecordingTimes times = times_;
  times.count = gaps_.count();
  times.frameTime = gaps_.frameTime();
  times.seconds = secondsFrom(times.first, times.last);
  return times;
}

}  // namespace orvane::host
