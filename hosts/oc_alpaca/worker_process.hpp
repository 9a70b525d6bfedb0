// The server's side of a worker process.
#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <thread>

#include "oc_alpaca/worker_protocol.hpp"
#include "system/child_process.hpp"

namespace orvane::host {

/// A worker process. It ends with this object.
class WorkerProcess {
 public:
  /// Both are called on a thread of this object, `onEnd` once and last: with how the process ended.
  /// They must not destroy this object.
  struct Listener {
    std::function<void(const Json& event)> onEvent;
    std::function<void(const std::string& how)> onEnd;
  };

  /// Starts a process for the SDKs in this directory, with memory for pictures if it has a camera.
  /// The calling thread must live as long as this object. Throws std::system_error.
  WorkerProcess(const std::string& sdkDirectory, const SharedMemory* memory, Listener listener);

  /// Ends the process at once. Not on the thread of the listener.
  ~WorkerProcess();
  WorkerProcess(const WorkerProcess&) = delete;
  WorkerProcess& operator=(const WorkerProcess&) = delete;

  void send(const Json& command);

  /// Ends the process at once; onEnd follows.
  void kill() { process_.kill(); }

  std::int64_t id() const { return process_.id(); }

 private:
  ChildProcess process_;
  std::thread reader_;
};

}  // namespace orvane::host
