// Reads structures and texts from the bytes of a file that may be damaged.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <exception>
#include <span>
#include <string>
#include <string_view>
#include <type_traits>
#include <vector>

namespace orvane::host {

/// Part of a table or text is beyond the end of the file, or it is larger than in any library.
class DamagedFile : public std::exception {};

/// Reads at any offset of some bytes, which must outlive it. Unless stated otherwise, a member
/// throws DamagedFile if not all that it reads is within the bytes.
class ByteReader {
 public:
  explicit ByteReader(std::span<const std::uint8_t> bytes) : bytes_(bytes) {}

  std::span<const std::uint8_t> part(std::uint64_t offset, std::uint64_t length) const {
    if (offset > bytes_.size() || length > bytes_.size() - offset) {
      throw DamagedFile();
    }
    return bytes_.subspan(static_cast<std::size_t>(offset), static_cast<std::size_t>(length));
  }

  template <class Structure>
  Structure at(std::uint64_t offset) const {
    static_assert(std::is_trivially_copyable_v<Structure>);
    Structure structure;
    std::memcpy(&structure, part(offset, sizeof structure).data(), sizeof structure);
    return structure;
  }

  /// `count` is at most 2 to the power of 32.
  template <class Structure>
  std::vector<Structure> table(std::uint64_t offset, std::uint64_t count) const {
    static_cast<void>(part(offset, count * sizeof(Structure)));
    std::vector<Structure> entries;
    for (; entries.size() < count; offset += sizeof(Structure)) {
      entries.push_back(at<Structure>(offset));
    }
    return entries;
  }

  /// The text from this offset to its NUL.
  std::string text(std::uint64_t offset) const {
    constexpr std::size_t longest = 1024;
    std::string text;
    while (const char letter = at<char>(offset + text.size())) {
      if (text.size() == longest) {
        throw DamagedFile();
      }
      text += letter;
    }
    return text;
  }

  /// Whether the bytes start with these letters. Never throws.
  bool startsWith(std::string_view letters) const {
    return bytes_.size() >= letters.size() &&
           std::memcmp(bytes_.data(), letters.data(), letters.size()) == 0;
  }

 private:
  std::span<const std::uint8_t> bytes_;
};

}  // namespace orvane::host
