// The log of the calls into a simulated SDK.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

#include "core/system.hpp"

namespace orvane::sim {

// While it is off, nothing is written and nothing allocated.
class CallLog {
 public:
  bool isEnabled() const { return isEnabled_; }

  // Switches the log on or off. Switching it off also ends the writing to a file.
  void enable(bool enabled);

  // Switches the log on and from now on also appends every line to a file, at once. Returns false,
  // and changes nothing, when the file cannot be opened.
  bool enableFile(const std::string& path);

  void clear();

  // All lines so far.
  const char* text() const { return text_.c_str(); }

  // The line of one call: its pieces in order, then the end of the line.
  void append(std::string_view piece) { text_ += piece; }
  void endLine();

 private:
  bool isEnabled_ = false;
  std::string text_;
  std::size_t lineStart_ = 0;
  File file_;
};

}  // namespace orvane::sim
