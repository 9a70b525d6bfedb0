// The table of families: its order, and codes that no family has.
#include <gtest/gtest.h>

#include "doubles/sdk_families.hpp"
#include "vendors/vendor_family.hpp"

namespace orvane {
namespace {

using testing::sdkNames;

TEST(FamilyTable, RowsAreInScanOrder) {
  ASSERT_EQ(vendorCount, sdkNames.size());
  for (std::size_t i = 0; i < vendorCount; ++i) {
    EXPECT_EQ(static_cast<std::size_t>(vendorTable[i]->vendor), i);
    EXPECT_STREQ(vendorTable[i]->baseName, sdkNames[i]);
  }
}

TEST(FamilyTable, EveryCodeHasItsRowAndUnknownCodesGetTheLast) {
  for (std::size_t i = 0; i < vendorCount; ++i) {
    EXPECT_EQ(&familyOf(static_cast<Vendor>(i)), vendorTable[i]);
  }
  EXPECT_EQ(&familyOf(static_cast<Vendor>(vendorCount)), vendorTable.back());
  EXPECT_EQ(&familyOf(static_cast<Vendor>(4294967295U)), vendorTable.back());
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
