// Reads text and lists from the fixed arrays of SDK structures, never past the array's end.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace orvane {

/// The text up to its NUL, or the whole array if it has none.
template <class Char, std::size_t size>
std::basic_string<Char> boundedText(const Char (&text)[size]) {
  std::size_t length = 0;
  while (length < size && text[length] != Char{}) {
    ++length;
  }
  return {text, length};
}

/// The numbers before the first `end`, or the whole array if there is none.
template <std::size_t size>
std::vector<std::int32_t> boundedList(const int (&numbers)[size], int end) {
  std::vector<std::int32_t> list;
  for (const int number : numbers) {
    if (number == end) {
      break;
    }
    list.push_back(number);
  }
  return list;
}

}  // namespace orvane
