// A line on standard error that shows the progress of a long command.
#include "oc_capture/status_line.hpp"

#include <algorithm>
#include <cstdio>
#include <iostream>

#include "system/system.hpp"

namespace orvane::host {

StatusLine::StatusLine(bool isQuiet) : isQuiet_(isQuiet), onTerminal_(isTerminal(stderr)) {}

StatusLine::~StatusLine() {
  if (onTerminal_ && width_ > 0) {
    std::cerr << "\n";
  }
}

bool StatusLine::isDue() const {
  constexpr std::chrono::milliseconds onTerminal{500};
  constexpr std::chrono::milliseconds elsewhere{5000};
  return !isQuiet_ && Clock::now() - shownAt_ >= (onTerminal_ ? onTerminal : elsewhere);
}

double StatusLine::secondsSinceShown() const {
  return std::chrono::duration<double>(Clock::now() - shownAt_).count();
}

void StatusLine::show(std::string text) {
  shownAt_ = Clock::now();
  if (isQuiet_) {
    return;
  }
  if (onTerminal_) {
    const std::size_t width = text.size();
    text.resize(std::max(width, width_), ' ');  // overwrites all of the text before
    width_ = width;
    std::cerr << "\r" << text << std::flush;
  } else {
    std::cerr << text << "\n";
  }
}

void StatusLine::tell(const std::string& text) {
  if (isQuiet_) {
    return;
  }
  if (width_ > 0) {
    std::cerr << "\r" << std::string(width_, ' ') << "\r";
    width_ = 0;
  }
  std::cerr << text << "\n" << std::flush;
}

}  // namespace orvane::host
