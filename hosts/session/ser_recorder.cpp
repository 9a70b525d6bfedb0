// Writes frames into a SER file on a thread of its own.
#include "session/ser_recorder.hpp"

#include <algorithm>

namespace orvane::host {

namespace {

using Clock = std::chrono::steady_clock;

constexpr std::chrono::seconds betweenCheckpoints{1};

std::size_t framesThatMayWait(const RecorderSetup& setup) {
  constexpr std::size_t least = 3;
  return std::max(least, static_cast<std::size_t>(setup.waitingBytes) / setup.bufferBytes);
}

}  // namespace

SerRecorder::SerRecorder(const std::filesystem::path& path, const SerDescription& description,
                         const RecorderSetup& setup)
    : setup_(setup),
      queue_(setup.bufferBytes, framesThatMayWait(setup)),
      writer_(path, description),
      thread_([this] { run(); }) {}

SerRecorder::~SerRecorder() {
  stop();
  thread_.join();
}

bool SerRecorder::take(BufferedFrame& frame) {
  const bool isTaken = queue_.push(frame);
  droppedFrames_ += isTaken ? 0 : 1;
  return isTaken;
}

void SerRecorder::stop() {
  queue_.close();
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

std::span<const std::uint8_t> SerRecorder::lastFrame() const {
  return std::span(current_.buffer).first(current_.size);
}

void SerRecorder::run() {
  try {
    writeFrames();
    writer_.close();
  } catch (...) {
    failure_ = std::current_exception();
    hasFailed_ = true;
    try {
      writer_.close();
    } catch (const std::exception&) {
      // A consequence of the failure before. The file is valid, if without time stamps.
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
  while (queue_.pop(current_)) {
    const auto frame = std::span(current_.buffer).first(current_.size);
    correctFrame(frame, setup_.delivered, setup_.correction);
    writer_.addFrame(frame, current_.time);
    writtenFrames_ = writer_.frameCount();
    if (Clock::now() - checkpoint >= betweenCheckpoints) {
      writer_.checkpoint();
      checkpoint = Clock::now();
    }
  }
}

}  // namespace orvane::host
