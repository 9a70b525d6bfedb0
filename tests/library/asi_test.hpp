// What the tests of ZWO ASI cameras share.
#pragma once

#include "library/family_test.hpp"

namespace orvane::testing {

/// A small colour camera: the SDK's id 7 at enumeration index 0, mosaic RGGB, all four formats.
inline SimCamera smallAsiCamera() {
  return smallCamera();
}

/// The library with ZWO's SDK beside it, showing one small camera.
class AsiTest : public FamilyTest {
 protected:
  AsiTest() : FamilyTest("ASICamera2", smallAsiCamera()) {}
};

}  // namespace orvane::testing
