// Frames on their way from the thread that asks a camera to the thread that writes them.
#include "session/frame_queue.hpp"

#include <algorithm>
#include <utility>

namespace orvane::host {

FrameQueue::FrameQueue(std::size_t bufferBytes, std::size_t mostFrames)
    : bufferBytes_(bufferBytes), capacity_(mostFrames) {}

bool FrameQueue::push(BufferedFrame& frame) {
  std::vector<std::uint8_t> next;
  {
    const std::lock_guard lock(mutex_);
    if (waiting_.size() == capacity_) {
      return false;
    }
    if (!freeBuffers_.empty()) {
      next.swap(freeBuffers_.back());
      freeBuffers_.pop_back();
    }
  }
  // Outside the lock: clearing fresh memory takes its time.
  next.resize(bufferBytes_);
  {
    const std::lock_guard lock(mutex_);
    waiting_.push_back(std::move(frame));
    mostWaiting_ = std::max(mostWaiting_, waiting_.size());
  }
  changed_.notify_one();
  frame = {std::move(next), 0, 0};
  return true;
}

bool FrameQueue::pop(BufferedFrame& frame) {
  std::unique_lock lock(mutex_);
  changed_.wait(lock, [this] { return isClosed_ || !waiting_.empty(); });
  if (waiting_.empty()) {
    return false;
  }
  if (!frame.buffer.empty()) {
    freeBuffers_.push_back(std::move(frame.buffer));
  }
  frame = std::move(waiting_.front());
  waiting_.pop_front();
  lock.unlock();
  hasRoom_.notify_one();
  return true;
}

bool FrameQueue::waitForRoom(std::chrono::milliseconds time) {
  std::unique_lock lock(mutex_);
  return hasRoom_.wait_for(lock, time, [this] { return waiting_.size() < capacity_; });
}

void FrameQueue::close() {
  {
    const std::lock_guard lock(mutex_);
    isClosed_ = true;
  }
  changed_.notify_one();
}

std::size_t FrameQueue::mostWaiting() const {
  const std::lock_guard lock(mutex_);
  return mostWaiting_;
}

}  // namespace orvane::host
