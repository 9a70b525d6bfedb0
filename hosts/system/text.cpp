// Text: UTF-8, numbers, lists, points in time, and file names.
#include "system/text.hpp"

#include <algorithm>
#include <array>
#include <charconv>
#include <iomanip>
#include <locale>
#include <nlohmann/json.hpp>
#include <sstream>

namespace orvane::host {

namespace {

constexpr std::size_t longestDecimal = 1100;  // of any double

bool isContinuation(char byte) {
  return (static_cast<unsigned char>(byte) & 0xC0U) == 0x80U;
}

char lowerCase(char letter) {
  return letter >= 'A' && letter <= 'Z' ? static_cast<char>(letter - 'A' + 'a') : letter;
}

}  // namespace

std::string validUtf8(const std::string& text) {
  using nlohmann::json;
  const std::string quoted = json(text).dump(-1, ' ', false, json::error_handler_t::replace);
  return json::parse(quoted).get<std::string>();
}

std::string_view utf8Beginning(std::string_view text, std::size_t bytes) {
  if (text.size() <= bytes) {
    return text;
  }
  while (bytes > 0 && isContinuation(text[bytes])) {
    --bytes;
  }
  return text.substr(0, bytes);
}

std::size_t utf8Length(std::string_view text) {
  return text.size() -
         static_cast<std::size_t>(std::count_if(text.begin(), text.end(), isContinuation));
}

bool containsIgnoringCase(std::string_view text, std::string_view part) {
  return std::search(text.begin(), text.end(), part.begin(), part.end(),
                     [](char a, char b) { return lowerCase(a) == lowerCase(b); }) != text.end();
}

std::string decimal(double number) {
  std::array<char, longestDecimal> digits{};
  const auto end = std::to_chars(digits.begin(), digits.end(), number, std::chars_format::fixed);
  return {digits.begin(), end.ptr};
}

std::string decimal(double number, int decimals) {
  std::array<char, longestDecimal> digits{};
  const auto end =
      std::to_chars(digits.begin(), digits.end(), number, std::chars_format::fixed, decimals);
  return {digits.begin(), end.ptr};
}

std::string dimensionsText(int width, int height) {
  return std::to_string(width) + " x " + std::to_string(height);
}

std::string inQuotes(std::string_view text) {
  std::string marked = "\"";
  return marked.append(text).append("\"");
}

std::string alternatives(const std::vector<std::string>& items) {
  std::string text;
  for (std::size_t index = 0; index < items.size(); ++index) {
    text += index == 0 ? "" : index + 1 < items.size() ? ", " : " or ";
    text += items[index];
  }
  return text;
}

std::string utcText(std::chrono::system_clock::time_point time) {
  const auto day = std::chrono::floor<std::chrono::days>(time);
  const std::chrono::year_month_day date(day);
  const std::chrono::hh_mm_ss clock(std::chrono::floor<std::chrono::microseconds>(time - day));
  std::ostringstream text;
  text.imbue(std::locale::classic());
  text << std::setfill('0') << std::setw(4) << static_cast<int>(date.year()) << "-" << std::setw(2)
       << static_cast<unsigned>(date.month()) << "-" << std::setw(2)
       << static_cast<unsigned>(date.day()) << "T" << std::setw(2) << clock.hours().count() << ":"
       << std::setw(2) << clock.minutes().count() << ":" << std::setw(2) << clock.seconds().count()
       << "." << std::setw(6) << clock.subseconds().count();
  return text.str();
}

std::filesystem::path pathFromUtf8(std::string_view text) {
  return std::u8string(text.begin(), text.end());
}

std::string utf8FromPath(const std::filesystem::path& path) {
  const std::u8string text = path.u8string();
  return {text.begin(), text.end()};
}

}  // namespace orvane::host
