// A place for a test's files.
#include "scratch_directory.hpp"

#include <gtest/gtest.h>

#include <fstream>
#include <iterator>
#include <stdexcept>

namespace orvane::testing {

ScratchDirectory::ScratchDirectory() {
  const auto* test = ::testing::UnitTest::GetInstance()->current_test_info();
  path_ = std::filesystem::absolute(ORVANE_SCRATCH_DIR) / "hosts" / test->test_suite_name() /
          test->name();
  path_.make_preferred();
  std::filesystem::remove_all(path_);
  std::filesystem::create_directories(path_);
}

std::filesystem::path ScratchDirectory::file(const std::string& name) const {
  return path_ / std::u8string(name.begin(), name.end());
}

std::string utf8(const std::filesystem::path& path) {
  const std::u8string text = path.u8string();
  return {text.begin(), text.end()};
}

std::string contentOf(const std::filesystem::path& file) {
  std::ifstream stream(file, std::ios::binary);
  if (!stream) {
    throw std::runtime_error("cannot read " + utf8(file));
  }
  return {std::istreambuf_iterator<char>(stream), {}};
}

}  // namespace orvane::testing
