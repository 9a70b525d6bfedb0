// Files that are read or written at any position, of any size. Every failure is an exception.
#pragma once

#include <cstdint>
#include <filesystem>
#include <memory>
#include <span>
#include <string>

#include "system/system.hpp"

namespace orvane::host {

/// An open file. Every member of the two kinds below throws std::runtime_error with a sentence that
/// names the file.
class OpenFile {
 public:
  /// The file's name in quotation marks, for a message.
  const std::string& name() const { return name_; }

 protected:
  struct Closer {
    void operator()(std::FILE* file) const { static_cast<void>(std::fclose(file)); }
  };

  OpenFile(const std::filesystem::path& path, const char* mode);

  /// The reason is that of `errno`.
  [[noreturn]] void fail(const char* action) const;
  [[noreturn]] void fail(const char* action, const std::string& reason) const;

  std::string name_;
  std::unique_ptr<std::FILE, Closer> file_;
};

/// An existing file, open for reading.
class InputFile : public OpenFile {
 public:
  explicit InputFile(const std::filesystem::path& path);

  /// The file's size in bytes when it was opened.
  std::int64_t size() const { return size_; }

  /// Fills `bytes` from this position on.
  void readAt(std::int64_t position, std::span<std::uint8_t> bytes) const;

 private:
  std::int64_t size_ = 0;
};

/// A new file, or one that has been emptied. It is not buffered in this process: what has been
/// written reaches the operating system at once, and survives the end of the program.
class OutputFile : public OpenFile {
 public:
  explicit OutputFile(const std::filesystem::path& path);

  /// Writes all the bytes from this position on.
  void writeAt(std::int64_t position, std::span<const std::uint8_t> bytes);

  /// Truncates the file to this size.
  void truncate(std::int64_t size);

  /// Closes the file. After that it can only be destroyed.
  void close();
};

}  // namespace orvane::host
