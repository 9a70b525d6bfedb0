// Shared by the tests of ZWO ASI cameras.
#pragma once

#include "library/family_test.hpp"

namespace orvane::testing {

/// A small colour camera: SDK id 7, enumeration index 0, Bayer pattern RGGB, all four formats.
inline SimCamera smallAsiCamera() {
  return smallCamera();
}

/// The library and ZWO's SDK with one small camera.
class AsiTest : public FamilyTest {
 protected:
  AsiTest() : FamilyTest("ASICamera2", smallAsiCamera()) {}
};

}  // namespace orvane::testing
