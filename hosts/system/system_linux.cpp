// What the host programs ask of the operating system, on Linux.
#include <fcntl.h>
#include <sys/file.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <cstdlib>

#include "system/system.hpp"

namespace orvane::host {

namespace {

volatile std::sig_atomic_t stopWasRequested = 0;

extern "C" void requestStop(int) {
  stopWasRequested = 1;
}

// A signal that is ignored stays ignored: whoever started the program wants it to survive that.
void setSignal(int signal, void (*handler)(int), int flags) {
  struct sigaction action = {};
  if (sigaction(signal, nullptr, &action) != 0 || action.sa_handler == SIG_IGN) {
    return;
  }
  action.sa_handler = handler;
  action.sa_flags = flags;
  sigaction(signal, &action, nullptr);
}

// False if somebody else has the lock. A file system without locks is no reason not to write.
bool lock(int descriptor) {
  return flock(descriptor, LOCK_EX | LOCK_NB) == 0 || errno != EWOULDBLOCK;
}

bool isNameOf(const std::filesystem::path& path, int descriptor) {
  struct stat opened = {};
  struct stat named = {};
  return fstat(descriptor, &opened) == 0 && stat(path.c_str(), &named) == 0 &&
         opened.st_dev == named.st_dev && opened.st_ino == named.st_ino;
}

// An existing file, locked if nobody else has locked it.
class ExistingFile {
 public:
  explicit ExistingFile(const std::filesystem::path& path)
      : descriptor_(open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK)),
        isBeingWritten_(descriptor_ >= 0 && !lock(descriptor_)) {}
  ~ExistingFile() {
    if (descriptor_ >= 0) {
      close(descriptor_);
    }
  }
  ExistingFile(const ExistingFile&) = delete;
  ExistingFile& operator=(const ExistingFile&) = delete;

  bool isBeingWritten() const { return isBeingWritten_; }

 private:
  const int descriptor_;
  const bool isBeingWritten_;
};

bool renameToNewName(const std::filesystem::path& from, const std::filesystem::path& to) {
  if (renameat2(AT_FDCWD, from.c_str(), AT_FDCWD, to.c_str(), RENAME_NOREPLACE) == 0) {
    return true;
  }
  if (errno != EINVAL && errno != ENOSYS) {
    return false;
  }
  // The file system does not know the flag.
  struct stat existing = {};
  if (lstat(to.c_str(), &existing) == 0) {
    errno = EEXIST;
    return false;
  }
  return rename(from.c_str(), to.c_str()) == 0;
}

}  // namespace

std::vector<std::string> commandLineArguments(int argc, char** argv) {
  return argc > 1 ? std::vector<std::string>(argv + 1, argv + argc) : std::vector<std::string>();
}

void useUtf8Console() {}

bool isTerminal(std::FILE* stream) {
  return isatty(fileno(stream)) == 1;
}

void catchStopRequests() {
  for (const int signal : {SIGINT, SIGTERM, SIGHUP}) {
    // The SDK's own system calls are restarted. The second request finds the default action.
    setSignal(signal, requestStop, static_cast<int>(SA_RESTART | SA_RESETHAND));
  }
  for (const int signal : {SIGPIPE, SIGXFSZ}) {
    setSignal(signal, SIG_IGN, 0);
  }
}

bool stopRequested() {
  return stopWasRequested != 0;
}

void useFineSleep() {}

void stayAwake(bool /*isWanted*/) {}

std::int64_t peakMemory() {
  struct rusage usage = {};
  return getrusage(RUSAGE_SELF, &usage) == 0 ? std::int64_t{usage.ru_maxrss} * 1024 : 0;
}

std::tm localTime(std::time_t time) {
  std::tm calendar = {};
  localtime_r(&time, &calendar);
  return calendar;
}

std::FILE* openFile(const std::filesystem::path& path, const std::string& mode) {
  return std::fopen(path.c_str(), (mode + "e").c_str());
}

std::FILE* openFileToWrite(const std::filesystem::path& path) {
  while (true) {
    const int descriptor = open(path.c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0666);
    if (descriptor < 0) {
      return nullptr;
    }
    if (!lock(descriptor)) {
      close(descriptor);
      errno = EBUSY;
      return nullptr;
    }
    // Until it was locked, its writer may have renamed or removed it.
    if (isNameOf(path, descriptor)) {
      std::FILE* const file = fdopen(descriptor, "r+b");
      if (file == nullptr) {
        close(descriptor);
      }
      return file;
    }
    close(descriptor);
  }
}

bool isBeingWritten(const std::filesystem::path& path) {
  return ExistingFile(path).isBeingWritten();
}

bool renameFile(const std::filesystem::path& from, const std::filesystem::path& to,
                bool mayReplace) {
  if (!mayReplace) {
    return renameToNewName(from, to);
  }
  const ExistingFile replaced(to);  // locked until it is replaced
  if (replaced.isBeingWritten()) {
    errno = EBUSY;
    return false;
  }
  return rename(from.c_str(), to.c_str()) == 0;
}

bool seekFile(std::FILE* file, std::int64_t position) {
  static_assert(sizeof(off_t) == sizeof position);
  return fseeko(file, position, SEEK_SET) == 0;
}

// Without the comparison ext4 would take even a new, empty file for one that is being replaced, and
// write all of it to the disk when it is closed.
bool truncateFile(std::FILE* file, std::int64_t size) {
  struct stat status = {};
  return fstat(fileno(file), &status) == 0 &&
         (status.st_size == size || ftruncate(fileno(file), size) == 0);
}

bool flushToDisk(std::FILE* file) {
  // EINVAL: the file system cannot do that.
  return fsync(fileno(file)) == 0 || errno == EINVAL;
}

std::string environmentVariable(const char* name) {
  // Only the main thread uses the environment, before it loads any SDK.
  const char* const value = std::getenv(name);  // NOLINT(concurrency-mt-unsafe)
  return value == nullptr ? "" : value;
}

std::filesystem::path userDataFile(const char* name) {
  const std::string data = environmentVariable("XDG_DATA_HOME");
  const std::string home = environmentVariable("HOME");
  if (!data.empty()) {
    return std::filesystem::path(data) / "orvane" / name;
  }
  return home.empty() ? std::filesystem::path()
                      : std::filesystem::path(home) / ".local" / "share" / "orvane" / name;
}

void setEnvironmentVariable(const char* name, const std::string& value) {
  setenv(name, value.c_str(), 1);  // NOLINT(concurrency-mt-unsafe): as above
}

}  // namespace orvane::host
