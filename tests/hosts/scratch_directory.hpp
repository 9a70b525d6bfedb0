// A place for a test's files.
#pragma once

#include <filesystem>
#include <string>

namespace orvane::testing {

/// A directory of the running test, initially empty. It is kept after the test for inspection, and
/// emptied when the test runs again.
class ScratchDirectory {
 public:
  ScratchDirectory();

  /// The file of this name, given in UTF-8, in the directory.
  std::filesystem::path file(const std::string& name) const;

  const std::filesystem::path& path() const { return path_; }

 private:
  std::filesystem::path path_;
};

/// A path's text in UTF-8.
std::string utf8(const std::filesystem::path& path);

/// A file's whole content.
std::string contentOf(const std::filesystem::path& file);

}  // namespace orvane::testing
