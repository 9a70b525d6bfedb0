// The list of the functions that an SDK must have, held against the library's own sources.
#include "sdk_check/sdk_functions.hpp"

#include <gtest/gtest.h>

#include <regex>

#include "scratch_directory.hpp"

namespace orvane::host {

namespace {

using testing::contentOf;

// The functions that the declarations of one maker name.
std::vector<std::string> declaredIn(const std::string& header) {
  const std::string text =
      contentOf(std::filesystem::path(ORVANE_SOURCE_DIR) / "vendors/sdk" / header);
  const std::regex declaration(R"(\nSDK_(?:HRESULT_)?FUNCTION\(\w+,\s*(\w+),)");
  std::vector<std::string> names;
  for (std::sregex_iterator found(text.begin(), text.end(), declaration), end; found != end;
       ++found) {
    names.push_back((*found)[1]);
  }
  return names;
}

TEST(SdkFunctions, AreAllThatTheLibraryDeclares) {
  const char* const headers[] = {"asi_sdk.hpp", "playerone_sdk.hpp", "qhyccd_sdk.hpp",
                                 "toupcam_sdk.hpp"};
  ASSERT_EQ(allSdks().size(), std::size(headers));
  for (std::size_t sdk = 0; sdk < std::size(headers); ++sdk) {
    const std::vector<std::string> declared = declaredIn(headers[sdk]);
    EXPECT_GE(declared.size(), 15U) << headers[sdk];
    EXPECT_EQ(allSdks()[sdk].functions, declared) << headers[sdk];
  }
}

// The library reaches an SDK through those declarations only.
TEST(SdkFunctions, AreLookedUpInOnePlace) {
  for (const auto& entry : std::filesystem::recursive_directory_iterator(ORVANE_SOURCE_DIR)) {
    const std::string name = entry.path().filename().string();
    if (entry.is_regular_file() && name != "vendor_library.hpp" && name != "sdk_function.hpp") {
      EXPECT_EQ(contentOf(entry.path()).find("resolveSymbol("), std::string::npos) << name;
    }
  }
}

}  // namespace

}  // namespace orvane::host
