// The fuzzers' corpus, run through once: every input that ever taught them something, and the rules
// that they check.
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <iterator>

#include "camera_json/json_check.hpp"
#include "lying_sdks/liar.hpp"
#include "lying_sdks/session.hpp"

namespace orvane::fuzz {
namespace {

using Bytes = std::vector<std::uint8_t>;
using Check = std::vector<std::string>(std::span<const std::uint8_t>);

Bytes readAll(const std::filesystem::path& file) {
  std::ifstream stream(file, std::ios::binary);
  return {std::istreambuf_iterator<char>(stream), std::istreambuf_iterator<char>()};
}

// Returns the number of inputs.
int replay(const char* corpus, Check* check) {
  int count = 0;
  for (const auto& entry :
       std::filesystem::directory_iterator(std::filesystem::path(ORVANE_CORPUS_DIR) / corpus)) {
    for (const std::string& rule : check(readAll(entry.path()))) {
      ADD_FAILURE() << entry.path().filename().string() << ": " << rule;
    }
    ++count;
  }
  return count;
}

TEST(FuzzReplay, LyingSdks) {
  EXPECT_GE(replay("lying_sdks", runSession), 50);
}

TEST(FuzzReplay, CameraJson) {
  EXPECT_GE(replay("camera_json", checkDescriptionOf), 20);
}

TEST(FuzzReplay, NoBytesAtAllAreASessionOfOrdinaryAnswers) {
  EXPECT_EQ(runSession({}), std::vector<std::string>{});
  EXPECT_EQ(liar().openDevices(), 0U);
  EXPECT_EQ(checkDescriptionOf({}), std::vector<std::string>{});
}

// The rules themselves must be able to fail.
TEST(FuzzReplay, LiarNoticesWhatALibraryMustNotDo) {
  Liar& lie = liar();
  lie.begin({});
  lie.used(Vendor::Asi, 1, "ASIInitCamera");
  lie.closed(Vendor::Asi, 1);
  lie.opened(Vendor::Asi, 1);
  lie.opened(Vendor::Asi, 1);
  lie.stopped(Vendor::Asi, 1);
  lie.used(Vendor::Asi, 1, "ASIStartVideoCapture").isStreaming = true;
  lie.closed(Vendor::Asi, 1);
  EXPECT_EQ(lie.violations,
            (std::vector<std::string>{
                "call on a device that is not open: ASIInitCamera",
                "call on a device that is not open: ASICloseCamera", "opened twice: ASICamera2",
                "stop without a start: ASICamera2", "closed while streaming: ASICamera2"}));
}

}  // namespace
}  // namespace orvane::fuzz
