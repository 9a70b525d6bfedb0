// The thread that is the library's only caller, and what other threads may ask of it.
#include "live_view/live_camera.hpp"

#include <chrono>
#include <utility>

#include "system/system.hpp"

namespace orvane::host {

namespace {

using Clock = std::chrono::steady_clock;

// No screen needs more pictures, and each costs time to draw.
constexpr std::chrono::milliseconds betweenFrames{25};

// How often numbers are brought up to date.
constexpr std::chrono::milliseconds betweenStates{200};

// Nothing happens without a camera until somebody asks for it.
constexpr std::chrono::milliseconds idleWait{500};

}  // namespace

LiveCamera::LiveCamera(LiveOptions options, std::function<void()> onNews)
    : onNews_(std::move(onNews)),
      thread_([this, moved = std::move(options)]() mutable { run(std::move(moved)); }) {}

LiveCamera::~LiveCamera() {
  {
    const std::lock_guard lock(mutex_);
    mustStop_ = true;
  }
  wake_.notify_one();
  thread_.join();
}

void LiveCamera::send(const LiveRequest& request) {
  {
    const std::lock_guard lock(mutex_);
    const bool areControls = std::holds_alternative<ControlsRequest>(request);
    if (areControls && !requests_.empty() &&
        std::holds_alternative<ControlsRequest>(requests_.back())) {
      requests_.back() = request;
    } else {
      requests_.push_back(request);
    }
  }
  wake_.notify_one();
}

std::shared_ptr<const LiveState> LiveCamera::state() const {
  const std::lock_guard lock(mutex_);
  return state_;
}

void LiveCamera::run(LiveOptions options) {
  useFineSleep();
  LiveSession session(std::move(options));
  session.start();
  publish(session);
  Clock::time_point framePublished;
  Clock::time_point statePublished = Clock::now();
  while (true) {
    const std::vector<LiveRequest> requests = takeRequests(session.isStreaming());
    {
      const std::lock_guard lock(mutex_);
      if (mustStop_) {
        break;
      }
    }
    for (const LiveRequest& request : requests) {
      session.carryOut(request);
    }
    const bool hasFrame = session.isStreaming() && session.poll();
    const Clock::time_point now = Clock::now();
    if (!requests.empty() || now - statePublished >= betweenStates) {
      statePublished = now;
      publish(session);
    }
    if (hasFrame && now - framePublished >= betweenFrames) {
      framePublished = now;
      frames_.put(session.frame());
      onNews_();
    }
  }
  session.stop();
}

void LiveCamera::publish(LiveSession& session) {
  auto state = std::make_shared<const LiveState>(session.state());
  {
    const std::lock_guard lock(mutex_);
    state_ = std::move(state);
  }
  onNews_();
}

std::vector<LiveRequest> LiveCamera::takeRequests(bool isStreaming) {
  std::unique_lock lock(mutex_);
  if (!isStreaming) {
    wake_.wait_for(lock, idleWait, [this] { return mustStop_ || !requests_.empty(); });
  }
  return std::exchange(requests_, {});
}

}  // namespace orvane::host
