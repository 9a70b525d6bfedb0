// Reads the bytes as the parts of a request to the network server that its own code parses: the
// Host header, and the parameters. The HTTP around them is parsed by a library.
#include <algorithm>
#include <cmath>
#include <optional>

#include "checks.hpp"
#include "oc_alpaca/alpaca_error.hpp"
#include "oc_alpaca/host_header.hpp"
#include "oc_alpaca/parameters.hpp"

namespace orvane::fuzz {

namespace {

using namespace orvane::host;

// The value, or none if the request is refused. Nothing but a refusal may leave the parser.
template <class Read>
auto unlessRefused(Read read) -> std::optional<decltype(read())> {
  try {
    return read();
  } catch (const BadRequest&) {
    return std::nullopt;
  }
}

void checkValues(const Parameters& parameters, const std::string& name,
                 std::vector<std::string>& violations) {
  const auto require = [&](bool holds, const char* rule) {
    if (!holds) {
      violations.emplace_back(rule);
    }
  };
  const auto value = [&](ValueKind kind) {
    return unlessRefused([&] { return parameters.value({name.c_str(), kind}); });
  };
  const auto text = value(ValueKind::Text);
  const auto number = value(ValueKind::Real);
  const auto whole = value(ValueKind::Integer);
  const auto truth = value(ValueKind::Boolean);
  const auto identifier = unlessRefused([&] { return parameters.identifier(name.c_str()); });
  require(text.has_value() == (parameters.find(name) != nullptr), "a text is there or missing");
  require(!number || std::isfinite(std::get<double>(*number)), "a number is finite");
  require(!whole || number, "a whole number is a number");
  require(!whole || std::to_string(std::get<int>(*whole)).size() <= std::get<3>(*text).size(),
          "a whole number is what was written");
  require(!truth || (!number && std::get<3>(*text).size() >= 4), "a boolean is a word");
  require(!identifier || *identifier == 0 || number, "an identifier is a number");
}

}  // namespace

std::vector<std::string> checkRequest(std::span<const std::uint8_t> bytes) {
  std::vector<std::string> violations;
  const std::string all(bytes.begin(), bytes.end());
  const std::string header = all.substr(0, all.find('\n'));
  const std::string form = all.substr(std::min(header.size() + 1, all.size()));
  if (isOwnHost(header, "desk") && header.find_first_of("/@ \t") != std::string::npos) {
    violations.emplace_back("an own host is only a name or an address");
  }
  for (const auto names : {Parameters::Names::AnyCase, Parameters::Names::ExactCase}) {
    const auto parameters = unlessRefused([&] { return Parameters(form, names); });
    if (parameters) {
      checkValues(*parameters, "ClientID", violations);
      checkValues(*parameters, "Duration", violations);
    }
  }
  return violations;
}

}  // namespace orvane::fuzz
