// Reads the bytes of one run as decisions. All random values come from here, so the same bytes
// always give the same run.
#pragma once

#include <bit>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <span>
#include <type_traits>

namespace orvane::fuzz {

/// Consumes the bytes from the front. After the last byte it returns 0, which selects the most
/// ordinary answer everywhere.
class Input {
 public:
  Input() = default;
  explicit Input(std::span<const std::uint8_t> bytes) : bytes_(bytes) {}

  bool empty() const { return bytes_.empty(); }

  std::uint8_t byte() {
    if (bytes_.empty()) {
      return 0;
    }
    const std::uint8_t first = bytes_.front();
    bytes_ = bytes_.subspan(1);
    return first;
  }

  std::uint32_t word() {
    std::uint32_t bits = 0;
    for (int i = 0; i < 4; ++i) {
      bits = bits << 8U | byte();
    }
    return bits;
  }

  std::uint64_t longWord() {
    const std::uint64_t high = word();
    return high << 32U | word();
  }

  /// Any 32-bit number: usually small, often an edge case.
  std::int32_t number() {
    constexpr std::int32_t edges[] = {
        -1,      std::numeric_limits<std::int32_t>::min(),
        -2,      std::numeric_limits<std::int32_t>::max(),
        127,     128,
        129,     255,
        256,     32767,
        32768,   46341,
        65535,   65536,
        1 << 30, (1 << 30) + 1,
    };
    constexpr std::uint8_t firstEdge = 200;
    const std::uint8_t choice = byte();
    if (choice < firstEdge) {
      return choice;
    }
    const std::size_t edge = choice - firstEdge;
    return edge < std::size(edges) ? edges[edge] : static_cast<std::int32_t>(word());
  }

  /// Any double, including not-a-number and the infinities.
  double real() {
    constexpr double edges[] = {0.0,
                                -0.0,
                                2.9,
                                std::numeric_limits<double>::quiet_NaN(),
                                std::numeric_limits<double>::infinity(),
                                -std::numeric_limits<double>::infinity(),
                                std::numeric_limits<double>::max(),
                                std::numeric_limits<double>::lowest(),
                                std::numeric_limits<double>::denorm_min(),
                                2147483647.0,
                                2147483648.0,
                                -2147483649.0,
                                9223372036854775807.0,
                                -9223372036854775808.0,
                                4294967295.0,
                                99.9};
    const std::uint8_t choice = byte();
    return choice < std::size(edges) ? edges[choice]
           : choice < 128            ? choice
                                     : std::bit_cast<double>(longWord());
  }

  /// Sets each output to any number of its type.
  template <class... Numbers>
  void fill(Numbers&... outputs) {
    ((outputs = static_cast<Numbers>(any<Numbers>())), ...);
  }

 private:
  template <class Number>
  auto any() {
    if constexpr (std::is_floating_point_v<Number>) {
      return real();
    } else {
      return number();
    }
  }

  std::span<const std::uint8_t> bytes_;
};

}  // namespace orvane::fuzz
