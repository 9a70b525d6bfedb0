// The order of the families, and the rule for codes that belong to none.
#include <array>
#include <cstddef>

#include "vendors/vendor_family.hpp"
#include "vendors/vendor_rows.hpp"

namespace orvane {

namespace {

// In the order of Vendor: a code is a position.
constexpr std::array rows{&asiFamily, &playerOneFamily, &qhyFamily, &toupTekFamily};
static_assert(rows.size() == vendorCount);

}  // namespace

std::int64_t frameSizeOnly(const ActiveCamera& /*camera*/) {
  return 0;
}

std::span<const VendorFamily* const> vendorTable() {
  return rows;
}

const VendorFamily& familyOf(Vendor vendor) {
  const auto position = static_cast<std::size_t>(vendor);
  return *rows[position < rows.size() ? position : rows.size() - 1];
}

}  // namespace orvane
