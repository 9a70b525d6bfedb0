// Reading a SimCamera, whose fields may hold nonsense: text without an end, lists without an end,
// limits that are no numbers.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <string_view>
#include <type_traits>

#include "simulator_control.h"

namespace orvane::sim {

// The text of a character field, up to its NUL or, without one, to the field's end.
template <std::size_t Size>
std::string_view textOf(const char (&field)[Size]) {
  const char* end = std::find(field, field + Size, '\0');
  return {field, static_cast<std::size_t>(end - field)};
}

// Copies text into a maker's field and fills the rest with zeros. Text that is as long as the field
// or longer fills it and leaves no NUL, as the makers do.
template <std::size_t Size>
void copyText(char (&field)[Size], std::string_view text) {
  char* end = std::copy_n(text.data(), std::min(text.size(), Size), field);
  std::fill(end, field + Size, '\0');
}

// Whether a list that ends with `end`, or with its last element, contains `value`.
template <std::size_t Size>
bool contains(const std::int32_t (&list)[Size], std::int32_t end, std::int32_t value) {
  const std::int32_t* last = std::find(list, list + Size, end);
  return std::find(list, last, value) != last;
}

inline bool hasBin(const SimCamera& model, std::int32_t bin) {
  return bin > 0 && contains(model.bins, 0, bin);
}

// The sensor's size in pixels after binning; `bin` is above 0.
inline std::int32_t binnedWidth(const SimCamera& model, std::int32_t bin) {
  return std::max(model.width, 0) / bin;
}
inline std::int32_t binnedHeight(const SimCamera& model, std::int32_t bin) {
  return std::max(model.height, 0) / bin;
}

inline bool hasOffset(const SimCamera& model) {
  return model.offsetMax >= model.offsetMin;
}

// The whole part of a number, held to what the type can take; 0 for what is no number.
template <class Integer>
Integer wholeNumber(double value) {
  static_assert(std::is_integral_v<Integer>);
  using Limits = std::numeric_limits<Integer>;
  if (!(value > static_cast<double>(Limits::min()))) {
    return value < 0 ? Limits::min() : Integer{0};
  }
  return value < static_cast<double>(Limits::max()) ? static_cast<Integer>(value) : Limits::max();
}

// Brightness at a gain against that in the middle of the gain range, for gains in steps of 0.1 dB.
// A range of fewer than 200 steps counts as one of 30 dB.
double gainInDecibelSteps(const SimCamera& model, double gain);

// Brightness at a gain against that in the middle of the gain range, for gains in percent.
double gainInPercent(const SimCamera& model, double gain);

// The middle of the gain range, and an exposure of 20 ms or the nearest that the camera can: with
// them the picture is well exposed.
double usualGain(const SimCamera& model);
double usualExposureUs(const SimCamera& model);

// A value held to a range, as it is when the range is empty.
double held(double value, double minimum, double maximum);

}  // namespace orvane::sim
