// Runs the corpus of the fuzzers: the inputs that they kept, with the same checks.
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <iterator>

#include "adversarial_sdks/adversary.hpp"
#include "checks.hpp"

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

TEST(FuzzReplay, AdversarialSdks) {
  EXPECT_GE(replay("adversarial_sdks", runSession), 50);
}

TEST(FuzzReplay, CameraJson) {
  EXPECT_GE(replay("camera_json", checkDescriptionOf), 20);
}

TEST(FuzzReplay, AlpacaRequests) {
  EXPECT_GE(replay("alpaca_requests", checkRequest), 30);
}

TEST(FuzzReplay, EmptyInputGivesOrdinaryAnswers) {
  EXPECT_EQ(runSession({}), std::vector<std::string>{});
  EXPECT_EQ(adversary().openDevices(), 0U);
  EXPECT_EQ(checkDescriptionOf({}), std::vector<std::string>{});
}

// Shows that the checks can fail.
TEST(FuzzReplay, AdversaryReportsViolations) {
  Adversary& answers = adversary();
  answers.begin({});
  answers.used(Vendor::Asi, 1, "ASIInitCamera");
  answers.closed(Vendor::Asi, 1);
  answers.opened(Vendor::Asi, 1);
  answers.opened(Vendor::Asi, 1);
  answers.stopped(Vendor::Asi, 1);
  answers.used(Vendor::Asi, 1, "ASIStartVideoCapture").isStreaming = true;
  answers.closed(Vendor::Asi, 1);
  EXPECT_EQ(answers.violations,
            (std::vector<std::string>{
                "call on a device that is not open: ASIInitCamera",
                "call on a device that is not open: ASICloseCamera", "opened twice: ASICamera2",
                "stop without a start: ASICamera2", "closed while streaming: ASICamera2"}));
}

}  // namespace
}  // namespace orvane::fuzz
