// Processes of this program, and the lines of text that pass between them: what is the same on
// every system.
#include "system/child_process.hpp"

#include "system/child_process_calls.hpp"

namespace orvane::host {

LinePipe::~LinePipe() {
  closeDescriptor(in_);
  closeDescriptor(out_);
}

std::optional<std::string> LinePipe::readLine() {
  std::size_t searched = 0;
  while (true) {
    const std::size_t end = unread_.find('\n', searched);
    if (end != std::string::npos) {
      std::string line = unread_.substr(0, end);
      unread_.erase(0, end + 1);
      return line;
    }
    searched = unread_.size();
    constexpr std::size_t part = 4096;
    unread_.resize(searched + part);
    const std::size_t read = readDescriptor(in_, unread_.data() + searched, part);
    unread_.resize(searched + read);
    if (read == 0) {
      return std::nullopt;
    }
  }
}

bool LinePipe::writeLine(std::string line) {
  line += '\n';
  const std::lock_guard<std::mutex> lock(writing_);
  std::string_view rest = line;
  while (!rest.empty()) {
    const std::size_t written = writeDescriptor(out_, rest.data(), rest.size());
    if (written == 0) {
      return false;
    }
    rest.remove_prefix(written);
  }
  return true;
}

}  // namespace orvane::host
