// What the library's messages mean to an observer, and what to do about them.
#include "session/causes.hpp"

#include <algorithm>
#include <charconv>
#include <new>
#include <optional>
#include <vector>

#include "session/causes_table.hpp"

namespace orvane::host {

namespace {

bool isDigit(char character) {
  return character >= '0' && character <= '9';
}

bool isOfWord(char character) {
  return isDigit(character) || (character >= 'A' && character <= 'Z') ||
         (character >= 'a' && character <= 'z') || character == '_';
}

// The beginning of the text that a placeholder stands for; empty if it does not fit.
std::string_view valueOf(std::string_view placeholder, std::string_view text) {
  const bool isNumber = placeholder == "<code>" || placeholder == "<number>";
  const std::size_t sign = isNumber && text.starts_with('-') ? 1 : 0;
  const auto end = std::find_if_not(text.begin() + static_cast<std::ptrdiff_t>(sign), text.end(),
                                    isNumber ? isDigit : isOfWord);
  const auto length = static_cast<std::size_t>(end - text.begin());
  return length == sign ? std::string_view() : text.substr(0, length);
}

// Whether the text is this message with its placeholders filled in. `code` receives the value of
// <code>.
bool fits(std::string_view text, std::string_view message, std::string_view& code) {
  while (!message.empty()) {
    const std::size_t start = message.find('<');
    if (!text.starts_with(message.substr(0, start))) {
      return false;
    }
    if (start == std::string_view::npos) {
      return text == message;
    }
    text.remove_prefix(start);
    const std::string_view placeholder = message.substr(start, message.find('>') + 1 - start);
    const std::string_view value = valueOf(placeholder, text);
    if (value.empty()) {
      return false;
    }
    code = placeholder == "<code>" ? value : code;
    text.remove_prefix(value.size());
    message.remove_prefix(start + placeholder.size());
  }
  return text.empty();
}

struct Explanation {
  const MessageRow* row;
  const ResultCode* code = nullptr;  // what the SDK's code adds to the row
};

const ResultCode* findCode(std::span<const ResultCode> codes, std::string_view digits) {
  std::int64_t number = 0;
  const char* const end = digits.data() + digits.size();
  if (std::from_chars(digits.data(), end, number).ptr != end) {
    return nullptr;
  }
  const auto found = std::ranges::find(codes, number, &ResultCode::code);
  return found != codes.end() && found->helpsObserver ? &*found : nullptr;
}

// The explanation of one message; none if it is not known.
std::optional<Explanation> find(std::string_view text) {
  // This text is the compiler's; the table has that of GCC.
  const std::string_view wanted = text == std::bad_alloc().what() ? "std::bad_alloc" : text;
  std::optional<Explanation> general;
  for (const MessageSection& section : messageSections()) {
    for (const MessageRow& row : section.rows) {
      std::string_view code;
      if (row.message == wanted) {
        return Explanation{&row};
      }
      if (!general && fits(wanted, row.message, code)) {
        general = Explanation{&row, code.empty() ? nullptr : findCode(section.codes, code)};
      }
    }
  }
  return general;
}

std::string textWith(std::string_view text, const Explanation& explanation) {
  std::string line(text);
  line += line.ends_with('.') ? " " : ". ";
  line += explanation.row->cause;
  if (explanation.code != nullptr) {
    line += " The SDK reports: ";
    line.append(explanation.code->meaning).append(" (").append(explanation.code->name).append(").");
  }
  return line.append(" ").append(explanation.row->cure);
}

}  // namespace

std::string explained(std::string_view libraryText) {
  if (const auto whole = find(libraryText)) {
    return textWith(libraryText, *whole);
  }
  // An SDK's own text may contain the separator. Such a text stays in one piece.
  constexpr std::string_view separator = "; ";
  std::string lines;
  bool isAfterUnknown = false;
  for (std::size_t start = 0; start <= libraryText.size();) {
    const std::size_t end = std::min(libraryText.find(separator, start), libraryText.size());
    const std::string_view text = libraryText.substr(start, end - start);
    const auto found = find(text);
    if (start > 0) {
      lines += isAfterUnknown && !found ? separator : "\n";
    }
    lines += found ? textWith(text, *found) : std::string(text);
    isAfterUnknown = !found;
    start = end + separator.size();
  }
  return lines;
}

std::string explainedSentence(std::string_view libraryText) {
  const std::string text = explained(libraryText);
  return text.ends_with('.') ? text : text + ".";
}

}  // namespace orvane::host
