// A file that is written at any position, of any size, and whose every failure is an exception.
#pragma once

#include <cstdint>
#include <filesystem>
#include <memory>
#include <span>
#include <string>

#include "system/system.hpp"

namespace orvane::host {

/// A new file, or one that has been emptied. Nothing is held back in this process: what has been
/// written reaches the operating system at once, and survives the end of the program.
///
/// Every member throws std::runtime_error with a sentence that names the file.
class OutputFile {
 public:
  explicit OutputFile(const std::filesystem::path& path);

  /// Writes all the bytes from this position on.
  void writeAt(std::int64_t position, std::span<const std::uint8_t> bytes);

  /// Cuts the file off at this size.
  void truncate(std::int64_t size);

  /// Closes the file; it can only be destroyed from here on.
  void close();

 private:
  [[noreturn]] void fail(const char* action) const;

  struct Closer {
    void operator()(std::FILE* file) const { static_cast<void>(std::fclose(file)); }
  };

  std::string name_;  // for messages
  std::unique_ptr<std::FILE, Closer> file_;
};

}  // namespace orvane::host
