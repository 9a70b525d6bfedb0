// Directories of SDK libraries made for one test.
#pragma once

#include <filesystem>
#include <string>
#include <vector>

#include "doubles/sdk_families.hpp"

namespace orvane::testing {

/// A directory of the running test's own, empty at first. It is left behind for a look after a
/// failure, and emptied when the test runs again.
class SdkDirectory {
 public:
  /// `name` tells several directories of one test apart.
  explicit SdkDirectory(const std::string& name = "sdk");

  /// Copies the simulated SDK of this base name into the directory; without the functions in
  /// `missing`.
  void add(const std::string& baseName, const std::vector<std::string>& missing = {}) const;

  /// Writes a file of this content in place of an SDK library.
  void addFile(const std::string& baseName, const std::string& content) const;

  /// The file that a library of this base name has in the directory.
  std::filesystem::path file(const std::string& baseName) const;

  /// The directory as oc_library_dir() takes it.
  std::string utf8() const;

  const std::filesystem::path& path() const { return path_; }

 private:
  std::filesystem::path path_;
};

}  // namespace orvane::testing
