// The parameters of a request: their text, and the values that it states.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <variant>
#include <vector>

namespace orvane::host {

/// What the values of a parameter are.
enum class ValueKind { Boolean, Integer, Real, Text };

/// A parameter that a request must have.
struct Parameter {
  const char* name;
  ValueKind kind;
};

using ParameterValue = std::variant<bool, int, double, std::string>;

/// "a=1&b=2", with "+" for a space and "%41" for a byte, as in the query of an address and in a
/// form.
class Parameters {
 public:
  enum class Names { AnyCase, ExactCase };

  Parameters() = default;

  /// Throws BadRequest if the text cannot be decoded.
  Parameters(std::string_view text, Names names);

  /// The first value with this name; null if there is none.
  const std::string* find(std::string_view name) const;

  /// A number from 0 to 4294967295; 0 if there is no parameter with this name. Throws BadRequest.
  std::uint32_t identifier(const char* name) const;

  /// Throws BadRequest if the parameter is missing or is no value of this kind.
  ParameterValue value(const Parameter& parameter) const;

 private:
  Names names_ = Names::ExactCase;
  std::vector<std::pair<std::string, std::string>> all_;
};

/// The letters A to Z in lower case.
std::string lowerCase(std::string_view text);

}  // namespace orvane::host
