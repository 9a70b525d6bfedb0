// Processes of this program and shared memory, on Linux.
#include <fcntl.h>
#include <spawn.h>
#include <sys/mman.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <charconv>
#include <csignal>
#include <cstdlib>
#include <stdexcept>
#include <system_error>

#include "system/child_process.hpp"
#include "system/child_process_calls.hpp"

namespace orvane::host {

namespace {

constexpr int memoryDescriptor = 3;  // in the started process

[[noreturn]] void fail(int error, const char* what) {
  throw std::system_error(error, std::generic_category(), what);
}

std::uint8_t* map(int descriptor, std::size_t size) {
  void* const address = mmap(nullptr, size, PROT_READ | PROT_WRITE, MAP_SHARED, descriptor, 0);
  if (address == MAP_FAILED) {
    fail(errno, "Shared memory cannot be used");
  }
  return static_cast<std::uint8_t*>(address);
}

// The two ends of a pipe, which no other started process gets.
struct PipeEnds {
  PipeEnds() {
    std::array<int, 2> ends{};
    if (pipe2(ends.data(), O_CLOEXEC) != 0) {
      fail(errno, "There is no pipe to a new process");
    }
    read = ends[0];
    write = ends[1];
  }
  int read = -1;
  int write = -1;
};

class FileActions {
 public:
  FileActions() { posix_spawn_file_actions_init(&actions_); }
  ~FileActions() { posix_spawn_file_actions_destroy(&actions_); }
  FileActions(const FileActions&) = delete;
  FileActions& operator=(const FileActions&) = delete;

  void give(int descriptor, int as) { posix_spawn_file_actions_adddup2(&actions_, descriptor, as); }
  const posix_spawn_file_actions_t* get() const { return &actions_; }

 private:
  posix_spawn_file_actions_t actions_{};
};

}  // namespace

std::size_t readDescriptor(int descriptor, char* bytes, std::size_t size) {
  ssize_t count = -1;
  do {
    count = read(descriptor, bytes, size);
  } while (count < 0 && errno == EINTR);
  return count > 0 ? static_cast<std::size_t>(count) : 0;
}

std::size_t writeDescriptor(int descriptor, const char* bytes, std::size_t size) {
  ssize_t count = -1;
  do {
    count = write(descriptor, bytes, size);
  } while (count < 0 && errno == EINTR);
  return count > 0 ? static_cast<std::size_t>(count) : 0;
}

void closeDescriptor(int descriptor) {
  close(descriptor);
}

SharedMemory::SharedMemory(std::size_t size) : size_(size) {
  const int descriptor = memfd_create("frames", MFD_CLOEXEC);
  if (descriptor < 0) {
    fail(errno, "There is no shared memory");
  }
  handle_ = descriptor;
  if (ftruncate(descriptor, static_cast<off_t>(size)) != 0) {
    const int error = errno;
    close(descriptor);
    fail(error, "There is no shared memory");
  }
  bytes_ = map(descriptor, size);
}

SharedMemory::SharedMemory(const std::string& name) {
  const auto parsed = std::from_chars(name.data(), name.data() + name.size(), size_);
  if (parsed.ec != std::errc() || size_ == 0) {
    throw std::runtime_error("This is no shared memory: " + name);
  }
  handle_ = memoryDescriptor;
  fcntl(memoryDescriptor, F_SETFD, FD_CLOEXEC);
  bytes_ = map(memoryDescriptor, size_);
}

SharedMemory::~SharedMemory() {
  munmap(bytes_, size_);
  close(static_cast<int>(handle_));
}

std::string SharedMemory::namedForChild() const {
  return std::to_string(size_);
}

ChildProcess::ChildProcess(const std::vector<std::string>& arguments, const SharedMemory* memory) {
  const PipeEnds toChild;
  const PipeEnds fromChild;
  pipe_.emplace(fromChild.read, toChild.write);
  std::vector<std::string> texts{"/proc/self/exe"};
  texts.insert(texts.end(), arguments.begin(), arguments.end());
  std::vector<char*> pointers;
  pointers.reserve(texts.size() + 1);
  for (std::string& text : texts) {
    pointers.push_back(text.data());
  }
  pointers.push_back(nullptr);
  FileActions actions;
  if (memory != nullptr) {
    actions.give(static_cast<int>(memory->handle_), memoryDescriptor);
  }
  actions.give(toChild.read, STDIN_FILENO);
  actions.give(fromChild.write, STDOUT_FILENO);
  pid_t id = 0;
  const int error =
      posix_spawn(&id, texts.front().c_str(), actions.get(), nullptr, pointers.data(), environ);
  close(toChild.read);
  close(fromChild.write);
  if (error != 0) {
    fail(error, "A new process cannot be started");
  }
  process_ = id;
}

ChildProcess::~ChildProcess() {
  end();
}

std::int64_t ChildProcess::id() const {
  return process_;
}

void ChildProcess::kill() {
  const std::lock_guard<std::mutex> lock(ending_);
  if (!hasEnded_) {
    ::kill(static_cast<pid_t>(process_), SIGKILL);
  }
}

std::string ChildProcess::end() {
  kill();
  siginfo_t how{};
  if (!hasEnded_) {
    waitid(P_PID, static_cast<id_t>(process_), &how, WEXITED | WNOWAIT);
  }
  const std::lock_guard<std::mutex> lock(ending_);
  if (hasEnded_) {
    return "";
  }
  hasEnded_ = true;
  waitid(P_PID, static_cast<id_t>(process_), &how, WEXITED);
  return (how.si_code == CLD_EXITED ? "exit status " : "signal ") + std::to_string(how.si_status);
}

ParentPipe::ParentPipe()
    : LinePipe(fcntl(STDIN_FILENO, F_DUPFD_CLOEXEC, memoryDescriptor + 1),
               fcntl(STDOUT_FILENO, F_DUPFD_CLOEXEC, memoryDescriptor + 1)) {
  dup2(STDERR_FILENO, STDOUT_FILENO);
  const int nothing = open("/dev/null", O_RDONLY | O_CLOEXEC);
  dup2(nothing, STDIN_FILENO);
  close(nothing);
  // The end of the pipe ends the process, too, but not while a debugger or a user has stopped it.
  prctl(PR_SET_PDEATHSIG, SIGKILL);
}

void endThisProcess(int status) {
  _exit(status);
}

}  // namespace orvane::host
