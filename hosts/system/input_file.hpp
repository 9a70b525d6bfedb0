// A file that is read at any position, of any size, and whose every failure is an exception.
#pragma once

#include <cstdint>
#include <filesystem>
#include <memory>
#include <span>
#include <string>

#include "system/system.hpp"

namespace orvane::host {

/// A file that exists. Every member throws std::runtime_error with a sentence that names the file.
class InputFile {
 public:
  explicit InputFile(const std::filesystem::path& path);

  /// The file's size in bytes when it was opened.
  std::int64_t size() const { return size_; }

  /// Reads as many bytes as there is room for, from this position on.
  void readAt(std::int64_t position, std::span<std::uint8_t> bytes) const;

  /// The file's name in quotation marks, for a message.
  const std::string& name() const { return name_; }

 private:
  [[noreturn]] void fail(const std::string& reason) const;

  struct Closer {
    void operator()(std::FILE* file) const { static_cast<void>(std::fclose(file)); }
  };

  std::string name_;
  std::unique_ptr<std::FILE, Closer> file_;
  std::int64_t size_ = 0;
};

}  // namespace orvane::host
