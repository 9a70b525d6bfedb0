// The licences of this project and of the parts of other projects that its programs contain.
#pragma once

#include <string>

namespace orvane::host {

/// The files LICENSE and THIRD-PARTY-NOTICES, one after the other and without the last newline, in
/// UTF-8. The build makes its source from them.
std::string licenseTexts();

}  // namespace orvane::host
