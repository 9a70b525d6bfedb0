// The parameters of a request: their text, and the values that it states.
#include "oc_alpaca/parameters.hpp"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <system_error>

#include "oc_alpaca/alpaca_error.hpp"

namespace orvane::host {

namespace {

std::string decoded(std::string_view text) {
  std::string plain;
  for (std::size_t at = 0; at < text.size(); ++at) {
    if (text[at] != '%') {
      plain += text[at] == '+' ? ' ' : text[at];
      continue;
    }
    const std::string_view digits = text.substr(at + 1, 2);
    unsigned byte = 0;
    constexpr int hexadecimal = 16;
    const auto parsed =
        std::from_chars(digits.data(), digits.data() + digits.size(), byte, hexadecimal);
    if (digits.size() != 2 || parsed.ptr != digits.data() + 2) {
      throw BadRequest("A parameter has a % that is not followed by two hexadecimal digits.");
    }
    plain += static_cast<char>(byte);
    at += 2;
  }
  return plain;
}

// The whole text as a number.
template <class Number>
std::optional<Number> numberFrom(const std::string& text) {
  Number number{};
  const char* const end = text.data() + text.size();
  const auto parsed = std::from_chars(text.data(), end, number);
  return parsed.ec == std::errc() && parsed.ptr == end ? std::optional<Number>(number)
                                                       : std::nullopt;
}

std::optional<ParameterValue> valueFrom(const std::string& text, ValueKind kind) {
  switch (kind) {
    case ValueKind::Boolean: {
      const std::string word = lowerCase(text);
      return word == "true" || word == "false" ? std::optional<ParameterValue>(word == "true")
                                               : std::nullopt;
    }
    case ValueKind::Integer:
      return numberFrom<int>(text);
    case ValueKind::Real: {
      const std::optional<double> number = numberFrom<double>(text);
      return number && std::isfinite(*number) ? std::optional<ParameterValue>(*number)
                                              : std::nullopt;
    }
    case ValueKind::Text:
      break;
  }
  return text;
}

}  // namespace

std::string lowerCase(std::string_view text) {
  std::string lower(text);
  std::ranges::transform(lower, lower.begin(), [](char letter) {
    return letter >= 'A' && letter <= 'Z' ? static_cast<char>(letter - 'A' + 'a') : letter;
  });
  return lower;
}

Parameters::Parameters(std::string_view text, Names names) : names_(names) {
  while (!text.empty()) {
    const std::size_t end = std::min(text.find('&'), text.size());
    const std::string_view item = text.substr(0, end);
    text.remove_prefix(std::min(end + 1, text.size()));
    const std::size_t equals = std::min(item.find('='), item.size());
    if (!item.empty()) {
      const std::string name = decoded(item.substr(0, equals));
      all_.emplace_back(names == Names::AnyCase ? lowerCase(name) : name,
                        decoded(item.substr(std::min(equals + 1, item.size()))));
    }
  }
}

const std::string* Parameters::find(std::string_view name) const {
  const std::string wanted = names_ == Names::AnyCase ? lowerCase(name) : std::string(name);
  const auto found =
      std::ranges::find_if(all_, [&](const auto& parameter) { return parameter.first == wanted; });
  return found == all_.end() ? nullptr : &found->second;
}

std::uint32_t Parameters::identifier(const char* name) const {
  const std::string* const text = find(name);
  if (text == nullptr) {
    return 0;
  }
  const auto number = numberFrom<std::uint32_t>(*text);
  if (!number) {
    throw BadRequest(std::string("The parameter ") + name +
                     " must be a whole number from 0 to 4294967295.");
  }
  return *number;
}

ParameterValue Parameters::value(const Parameter& parameter) const {
  const std::string* const text = find(parameter.name);
  if (text == nullptr) {
    throw BadRequest(std::string("The parameter ") + parameter.name + " is missing.");
  }
  const auto value = valueFrom(*text, parameter.kind);
  if (!value) {
    constexpr const char* kinds[] = {"true or false", "a whole number", "a number", "a text"};
    throw BadRequest(std::string("The parameter ") + parameter.name + " must be " +
                     kinds[static_cast<std::size_t>(parameter.kind)] + ".");
  }
  return *value;
}

}  // namespace orvane::host
