// Runs a live session on a thread of its own, so that the window never waits for the camera.
#include "live_view/live_camera.hpp"

#include <algorithm>
#include <utility>

#include "system/system.hpp"

namespace orvane::host {

namespace {

// More pictures would not be noticed, and each takes time to draw.
constexpr std::chrono::milliseconds betweenFrames{25};

// How often the numbers in the window are updated.
constexpr std::chrono::milliseconds betweenStates{200};

}  // namespace

LiveCamera::LiveCamera(LiveOptions options, std::function<void()> onNews)
    : onNews_(std::move(onNews)),
      session_(std::move(options), [this] { frameOrStateCame(); }),
      thread_([this] { run(); }) {}

// Not a jthread: through winpthreads, waiting for a stop token was seen to hang at the stop.
LiveCamera::~LiveCamera() {
  {
    const std::lock_guard lock(mutex_);
    mustStop_ = true;
  }
  wake_.notify_one();
  thread_.join();
}

void LiveCamera::send(LiveRequest request) {
  {
    const std::lock_guard lock(mutex_);
    requests_.push_back(std::move(request));
  }
  wake_.notify_one();
}

std::shared_ptr<const LiveState> LiveCamera::state() const {
  const std::lock_guard lock(mutex_);
  return state_;
}

void LiveCamera::frameOrStateCame() {
  const Clock::time_point now = Clock::now();
  if (now - told_ >= betweenFrames) {
    told_ = now;
    onNews_();
  }
}

void LiveCamera::run() {
  useFineSleep();
  session_.run(&LiveSession::rescan);
  while (true) {
    publish();
    std::unique_lock lock(mutex_);
    // A limit of time is kept to the millisecond.
    const auto left = session_.recordingTimeLeft().value_or(betweenStates);
    wake_.wait_for(lock, std::clamp(left, std::chrono::milliseconds(1), betweenStates),
                   [this] { return mustStop_ || !requests_.empty(); });
    if (mustStop_) {
      return;
    }
    const std::vector<LiveRequest> requests = std::exchange(requests_, {});
    lock.unlock();
    for (const LiveRequest& request : requests) {
      session_.run(request);
    }
  }
}

void LiveCamera::publish() {
  auto state = std::make_shared<const LiveState>(session_.state());
  {
    const std::lock_guard lock(mutex_);
    state_ = std::move(state);
  }
  onNews_();
}

}  // namespace orvane::host
