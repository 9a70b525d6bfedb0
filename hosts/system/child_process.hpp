// Processes of this program that it starts for a part of its work: the lines of text that pass
// between it and them, and the memory that it shares with them.
#pragma once

#include <cstddef>
#include <cstdint>
#include <mutex>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace orvane::host {

/// Memory that a process shares with a process that it starts. It has no name and is freed with the
/// last process that uses it, however that ends. It takes memory only where it was written.
class SharedMemory {
 public:
  /// New memory of this size, which is not 0. Throws std::system_error.
  explicit SharedMemory(std::size_t size);

  /// In a started process: the memory with this name of namedForChild(). Throws std::system_error,
  /// or std::runtime_error if that is no such name.
  explicit SharedMemory(const std::string& name);

  ~SharedMemory();
  SharedMemory(const SharedMemory&) = delete;
  SharedMemory& operator=(const SharedMemory&) = delete;

  std::span<std::uint8_t> bytes() const { return {bytes_, size_}; }

  /// What a started process calls the memory, for its arguments.
  std::string namedForChild() const;

 private:
  friend class ChildProcess;
  std::intptr_t handle_ = -1;  // a descriptor on Linux, a handle on Windows
  std::uint8_t* bytes_ = nullptr;
  std::size_t size_ = 0;
};

/// Lines of text through two pipes. Lines end with "\n" and hold none.
class LinePipe {
 public:
  /// Descriptors of the C runtime, which are closed at the end.
  LinePipe(int in, int out) : in_(in), out_(out) {}
  ~LinePipe();
  LinePipe(const LinePipe&) = delete;
  LinePipe& operator=(const LinePipe&) = delete;

  /// Waits for a line; none when the other process has closed its end. One thread only.
  std::optional<std::string> readLine();

  /// False when the other process has closed its end. Any thread.
  bool writeLine(std::string line);

 private:
  const int in_;
  const int out_;
  std::string unread_;
  std::mutex writing_;
};

/// A process of this program. It ends with the process that started it, at the latest.
class ChildProcess {
 public:
  /// Starts this program's file with the arguments and the memory, if there is one. Its standard
  /// error output is this process's. The thread that calls this must live as long as the process
  /// should. Throws std::system_error.
  ChildProcess(const std::vector<std::string>& arguments, const SharedMemory* memory);

  /// Ends the process at once.
  ~ChildProcess();
  ChildProcess(const ChildProcess&) = delete;
  ChildProcess& operator=(const ChildProcess&) = delete;

  LinePipe& pipe() { return *pipe_; }

  /// The process's number in this system.
  std::int64_t id() const;

  /// Ends the process at once. Any thread.
  void kill();

  /// Ends the process at once, unless it has ended, and tells how it ended: "signal 11", "exit
  /// status 3". One thread only.
  std::string end();

 private:
  std::intptr_t process_ = 0;               // its number on Linux, its handle on Windows
  [[maybe_unused]] std::intptr_t job_ = 0;  // Windows: ends the process with this one
  bool hasEnded_ = false;
  std::mutex ending_;
  std::optional<LinePipe> pipe_;
};

/// In a started process: the pipe to the process that started it. From now on, what this process
/// prints on its standard output goes to its standard error output, so that a library's messages do
/// not get among the lines.
class ParentPipe : public LinePipe {
 public:
  ParentPipe();
};

/// Ends this process without running anything at its end: another thread may be stuck in a library.
[[noreturn]] void endThisProcess(int status);

}  // namespace orvane::host
