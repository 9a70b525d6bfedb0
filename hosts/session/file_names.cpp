// Names of recordings and pictures, made from a template.
#include "session/file_names.hpp"

#include <algorithm>
#include <array>
#include <functional>
#include <iterator>
#include <optional>
#include <system_error>

#include "system/failures.hpp"
#include "system/text.hpp"

namespace orvane::host {

namespace {

constexpr std::string_view separators = "_- ";

std::string timeText(const std::tm& time, const char* format) {
  std::array<char, 16> text{};
  return {text.data(), std::strftime(text.data(), text.size(), format, &time)};
}

struct Field {
  std::string_view name;
  std::string (*value)(const NameValues& values);
};

constexpr std::array fields = {
    Field{"date", [](const NameValues& values) { return timeText(values.localTime, "%Y-%m-%d"); }},
    Field{"time", [](const NameValues& values) { return timeText(values.localTime, "%H-%M-%S"); }},
    Field{"target", [](const NameValues& values) { return values.target; }},
    Field{"filter", [](const NameValues& values) { return values.filter; }},
    Field{"camera", [](const NameValues& values) { return values.camera; }},
    Field{"observer", [](const NameValues& values) { return values.observer; }},
};

const Field* fieldOf(std::string_view name) {
  const auto* const found = std::find_if(fields.begin(), fields.end(),
                                         [&](const Field& field) { return field.name == name; });
  return found == fields.end() ? nullptr : found;
}

// Calls `onText` for the texts and `onField` for the fields' names, in their order. Returns false
// when a brace lacks its partner.
bool split(std::string_view text, const std::function<void(std::string_view)>& onText,
           const std::function<void(std::string_view)>& onField) {
  while (!text.empty()) {
    const std::size_t open = std::min(text.find_first_of("{}"), text.size());
    if (open > 0) {
      onText(text.substr(0, open));
    }
    text.remove_prefix(open);
    if (text.empty()) {
      break;
    }
    const std::size_t close = text.find_first_of("{}", 1);
    if (text.front() != '{' || close == std::string_view::npos || text[close] != '}') {
      return false;
    }
    onField(text.substr(1, close - 1));
    text.remove_prefix(close + 1);
  }
  return true;
}

bool isReserved(std::string_view name) {
  const std::string_view stem = name.substr(0, name.find('.'));
  constexpr std::array<std::string_view, 4> words = {"CON", "PRN", "AUX", "NUL"};
  constexpr std::array<std::string_view, 2> ports = {"COM", "LPT"};
  const auto isWord = [&](std::string_view word) {
    return stem.size() == word.size() && containsIgnoringCase(stem, word);
  };
  const auto isPort = [&](std::string_view port) {
    return stem.size() == 4 && containsIgnoringCase(stem.substr(0, 3), port) && stem[3] >= '0' &&
           stem[3] <= '9';
  };
  return std::any_of(words.begin(), words.end(), isWord) ||
         std::any_of(ports.begin(), ports.end(), isPort);
}

std::string usable(std::string name) {
  constexpr std::size_t longest = 180;  // leaves room for endings in the 255 that systems allow
  name = utf8Beginning(name, longest);
  for (char& letter : name) {
    const bool isControl = static_cast<unsigned char>(letter) < ' ' || letter == '\x7f';
    if (isControl || std::string_view("<>:\"/\\|?*").find(letter) != std::string_view::npos) {
      letter = '-';
    }
  }
  name.erase(0, std::min(name.find_first_not_of(' '), name.size()));
  name.erase(name.find_last_not_of(". ") + 1);
  return name.empty() || isReserved(name) ? "_" + name : name;
}

}  // namespace

std::string nameFields() {
  return joined(fields, ", ",
                [](const Field& field) { return "{" + std::string(field.name) + "}"; });
}

void requireNameTemplate(const std::string& option, std::string_view text) {
  std::optional<std::string> unknown;
  const bool isComplete = split(
      text, [](std::string_view) {},
      [&](std::string_view name) {
        if (fieldOf(name) == nullptr && !unknown) {
          unknown = name;
        }
      });
  if (text.empty()) {
    throw UsageError(option + " needs a name.");
  }
  if (!isComplete) {
    throw UsageError(option + " " + inQuotes(text) + " has a brace without its partner.");
  }
  if (unknown) {
    throw UsageError(option + " has no field {" + *unknown + "}; there are " + nameFields() + ".");
  }
}

std::string nameFromTemplate(std::string_view text, const NameValues& values) {
  constexpr std::size_t longestValue = 60;
  std::string name;
  bool mustSkipSeparator = false;
  split(
      text,
      [&](std::string_view part) {
        if (mustSkipSeparator && separators.find(part.front()) != std::string_view::npos) {
          part.remove_prefix(1);
          mustSkipSeparator = false;
        }
        name += part;
      },
      [&](std::string_view field) {
        const std::string value = validUtf8(fieldOf(field)->value(values));
        name += utf8Beginning(value, longestValue);
        mustSkipSeparator = value.empty();
      });
  if (mustSkipSeparator && !name.empty() &&
      separators.find(name.back()) != std::string_view::npos) {
    name.pop_back();
  }
  return usable(name);
}

std::string unusedName(const std::string& name,
                       const std::function<bool(const std::string&)>& isUsed) {
  std::string candidate = name;
  for (int number = 2; isUsed(candidate); ++number) {
    candidate = name + "_" + std::to_string(number);
  }
  return candidate;
}

std::string unusedName(const std::filesystem::path& directory, const std::string& name,
                       std::initializer_list<std::string_view> endings) {
  return unusedName(name, [&](const std::string& candidate) {
    return std::any_of(endings.begin(), endings.end(), [&](std::string_view ending) {
      std::error_code ignored;
      return std::filesystem::exists(directory / pathFromUtf8(candidate + std::string(ending)),
                                     ignored);
    });
  });
}

}  // namespace orvane::host
