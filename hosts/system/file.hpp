// Files that are read or written at any position, of any size. Every failure is an exception.
#pragma once

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <memory>
#include <span>
#include <string>

#include "system/system.hpp"

namespace orvane::host {

/// What this value of errno means, without a full stop: "the disk is full", or the system's text.
std::string failureReason(int error);

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

  /// `file` may be null.
  OpenFile(const std::filesystem::path& path, std::FILE* file);

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

/// What to do with an existing file of the name under which a new one is to appear.
enum class Existing { Refuse, Replace };

/// A new file. It has a temporary name beside its own until it is published, so that nobody takes a
/// part for the whole, and an existing file stays until there is a new one. No two programs write
/// the same file.
///
/// It is not buffered in this process: what has been written reaches the operating system at once,
/// and survives the end of the program.
class OutputFile : public OpenFile {
 public:
  /// A temporary file that a killed program has left is emptied and used.
  explicit OutputFile(const std::filesystem::path& path, Existing existing = Existing::Refuse);

  /// Removes a file that was not published.
  ~OutputFile();
  OutputFile(const OutputFile&) = delete;
  OutputFile& operator=(const OutputFile&) = delete;

  /// Writes all the bytes from this position on.
  void writeAt(std::int64_t position, std::span<const std::uint8_t> bytes);

  /// Truncates the file to this size.
  void truncate(std::int64_t size);

  /// Gives the file its own name, if it does not have it yet.
  void publish();

  /// Publishes the file and closes it. After that it can only be destroyed. A file that may replace
  /// another and was not published before is on the disk first.
  void close();

  /// Removes the file, published or not, and closes it. Ignores failures.
  void discard();

 private:
  void prepare();
  [[noreturn]] void failToCreate() const;
  [[noreturn]] void failToWrite(std::size_t bytes) const;

  std::filesystem::path path_;
  std::filesystem::path temporary_;
  Existing existing_;
  bool isPublished_ = false;
};

/// The name that OutputFile gives this file until it is published.
std::filesystem::path temporaryName(const std::filesystem::path& path);

}  // namespace orvane::host
