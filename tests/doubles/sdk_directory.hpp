// Directories of SDK libraries made for one test.
#pragma once

#include <filesystem>
#include <string>
#include <vector>

#include "doubles/sdk_families.hpp"

namespace orvane::testing {

/// A path in the form that oc_library_dir() takes.
inline std::string utf8Of(const std::filesystem::path& path) {
  const std::u8string text = path.u8string();
  return {text.begin(), text.end()};
}

/// A directory of the running test, initially empty. It is kept after the test for inspection, and
/// emptied when the test runs again.
class SdkDirectory {
 public:
  /// `name` distinguishes several directories of one test.
  explicit SdkDirectory(const std::string& name = "sdk");

  /// Copies the simulated SDK of this base name into the directory, without the functions in
  /// `missing`.
  void add(const std::string& baseName, const std::vector<std::string>& missing = {}) const;

  /// Writes a file with this content under the name of an SDK library.
  void addFile(const std::string& baseName, const std::string& content) const;

  /// The path of the library with this base name in the directory.
  std::filesystem::path file(const std::string& baseName) const;

  /// The whole content of a file.
  static std::string contentOf(const std::filesystem::path& file);

  /// utf8Of() the directory.
  std::string utf8() const { return utf8Of(path_); }

  const std::filesystem::path& path() const { return path_; }

 private:
  std::filesystem::path path_;
};

}  // namespace orvane::testing
