// A file that is read at any position, of any size, and whose every failure is an exception.
#include "system/input_file.hpp"

#include <cerrno>
#include <stdexcept>
#include <system_error>

#include "system/text.hpp"

namespace orvane::host {

InputFile::InputFile(const std::filesystem::path& path)
    : name_(inQuotes(utf8FromPath(path))), file_(openExistingFile(path)) {
  if (file_ == nullptr) {
    fail(std::generic_category().message(errno));
  }
  std::error_code error;
  const std::uintmax_t size = std::filesystem::file_size(path, error);
  if (error) {
    fail(error.default_error_condition().message());
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
    fail(errno == 0 ? "it ends too early" : std::generic_category().message(errno));
  }
}

void InputFile::fail(const std::string& reason) const {
  throw std::runtime_error("Cannot read " + name_ + ": " + reason);
}

}  // namespace orvane::host
