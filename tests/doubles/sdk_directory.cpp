// Directories of SDK libraries made for one test.
#include "doubles/sdk_directory.hpp"

#include <gtest/gtest.h>

#include <fstream>
#include <stdexcept>

namespace orvane::testing {

namespace {

std::string fileName(const std::string& baseName) {
#ifdef _WIN32
  return baseName + ".dll";
#else
  return "lib" + baseName + ".so";
#endif
}

void writeAll(const std::filesystem::path& file, const std::string& content) {
  std::ofstream stream(file, std::ios::binary);
  stream << content;
  if (!stream.flush()) {
    throw std::runtime_error("cannot write " + file.string());
  }
}

// Removes a function by renaming it in the name table of the file. The last letter becomes "!", the
// lowest character in use: Windows searches the names by bisection, so they must stay sorted.
void removeFunction(std::string& image, const std::string& function) {
  const std::string name = '\0' + function + '\0';
  std::size_t found = 0;
  for (std::size_t at = image.find(name); at != std::string::npos; at = image.find(name, at + 1)) {
    image[at + function.size()] = '!';
    ++found;
  }
  if (found == 0) {
    throw std::runtime_error("no function to remove: " + function);
  }
}

}  // namespace

SdkDirectory::SdkDirectory(const std::string& name) {
  const auto* test = ::testing::UnitTest::GetInstance()->current_test_info();
  // An absolute path with its drive: Windows searches the directory of a library for its
  // dependencies only if the library is loaded by an absolute path.
  path_ = std::filesystem::absolute(ORVANE_SCRATCH_DIR) /
          (std::string(test->test_suite_name()) + "." + test->name()) / name;
  path_.make_preferred();
  std::filesystem::remove_all(path_);
  std::filesystem::create_directories(path_);
}

void SdkDirectory::add(const std::string& baseName, const std::vector<std::string>& missing) const {
  std::string image = contentOf(std::filesystem::path(ORVANE_SDK_DIR) / fileName(baseName));
  for (const std::string& function : missing) {
    removeFunction(image, function);
  }
  writeAll(file(baseName), image);
}

void SdkDirectory::addFile(const std::string& baseName, const std::string& content) const {
  writeAll(file(baseName), content);
}

std::string SdkDirectory::contentOf(const std::filesystem::path& file) {
  std::ifstream stream(file, std::ios::binary);
  std::string content(std::filesystem::file_size(file), '\0');
  if (!stream.read(content.data(), static_cast<std::streamsize>(content.size()))) {
    throw std::runtime_error("cannot read " + file.string());
  }
  return content;
}

std::filesystem::path SdkDirectory::file(const std::string& baseName) const {
  return path_ / fileName(baseName);
}

}  // namespace orvane::testing
