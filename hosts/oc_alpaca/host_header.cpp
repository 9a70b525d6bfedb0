// The Host header of requests.
#include "oc_alpaca/host_header.hpp"

#include <algorithm>
#include <string>

#include "oc_alpaca/parameters.hpp"

namespace orvane::host {

namespace {

bool isIpAddress(std::string_view host) {
  constexpr std::string_view digitsAndDots = "0123456789.";
  constexpr std::string_view inBrackets = "0123456789abcdefABCDEF:.";
  if (host.starts_with('[') && host.ends_with(']')) {
    return host.substr(1, host.size() - 2).find_first_not_of(inBrackets) == std::string_view::npos;
  }
  return std::ranges::count(host, '.') == 3 &&
         host.find_first_not_of(digitsAndDots) == std::string_view::npos;
}

}  // namespace

bool isOwnHost(std::string_view header, std::string_view hostName) {
  const std::size_t bracket = header.rfind(']');
  const std::size_t colon = header.rfind(':');
  const bool hasPort =
      colon != std::string_view::npos && (bracket == std::string_view::npos || colon > bracket);
  if (hasPort && header.find_first_not_of("0123456789", colon + 1) != std::string_view::npos) {
    return false;
  }
  const std::string host = lowerCase(hasPort ? header.substr(0, colon) : header);
  const std::string name = lowerCase(hostName);
  return isIpAddress(host) || host == "localhost" || (!name.empty() && host == name) ||
         (!name.empty() && host == name + ".local");
}

}  // namespace orvane::host
