#include "stage/call_log.hpp"

#include <utility>

namespace orvane::sim {

void CallLog::enable(bool enabled) {
  isEnabled_ = enabled;
  if (!enabled) {
    file_ = std::ofstream();
  }
}

bool CallLog::enableFile(const std::string& path) {
  std::ofstream file(path, std::ios::app | std::ios::binary);
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
  }
  lineStart_ = text_.size();
}

}  // namespace orvane::sim
