// Files that are read or written at any position, of any size. Every failure is an exception.
#include "system/file.hpp"

#include <cerrno>
#include <stdexcept>
#include <system_error>

#include "system/text.hpp"

namespace orvane::host {

OpenFile::OpenFile(const std::filesystem::path& path, const char* mode)
    : name_(inQuotes(utf8FromPath(path))), file_(openFile(path, mode)) {}

void OpenFile::fail(const char* action) const {
  fail(action, std::generic_category().message(errno));
}

void OpenFile::fail(const char* action, const std::string& reason) const {
  throw std::runtime_error(std::string("Cannot ") + action + " " + name_ + ": " + reason);
}

InputFile::InputFile(const std::filesystem::path& path) : OpenFile(path, "rb") {
  if (file_ == nullptr) {
    fail("read");
  }
  std::error_code error;
  const std::uintmax_t size = std::filesystem::file_size(path, error);
  if (error) {
    fail("read", error.default_error_condition().message());
  }
  size_ = static_cast<std::int64_t>(size);
}

void InputFile::readAt(std::int64_t position, std::span<std::uint8_t> bytes) const {
  if (bytes.empty()) {
    return;
  }
  errno = 0;
  if (!seekFile(file_.get(), position) ||
      std::fread(bytes.data(), 1, bytes.size(), file_.get()) != bytes.size()) {
    fail("read", errno == 0 ? "it ends too early" : std::generic_category().message(errno));
  }
}

OutputFile::OutputFile(const std::filesystem::path& path) : OpenFile(path, "w+b") {
  if (file_ == nullptr || std::setvbuf(file_.get(), nullptr, _IONBF, 0) != 0) {
    fail("create");
  }
}

void OutputFile::writeAt(std::int64_t position, std::span<const std::uint8_t> bytes) {
  if (bytes.empty()) {
    return;
  }
  if (!seekFile(file_.get(), position) ||
      std::fwrite(bytes.data(), 1, bytes.size(), file_.get()) != bytes.size()) {
    fail("write");
  }
}

void OutputFile::truncate(std::int64_t size) {
  if (!truncateFile(file_.get(), size)) {
    fail("shorten");
  }
}

void OutputFile::close() {
  if (std::fclose(file_.release()) != 0) {
    fail("finish");
  }
}

}  // namespace orvane::host
