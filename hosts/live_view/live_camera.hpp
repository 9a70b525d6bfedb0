// Runs a live session on a thread of its own, so that the window never waits for the camera.
#pragma once

#include <chrono>
#include <condition_variable>
#include <functional>
#include <memory>
#include <mutex>
#include <thread>
#include <vector>

#include "live_view/live_session.hpp"

namespace orvane::host {

/// Every member can be called from one other thread. The destructor ends a recording, closes the
/// camera and waits for that.
class LiveCamera {
 public:
  /// `onNews` is called on other threads when there is a new frame or a new state; it must be quick
  /// and must not call this object.
  LiveCamera(LiveOptions options, std::function<void()> onNews);

  /// Leaves a request for the thread.
  void send(LiveRequest request);

  /// Takes the newest frame; empty when there has been none since the last call.
  oc::Frame takeFrame() { return session_.takeFrame(); }

  /// The state that the thread published last.
  std::shared_ptr<const LiveState> state() const;

 private:
  using Clock = std::chrono::steady_clock;

  void frameOrStateCame();
  void run(const std::stop_token& stop);
  void publish();

  std::function<void()> onNews_;
  Clock::time_point told_;  // used only on the capture thread
  mutable std::mutex mutex_;
  std::condition_variable_any wake_;
  std::vector<LiveRequest> requests_;
  std::shared_ptr<const LiveState> state_ = std::make_shared<LiveState>();
  LiveSession session_;
  std::jthread thread_;  // last: it uses the others
};

}  // namespace orvane::host
