// The thread that is the library's only caller, and what other threads may ask of it.
#pragma once

#include <condition_variable>
#include <functional>
#include <memory>
#include <mutex>
#include <thread>
#include <vector>

#include "live_view/frame_exchange.hpp"
#include "live_view/live_session.hpp"

namespace orvane::host {

/// Every member can be called from one other thread.
class LiveCamera {
 public:
  /// `onNews` is called on the capture thread when there is a new frame or a new state; it must be
  /// quick and must not call this object.
  LiveCamera(LiveOptions options, std::function<void()> onNews);

  /// Ends a recording, closes the camera and waits for that.
  ~LiveCamera();
  LiveCamera(const LiveCamera&) = delete;
  LiveCamera& operator=(const LiveCamera&) = delete;

  /// Leaves a request for the thread. Of several settings of the controls that wait, the last one
  /// counts.
  void send(const LiveRequest& request);

  /// Takes the newest frame; false when there has been none since the last call.
  bool takeFrame(LiveFrame& frame) { return frames_.take(frame); }

  /// The state as it was a moment ago.
  std::shared_ptr<const LiveState> state() const;

 private:
  void run(LiveOptions options);
  void publish(LiveSession& session);
  std::vector<LiveRequest> takeRequests(bool isStreaming);

  std::function<void()> onNews_;
  FrameExchange frames_;
  mutable std::mutex mutex_;
  std::condition_variable wake_;
  std::vector<LiveRequest> requests_;
  std::shared_ptr<const LiveState> state_ = std::make_shared<LiveState>();
  bool mustStop_ = false;
  std::thread thread_;  // last: it uses the others
};

}  // namespace orvane::host
