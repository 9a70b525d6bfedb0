// The Host header of requests.
#pragma once

#include <string_view>

namespace orvane::host {

/// True if a request with this Host header may be answered: it states an address, "localhost" or
/// the computer's name. A page of a web site whose name was made to lead here states another name.
bool isOwnHost(std::string_view header, std::string_view hostName);

}  // namespace orvane::host
