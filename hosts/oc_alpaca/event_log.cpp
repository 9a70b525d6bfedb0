// The server's log: what happens to the cameras, one line each.
#include "oc_alpaca/event_log.hpp"

#include <cerrno>
#include <chrono>

#include "system/failures.hpp"
#include "system/file.hpp"
#include "system/system.hpp"
#include "system/text.hpp"

namespace orvane::host {

EventLog::EventLog(const std::string& file)
    : name_(inQuotes(file)), file_(openFile(pathFromUtf8(file), "ab")) {
  if (!file_) {
    throw UsageError("The log file " + name_ + " cannot be opened: " + failureReason(errno) + ".");
  }
  // Every line reaches the system at once, and one that fails is not tried again with the next.
  static_cast<void>(std::setvbuf(file_.get(), nullptr, _IONBF, 0));
}

void EventLog::write(const std::string& text) {
  if (!file_) {
    return;
  }
  const std::string line = utcText(std::chrono::system_clock::now()) + " " + text + "\n";
  const std::lock_guard<std::mutex> lock(mutex_);
  errno = 0;
  if (std::fwrite(line.data(), 1, line.size(), file_.get()) != line.size()) {
    if (!hasFailed_) {
      std::fprintf(stderr,
                   "oc_alpaca: The log file %s cannot be written: %s. The server goes on.\n",
                   name_.c_str(), failureReason(errno).c_str());
    }
    hasFailed_ = true;
    std::clearerr(file_.get());
  }
}

}  // namespace orvane::host
