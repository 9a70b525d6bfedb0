// The list of the functions that an SDK must have, compared with the library's own sources.
#include "sdk_check/sdk_functions.hpp"

#include <gtest/gtest.h>

#include <algorithm>
#include <regex>

#include "scratch_directory.hpp"

namespace orvane::host {

namespace {

using testing::contentOf;

// The functions of one maker that the library declares.
std::vector<std::string> declaredIn(const std::filesystem::path& header) {
  const std::string text = contentOf(header);
  const std::regex declaration(R"(\nSDK_(?:HRESULT_)?FUNCTION\(\w+,\s*(\w+),)");
  std::vector<std::string> names;
  for (std::sregex_iterator found(text.begin(), text.end(), declaration), end; found != end;
       ++found) {
    names.push_back((*found)[1]);
  }
  return names;
}

TEST(SdkFunctions, AreAllThatTheLibraryDeclares) {
  std::vector<std::vector<std::string>> declared;
  const auto directory = std::filesystem::path(ORVANE_SOURCE_DIR) / "vendors/sdk";
  for (const auto& header : std::filesystem::directory_iterator(directory)) {
    declared.push_back(declaredIn(header.path()));
    EXPECT_FALSE(declared.back().empty()) << header.path();
  }
  std::vector<std::vector<std::string>> listed;
  for (const Sdk& sdk : allSdks()) {
    listed.push_back(sdk.functions);
  }
  std::sort(declared.begin(), declared.end());
  std::sort(listed.begin(), listed.end());
  EXPECT_EQ(listed, declared);
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
