// The server's side of a worker process.
#include "oc_alpaca/worker_process.hpp"

#include <optional>
#include <utility>
#include <vector>

namespace orvane::host {

namespace {

std::vector<std::string> arguments(const std::string& sdkDirectory, const SharedMemory* memory) {
  std::vector<std::string> list{"--worker", "--sdk", sdkDirectory};
  if (memory != nullptr) {
    list.insert(list.end(), {"--memory", memory->namedForChild()});
  }
  return list;
}

}  // namespace

WorkerProcess::WorkerProcess(const std::string& sdkDirectory, const SharedMemory* memory,
                             Listener listener)
    : process_(arguments(sdkDirectory, memory), memory),
      reader_([this, listener = std::move(listener)] {
        while (const std::optional<std::string> line = process_.pipe().readLine()) {
          const Json event = Json::parse(*line, nullptr, false);
          if (!event.is_discarded()) {
            listener.onEvent(event);
          }
        }
        listener.onEnd(process_.end());
      }) {}

WorkerProcess::~WorkerProcess() {
  process_.kill();
  reader_.join();
}

void WorkerProcess::send(const Json& command) {
  // A process that has ended is noticed by the thread that reads.
  process_.pipe().writeLine(command.dump());
}

}  // namespace orvane::host
