// The families' rows. Each is defined at the end of its family's file.
#pragma once

#include "vendors/vendor_family.hpp"

namespace orvane {

extern const VendorFamily asiFamily;
extern const VendorFamily playerOneFamily;
extern const VendorFamily qhyFamily;
extern const VendorFamily toupTekFamily;

}  // namespace orvane
