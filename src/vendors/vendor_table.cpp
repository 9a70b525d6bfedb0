// The order of the families.
#include "vendors/vendor_family.hpp"
#include "vendors/vendor_rows.hpp"

namespace orvane {

// In the order of Vendor, because its codes are the indices.
constinit const std::array<const VendorFamily*, vendorCount> vendorTable{
    &asiFamily, &playerOneFamily, &qhyFamily, &toupTekFamily};

std::int64_t frameSizeOnly(const ActiveCamera& /*camera*/) {
  return 0;
}

}  // namespace orvane
