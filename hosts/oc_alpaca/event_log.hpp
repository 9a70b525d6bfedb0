// The server's log: what happens to the cameras, one line each.
#pragma once

#include <cstdio>
#include <memory>
#include <mutex>
#include <string>

namespace orvane::host {

/// Any thread may write. A log that cannot be written does not stop the server.
class EventLog {
 public:
  /// No log.
  EventLog() = default;

  /// Appends to this file. Throws UsageError if it cannot be opened.
  explicit EventLog(const std::string& file);

  /// Writes the time and the text. The first failure is told on the standard error output.
  void write(const std::string& text);

 private:
  struct Closer {
    void operator()(std::FILE* file) const { static_cast<void>(std::fclose(file)); }
  };

  std::string name_;
  std::unique_ptr<std::FILE, Closer> file_;
  bool hasFailed_ = false;
  std::mutex mutex_;
};

}  // namespace orvane::host
