#include "core/call_log.hpp"

#include <utility>

#include "core/system.hpp"

namespace orvane::sim {

void CallLog::enable(bool enabled) {
  isEnabled_ = enabled;
  if (!enabled) {
    file_ = {};
  }
}

bool CallLog::enableFile(const std::string& path) {
  std::ofstream file(pathFromUtf8(path), std::ios::binary | std::ios::app);
  if (!file) {
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
  if (file_.is_open()) {
    file_ << std::string_view(text_).substr(lineStart_) << std::flush;
    file_.clear();  // a failed write, on a full disk for example, must not disturb the simulation
  }
  lineStart_ = text_.size();
}

}  // namespace orvane::sim
