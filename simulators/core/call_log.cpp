#include "core/call_log.hpp"

#include <utility>

namespace orvane::sim {

void CallLog::enable(bool enabled) {
  isEnabled_ = enabled;
  if (!enabled) {
    file_.reset();
  }
}

bool CallLog::enableFile(const std::string& path) {
  File file = openFile(path, "ab");
  if (file == nullptr) {
    return false;
  }
  file_ = std::move(file);
  isEnabled_ = true;
  return true;
}

void CallLog::clear() {
  text_.clear();
  lineStart_ = 0;
}

void CallLog::endLine() {
  text_ += '\n';
  if (file_) {
    // A failed write, on a full disk for example, must not disturb the simulation.
    static_cast<void>(std::fputs(text_.c_str() + lineStart_, file_.get()));
    static_cast<void>(std::fflush(file_.get()));
  }
  lineStart_ = text_.size();
}

}  // namespace orvane::sim
