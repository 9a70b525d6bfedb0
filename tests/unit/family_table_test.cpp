// The table of families: its order, and codes that belong to none.
#include <gtest/gtest.h>

#include "vendors/vendor_rows.hpp"

namespace orvane {
namespace {

TEST(FamilyTable, RowsStandInTheOrderOfScanning) {
  const std::vector<std::string> expected{"ASICamera2", "PlayerOneCamera", "qhyccd", "toupcam"};
  std::vector<std::string> names;
  for (const VendorFamily* family : vendorTable) {
    EXPECT_EQ(static_cast<std::size_t>(family->vendor), names.size());
    names.emplace_back(family->baseName);
  }
  EXPECT_EQ(names, expected);
}

TEST(FamilyTable, EveryCodeHasItsRowAndOthersTheLast) {
  EXPECT_EQ(&familyOf(Vendor::Asi), &asiFamily);
  EXPECT_EQ(&familyOf(Vendor::PlayerOne), &playerOneFamily);
  EXPECT_EQ(&familyOf(Vendor::Qhy), &qhyFamily);
  EXPECT_EQ(&familyOf(Vendor::ToupTek), &toupTekFamily);
  EXPECT_EQ(&familyOf(static_cast<Vendor>(4)), &toupTekFamily);
  EXPECT_EQ(&familyOf(static_cast<Vendor>(4294967295U)), &toupTekFamily);
}

TEST(FamilyTable, OnlyZwoRegionsHaveSteps) {
  for (const VendorFamily* family : vendorTable) {
    const bool isZwo = family->vendor == Vendor::Asi;
    EXPECT_EQ(family->widthStep, isZwo ? 8 : 1);
    EXPECT_EQ(family->heightStep, isZwo ? 2 : 1);
  }
}

}  // namespace
}  // namespace orvane
