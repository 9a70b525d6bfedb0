// What doctor advises for findings that a test cannot cause with files.
#include "sdk_check/cures.hpp"

#include <gtest/gtest.h>

namespace orvane::host {

namespace {

// Findings about an SDK file that looks usable.
SdkFindings findings() {
  SdkFindings sdk;
  sdk.sdk = {"ToupTek", "toupcam", {"Toupcam_Open", "Toupcam_Close"}};
  sdk.file = "toupcam.dll";
  sdk.isPresent = true;
  sdk.load = LoadResult();
  return sdk;
}

std::vector<std::string> curesOfCode(std::int64_t code) {
  SdkFindings sdk = findings();
  sdk.load->code = code;
  return curesOf(sdk);
}

SdkFindings loaded(const std::vector<std::string>& missingFunctions) {
  static int module = 0;
  SdkFindings sdk = findings();
  sdk.load->module = &module;
  sdk.missingFunctions = missingFunctions;
  return sdk;
}

using Cures = std::vector<std::string>;

TEST(Cures, OfMissingLibrariesNameTheProvider) {
  EXPECT_EQ(cureOfMissing("VCRUNTIME140.dll"),
            "VCRUNTIME140.dll: Install Microsoft's Visual C++ Redistributable 2015-2022 for x64.");
  EXPECT_EQ(cureOfMissing("api-ms-win-crt-runtime-l1-1-0.dll"),
            "api-ms-win-crt-runtime-l1-1-0.dll: Install Microsoft's Visual C++ Redistributable "
            "2015-2022 for x64.");
  EXPECT_EQ(cureOfMissing("api-ms-win-core-synch-l1-2-1.dll"),
            "api-ms-win-core-synch-l1-2-1.dll: It is part of newer versions of Windows: update "
            "Windows.");
  EXPECT_EQ(cureOfMissing("msvcr120.dll"),
            "msvcr120.dll: Install Microsoft's Visual C++ Redistributable 2013 for x64.");
  EXPECT_EQ(cureOfMissing("MSVCP140D.dll"),
            "MSVCP140D.dll: The file is a developer's build: get the released one from the maker.");
  EXPECT_EQ(cureOfMissing("tbb.dll"),
            "tbb.dll: It is part of the maker's SDK package: copy it from there into the SDK's "
            "directory.");
  EXPECT_EQ(cureOfMissing("libusb-1.0.so.0"),
            "libusb-1.0.so.0: Install libusb 1.0; Debian's package is libusb-1.0-0.");
  EXPECT_EQ(cureOfMissing("other.dll"),
            "other.dll: Look for it in the maker's SDK package and copy it into the SDK's "
            "directory.");
}

TEST(Cures, OfASdkThatIsHealthyOrNotThereAreNone) {
  EXPECT_EQ(curesOf(loaded({})), Cures());
  SdkFindings absent = findings();
  absent.isPresent = false;
  EXPECT_EQ(curesOf(absent), Cures());
}

TEST(Cures, OfMissingFunctionsTellAnOldLibraryFromAnother) {
  EXPECT_EQ(
      curesOf(loaded({"Toupcam_Close"})),
      Cures{"toupcam.dll is older than this program's interface: get the current one from the "
            "maker."});
  EXPECT_EQ(curesOf(loaded({"Toupcam_Open", "Toupcam_Close"})),
            Cures{"toupcam.dll is another library: get the one of this name from the maker."});
}

TEST(Cures, OfAFileComeBeforeThoseOfItsImports) {
  SdkFindings sdk = findings();
  sdk.imports = {{"a.dll", "toupcam.dll", "", true, "", "Get a."}};
  sdk.content.cure = "Get it.";
  EXPECT_EQ(curesOf(sdk), Cures{"Get it."});
}

TEST(Cures, OfImportsAreAllTold) {
  SdkFindings sdk = findings();
  sdk.imports = {{"a.dll", "toupcam.dll", "", true, "", "Get a."},
                 {"b.dll", "toupcam.dll", "b.dll", false, "", ""},
                 {"c.dll", "a.dll", "c.dll", false, "It is empty.", "Get c."},
                 {"d.dll", "a.dll", "", true, "", "Get a."}};
  EXPECT_EQ(curesOf(sdk), (Cures{"Get a.", "Get c."}));
}

TEST(Cures, OfTheSystemsErrorCodes) {
  EXPECT_EQ(curesOfCode(5),
            Cures{"You may not open this file: copy it again, or change its permissions."});
  EXPECT_EQ(curesOfCode(225), Cures{"Your virus scanner has blocked the file: allow it there."});
  EXPECT_EQ(curesOfCode(1114), Cures{"It could not start: install the maker's driver, then get the "
                                     "current library from the maker."});
  EXPECT_EQ(curesOfCode(4551), curesOfCode(1260));
  EXPECT_NE(curesOfCode(127), curesOfCode(32));
  EXPECT_EQ(curesOfCode(4711), Cures{"Get the current library from the maker."});
  SdkFindings withoutCode = findings();
  EXPECT_EQ(curesOf(withoutCode), curesOfCode(4711));
}

}  // namespace

}  // namespace orvane::host
