#include "core/frame_clock.hpp"

#include <algorithm>
#include <thread>

namespace orvane::sim {
namespace {

// The clock stops here. A frame that would be complete later never becomes complete.
constexpr std::int64_t lastMoment = std::int64_t{1} << 61;
constexpr std::int64_t never = lastMoment + 1;

std::int64_t later(std::int64_t moment, std::int64_t duration, std::int64_t limit) {
  return duration < limit - moment ? moment + duration : limit;
}

}  // namespace

std::int64_t Clock::now() const {
  if (isStopped_) {
    return base_;
  }
  const auto elapsed =
      std::chrono::duration_cast<std::chrono::microseconds>(Steady::now() - start_).count();
  return later(base_, elapsed, lastMoment);
}

void Clock::stop(bool stopped) {
  base_ = now();
  start_ = Steady::now();
  isStopped_ = stopped;
}

void Clock::advance(std::int64_t microseconds) {
  base_ = later(base_, std::max<std::int64_t>(microseconds, 0), lastMoment);
}

void Clock::waitUntil(std::int64_t moment) {
  if (isStopped_) {
    base_ = std::clamp(moment, base_, lastMoment);
    return;
  }
  for (std::int64_t left = moment - now(); left > 0; left = moment - now()) {
    std::this_thread::sleep_for(std::chrono::microseconds(left));
  }
}

void FrameStream::start(std::int64_t now, QueueRule rule, bool isSingleFrame,
                        const FrameSettings& settings) {
  isRunning_ = true;
  isSingleFrame_ = isSingleFrame;
  rule_ = rule;
  exposing_.number = 0;
  restartFrame(now, settings);
}

void FrameStream::stop() {
  isRunning_ = false;
  isExposing_ = false;
  queue_.clear();
}

void FrameStream::change(std::int64_t now, const FrameSettings& settings) {
  if (isRunning_) {
    catchUp(now);
    settings_ = settings;
  }
}

void FrameStream::restartFrame(std::int64_t now, const FrameSettings& settings) {
  if (isRunning_) {
    queue_.clear();
    settings_ = settings;
    exposing_.settings = settings;
    completion_ = later(now, framePeriodUs(settings), never);
    isExposing_ = true;
  }
}

const Frame* FrameStream::waiting(std::int64_t now) {
  catchUp(now);
  return queue_.empty() ? nullptr : &queue_.front();
}

std::optional<std::int64_t> FrameStream::nextCompletion() const {
  return isExposing_ ? std::optional(completion_) : std::nullopt;
}

void FrameStream::take(std::int64_t now) {
  catchUp(now);
  queue_.erase(queue_.begin());
  if (!isExposing_ && !isSingleFrame_) {
    exposing_.settings = settings_;
    completion_ = later(now, framePeriodUs(settings_), never);
    isExposing_ = true;
  }
}

void FrameStream::catchUp(std::int64_t now) {
  if (isExposing_ && completion_ <= now) {
    completeFrame();
    skipFrames(now);
  }
  while (isExposing_ && completion_ <= now) {
    completeFrame();
  }
}

// Adds the exposed frame to the queue and begins the next one.
void FrameStream::completeFrame() {
  if (queue_.size() == rule_.length) {
    queue_.erase(queue_.begin());
  }
  queue_.push_back(exposing_);
  ++exposing_.number;
  exposing_.settings = settings_;
  completion_ = later(completion_, framePeriodUs(settings_), never);
  isExposing_ =
      !isSingleFrame_ && !(rule_.whenFull == WhenFull::Pause && queue_.size() == rule_.length);
}

// After a long time without a call, only the last frames can still be in the queue. The frames
// before them are only counted.
void FrameStream::skipFrames(std::int64_t now) {
  if (!isExposing_ || rule_.whenFull == WhenFull::Pause || completion_ > now) {
    return;
  }
  const std::int64_t period = framePeriodUs(settings_);
  const std::int64_t completed = (now - completion_) / period + 1;
  const std::int64_t skipped = completed - static_cast<std::int64_t>(rule_.length);
  if (skipped > 0) {
    exposing_.number += skipped;
    completion_ += skipped * period;
  }
}

}  // namespace orvane::sim
