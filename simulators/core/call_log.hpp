// The log of the calls into a simulated SDK.
#pragma once

#include <cstddef>
#include <fstream>
#include <string>
#include <string_view>

namespace orvane::sim {

// While it is off, it writes nothing and allocates nothing.
class CallLog {
 public:
  bool isEnabled() const { return isEnabled_; }

  // Switches the log on or off. Switching it off also closes the log file.
  void enable(bool enabled);

  // Switches the log on and also appends every line to a file, without buffering. Returns false and
  // changes nothing if the file cannot be opened.
  bool enableFile(const std::string& path);

  void clear();

  const char* text() const { return text_.c_str(); }  // all lines so far

  // A call's line is written as its pieces in order, then the line's end.
  void append(std::string_view piece) { text_ += piece; }
  void endLine();

 private:
  bool isEnabled_ = false;
  std::string text_;
  std::size_t lineStart_ = 0;
  std::ofstream file_;
};

}  // namespace orvane::sim
