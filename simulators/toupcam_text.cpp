#include "toupcam_text.hpp"

#include <algorithm>
#include <cstdint>

namespace orvane::sim {

#ifdef _WIN32

namespace {

constexpr std::uint32_t replacement = 0xFFFD;

// The length in bytes of the character that begins with this byte; 0 if none does.
std::size_t encodedLength(std::uint32_t lead) {
  if (lead < 0x80) {
    return 1;
  }
  if (lead < 0xC0) {
    return 0;
  }
  return lead < 0xE0 ? 2 : lead < 0xF0 ? 3 : 4;
}

// Removes and returns the first character, or the first byte if no character begins with it.
std::uint32_t cutCharacter(std::string_view& utf8) {
  const auto byteAt = [&utf8](std::size_t i) -> std::uint32_t {
    return static_cast<unsigned char>(utf8[i]);
  };
  const std::uint32_t lead = byteAt(0);
  const std::size_t length = encodedLength(lead);
  std::uint32_t code = length == 1 ? lead : lead & (0x7FU >> length);
  bool isValid = length > 0 && length <= utf8.size();
  for (std::size_t i = 1; isValid && i < length; ++i) {
    isValid = (byteAt(i) & 0xC0U) == 0x80;
    code = code << 6U | (byteAt(i) & 0x3FU);
  }
  utf8.remove_prefix(isValid ? length : 1);
  return isValid ? code : replacement;
}

}  // namespace

ToupcamText nativeText(std::string_view utf8) {
  ToupcamText text;
  while (!utf8.empty()) {
    const std::uint32_t code = cutCharacter(utf8);
    if (code < 0x10000) {
      text += static_cast<ToupcamChar>(code);
    } else {
      text += static_cast<ToupcamChar>(0xD800 + ((code - 0x10000) >> 10U));
      text += static_cast<ToupcamChar>(0xDC00 + ((code - 0x10000) & 0x3FFU));
    }
  }
  return text;
}

#else

ToupcamText nativeText(std::string_view utf8) {
  return ToupcamText(utf8);
}

#endif

ToupcamText textIn(const ToupcamChar* field) {
  return {field, std::find(field, field + textFieldLength, ToupcamChar{})};
}

std::string plainText(const ToupcamText& text) {
  std::string plain;
  for (const ToupcamChar unit : text) {
    const bool isPlain = unit >= 0x20 && unit < 0x7F;
    plain += isPlain ? static_cast<char>(unit) : '?';
  }
  return plain;
}

}  // namespace orvane::sim
