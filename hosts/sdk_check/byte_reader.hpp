// Numbers and texts out of a file's bytes, none of which are to be trusted.
#pragma once

#include <cstddef>
#include <cstdint>
#include <exception>
#include <span>
#include <string>
#include <string_view>

namespace orvane::host {

/// Something was to be read from beyond the end of the bytes, or has no end.
class BeyondTheEnd : public std::exception {};

/// Reads anywhere in some bytes, which must outlive it. Every member throws BeyondTheEnd for what
/// does not lie in them as a whole.
class ByteReader {
 public:
  explicit ByteReader(std::span<const std::uint8_t> bytes) : bytes_(bytes) {}

  /// So many bytes from this offset on.
  ByteReader part(std::uint64_t offset, std::uint64_t length) const {
    if (offset > bytes_.size() || length > bytes_.size() - offset) {
      throw BeyondTheEnd();
    }
    return ByteReader(
        bytes_.subspan(static_cast<std::size_t>(offset), static_cast<std::size_t>(length)));
  }

  /// An unsigned number, low byte first.
  template <class Unsigned>
  Unsigned number(std::uint64_t offset) const {
    const std::span<const std::uint8_t> bytes = part(offset, sizeof(Unsigned)).bytes_;
    std::uint64_t value = 0;
    for (std::size_t index = sizeof(Unsigned); index > 0; --index) {
      value = value << 8U | bytes[index - 1];
    }
    return static_cast<Unsigned>(value);
  }

  /// The text from this offset to its NUL, which must not be far away.
  std::string text(std::uint64_t offset) const {
    constexpr std::size_t longest = 1024;
    std::string text;
    while (const auto letter = number<std::uint8_t>(offset + text.size())) {
      if (text.size() == longest) {
        throw BeyondTheEnd();
      }
      text += static_cast<char>(letter);
    }
    return text;
  }

  /// Whether these letters stand at this offset; false also beyond the end.
  bool startsWith(std::string_view letters, std::uint64_t offset = 0) const {
    for (std::size_t index = 0; index < letters.size(); ++index) {
      if (offset + index >= bytes_.size() || bytes_[static_cast<std::size_t>(offset) + index] !=
                                                 static_cast<std::uint8_t>(letters[index])) {
        return false;
      }
    }
    return true;
  }

 private:
  std::span<const std::uint8_t> bytes_;
};

}  // namespace orvane::host
