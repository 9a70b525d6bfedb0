// A file that is written at any position, of any size, and whose every failure is an exception.
#include "system/output_file.hpp"

#include <cerrno>
#include <stdexcept>
#include <system_error>

#include "system/text.hpp"

namespace orvane::host {

OutputFile::OutputFile(const std::filesystem::path& path)
    : name_(utf8FromPath(path)), file_(openEmptyFile(path)) {
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

void OutputFile::fail(const char* action) const {
  const std::string reason = std::generic_category().message(errno);
  throw std::runtime_error(std::string("Cannot ") + action + " " + inQuotes(name_) + ": " + reason);
}

}  // namespace orvane::host
