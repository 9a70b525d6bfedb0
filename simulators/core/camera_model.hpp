// Reads a SimCamera. Its fields may be invalid: text without a NUL, lists without an end, limits
// that are not numbers.
#pragma once

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <string_view>
#include <type_traits>
#include <utility>

#include "core/sensor.hpp"
#include "simulator_control.h"

namespace orvane::sim {

// The text of a character field, up to its NUL, or the whole field if it has none.
template <std::size_t Size>
std::string_view textOf(const char (&field)[Size]) {
  const char* end = std::find(field, field + Size, '\0');
  return {field, static_cast<std::size_t>(end - field)};
}

// Copies text into a maker's field and fills the rest with zeros. Text that is at least as long as
// the field fills it without a NUL, as in the makers' SDKs.
template <class Char, std::size_t Size>
constexpr void copyText(Char (&field)[Size],
                        std::type_identity_t<std::basic_string_view<Char>> text) {
  Char* end = std::copy_n(text.data(), std::min(text.size(), Size), field);
  std::fill(end, field + Size, Char{});
}

// Whether a list that ends with `end`, or with its last element, contains `value`.
template <std::size_t Size>
bool contains(const std::int32_t (&list)[Size], std::int32_t end, std::int32_t value) {
  const std::int32_t* last = std::find(list, list + Size, end);
  return std::find(list, last, value) != last;
}

// The value that a table has for a key, or `otherwise`.
template <class Value, std::size_t Size>
Value lookUp(const std::pair<std::int32_t, Value> (&table)[Size], std::int32_t key,
             std::type_identity_t<Value> otherwise) {
  const auto* found =
      std::find_if(table, table + Size, [key](const auto& entry) { return entry.first == key; });
  return found == table + Size ? otherwise : found->second;
}

// The Bayer pattern for the number that ZWO and Player One use. An unknown number gives RGGB.
inline BayerPattern bayerPatternOfNumber(std::int32_t number) {
  return number >= 1 && number <= 3 ? static_cast<BayerPattern>(number + 1) : BayerPattern::Rggb;
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

// The whole part of a number, clamped to the type's range; 0 for NaN.
template <class Integer>
Integer wholeNumber(double value) {
  static_assert(std::is_integral_v<Integer>);
  using Limits = std::numeric_limits<Integer>;
  if (!(value > static_cast<double>(Limits::min()))) {
    return value < 0 ? Limits::min() : Integer{0};
  }
  return value < static_cast<double>(Limits::max()) ? static_cast<Integer>(value) : Limits::max();
}

// A value clamped to a range, or unchanged if the range is empty.
inline double clamped(double value, double minimum, double maximum) {
  return minimum <= maximum ? std::clamp(value, minimum, maximum) : value;
}

// Settings for a well exposed picture: the middle of the gain range, and an exposure of 20 ms,
// clamped to the camera's range.
inline double usualGain(const SimCamera& model) {
  return std::floor((model.gainMin + model.gainMax) / 2);
}
inline double usualExposureUs(const SimCamera& model) {
  return clamped(normalExposureUs, model.exposureMinUs, model.exposureMaxUs);
}

inline double usualOffset(const SimCamera& model) {
  return clamped(10, model.offsetMin, model.offsetMax);
}

// Brightness at a gain relative to the middle of the gain range, for gains in steps of 0.1 dB. A
// range of fewer than 200 steps counts as 30 dB.
inline double gainInDecibelSteps(const SimCamera& model, double gain) {
  const double range = model.gainMax - model.gainMin;
  if (!(range > 0)) {
    return 1;
  }
  const double stepsPerDecade = range < 200 ? range / 1.5 : 200;
  return std::pow(10, clamped((gain - usualGain(model)) / stepsPerDecade, -6, 6));
}

// The same for gains in percent.
inline double gainInPercent(const SimCamera& model, double gain) {
  const double middle = usualGain(model);
  return middle > 0 ? clamped(gain / middle, 0, 1e6) : 1;
}

}  // namespace orvane::sim
