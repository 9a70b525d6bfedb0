// Files that are read or written at any position, of any size. Every failure is an exception.
#include "system/file.hpp"

#include <cerrno>
#include <stdexcept>
#include <system_error>

#include "system/disk_space.hpp"

#include "system/text.hpp"

namespace orvane::host {

std::string failureReason(int error) {
  return error == ENOSPC ? "the disk is full" : std::generic_category().message(error);
}

OpenFile::OpenFile(const std::filesystem::path& path, std::FILE* file)
    : name_(inQuotes(utf8FromPath(path))), file_(file) {}

void OpenFile::fail(const char* action) const {
  fail(action, failureReason(errno));
}

void OpenFile::fail(const char* action, const std::string& reason) const {
  throw std::runtime_error(std::string("Cannot ") + action + " " + name_ + ": " + reason);
}

InputFile::InputFile(const std::filesystem::path& path) : OpenFile(path, nullptr) {
  file_.reset(openFile(path, "rb"));
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
    fail("read", errno == 0 ? "it ends too early" : failureReason(errno));
  }
}

OutputFile::OutputFile(const std::filesystem::path& path, Existing existing)
    : OpenFile(path, nullptr), path_(path), temporary_(temporaryName(path)), existing_(existing) {
  file_.reset(openFileToWrite(temporary_));
  if (file_ == nullptr) {
    failToCreate();
  }
  try {
    prepare();
  } catch (const std::exception&) {
    discard();
    throw;
  }
}

OutputFile::~OutputFile() {
  if (!isPublished_) {
    discard();
  }
}

// Another program that has published its file locks it under its own name. One that publishes it
// later has the temporary name until then, and this one would not have got it.
void OutputFile::prepare() {
  std::error_code ignored;
  const bool exists = std::filesystem::exists(std::filesystem::symlink_status(path_, ignored));
  errno = !exists                                         ? 0
          : isBeingWritten(path_)                         ? EBUSY
          : existing_ == Existing::Refuse                 ? EEXIST
          : std::filesystem::is_directory(path_, ignored) ? EISDIR
                                                          : 0;
  if (errno != 0 || std::setvbuf(file_.get(), nullptr, _IONBF, 0) != 0 ||
      !truncateFile(file_.get(), 0)) {
    failToCreate();
  }
}

void OutputFile::failToCreate() const {
  switch (errno) {
    case EEXIST:
      fail("create", "it exists already");
    case EBUSY:
      fail("create", "another program is writing it");
    default:
      fail("create");
  }
}

void OutputFile::writeAt(std::int64_t position, std::span<const std::uint8_t> bytes) {
  if (bytes.empty()) {
    return;
  }
  if (!seekFile(file_.get(), position) ||
      std::fwrite(bytes.data(), 1, bytes.size(), file_.get()) != bytes.size()) {
    failToWrite(bytes.size());
  }
}

// If the disk has room for a part of the bytes only, Windows reports any reason.
void OutputFile::failToWrite(std::size_t bytes) const {
  const int reason = errno;
  std::error_code ignored;
  const auto free = freeSpace(std::filesystem::absolute(path_, ignored).parent_path());
  const bool isFull = free && *free < static_cast<std::int64_t>(bytes);
  fail("write", failureReason(isFull ? ENOSPC : reason));
}

void OutputFile::truncate(std::int64_t size) {
  if (!truncateFile(file_.get(), size)) {
    fail("shorten");
  }
}

void OutputFile::publish() {
  if (!isPublished_ && !renameFile(temporary_, path_, existing_ == Existing::Replace)) {
    failToCreate();
  }
  isPublished_ = true;
}

void OutputFile::close() {
  // Else a power cut could leave neither the file that is replaced nor this one.
  if (!isPublished_ && existing_ == Existing::Replace && !flushToDisk(file_.get())) {
    fail("finish");
  }
  publish();
  if (std::fclose(file_.release()) != 0) {
    fail("finish");
  }
}

void OutputFile::discard() {
  if (file_ != nullptr) {
    // Before it is closed: after that the name may be another program's.
    std::error_code ignored;
    std::filesystem::remove(isPublished_ ? path_ : temporary_, ignored);
    file_.reset();
  }
}

std::filesystem::path temporaryName(const std::filesystem::path& path) {
  std::filesystem::path name = path;
  name += ".orvane-part";
  return name;
}

}  // namespace orvane::host
