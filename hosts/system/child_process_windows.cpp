// Processes of this program and shared memory, on Windows.
#include <fcntl.h>
#include <io.h>
#include <windows.h>

#include <array>
#include <charconv>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <stdexcept>
#include <system_error>

#include "system/child_process.hpp"
#include "system/child_process_calls.hpp"
#include "system/text.hpp"

namespace orvane::host {

namespace {

constexpr DWORD longestEnd = 10000;  // milliseconds

[[noreturn]] void fail(const char* what) {
  throw std::system_error(static_cast<int>(GetLastError()), std::system_category(), what);
}

HANDLE asHandle(std::intptr_t handle) {
  return reinterpret_cast<HANDLE>(handle);
}

std::intptr_t asNumber(HANDLE handle) {
  return reinterpret_cast<std::intptr_t>(handle);
}

std::uint8_t* map(HANDLE memory, std::size_t size) {
  void* const address = MapViewOfFile(memory, FILE_MAP_READ | FILE_MAP_WRITE, 0, 0, size);
  if (address == nullptr) {
    fail("Shared memory cannot be used");
  }
  return static_cast<std::uint8_t*>(address);
}

struct HandleCloser {
  using pointer = HANDLE;
  void operator()(HANDLE handle) const { CloseHandle(handle); }
};
using Handle = std::unique_ptr<HANDLE, HandleCloser>;

struct PipeEnds {
  PipeEnds() {
    HANDLE ends[2] = {};
    if (CreatePipe(&ends[0], &ends[1], nullptr, 0) == 0) {
      fail("There is no pipe to a new process");
    }
    read.reset(ends[0]);
    write.reset(ends[1]);
  }
  Handle read;
  Handle write;
};

int descriptorOf(Handle handle, int flags) {
  return _open_osfhandle(asNumber(handle.release()), flags | _O_BINARY | _O_NOINHERIT);
}

// An argument as CommandLineToArgvW() reads it.
std::wstring quoted(const std::string& argument) {
  std::wstring text = L"\"";
  std::size_t backslashes = 0;
  for (const wchar_t letter : pathFromUtf8(argument).wstring()) {
    if (letter == L'"') {
      text.append(backslashes + 1, L'\\');
    }
    backslashes = letter == L'\\' ? backslashes + 1 : 0;
    text += letter;
  }
  return text.append(backslashes, L'\\') + L"\"";
}

std::wstring programFile() {
  std::wstring file(32768, L'\0');
  file.resize(GetModuleFileNameW(nullptr, file.data(), static_cast<DWORD>(file.size())));
  return file;
}

// The handles that a started process inherits, and no others.
class InheritedHandles {
 public:
  void add(HANDLE handle) {
    if (handle != nullptr && handle != INVALID_HANDLE_VALUE &&
        SetHandleInformation(handle, HANDLE_FLAG_INHERIT, HANDLE_FLAG_INHERIT) != 0) {
      handles_[count_++] = handle;
    }
  }

  LPPROC_THREAD_ATTRIBUTE_LIST asAttribute() {
    SIZE_T size = 0;
    InitializeProcThreadAttributeList(nullptr, 1, 0, &size);
    memory_.resize(size);
    auto* const list = reinterpret_cast<LPPROC_THREAD_ATTRIBUTE_LIST>(memory_.data());
    if (InitializeProcThreadAttributeList(list, 1, 0, &size) == 0 ||
        UpdateProcThreadAttribute(list, 0, PROC_THREAD_ATTRIBUTE_HANDLE_LIST, handles_.data(),
                                  count_ * sizeof(HANDLE), nullptr, nullptr) == 0) {
      fail("A new process cannot be started");
    }
    return list;
  }

 private:
  std::array<HANDLE, 4> handles_{};
  std::size_t count_ = 0;
  std::vector<std::uint8_t> memory_;
};

// Ends its processes when the last handle to it is closed, so also when this process is killed.
HANDLE newJob() {
  const HANDLE job = CreateJobObjectW(nullptr, nullptr);
  JOBOBJECT_EXTENDED_LIMIT_INFORMATION limits = {};
  limits.BasicLimitInformation.LimitFlags = JOB_OBJECT_LIMIT_KILL_ON_JOB_CLOSE;
  SetInformationJobObject(job, JobObjectExtendedLimitInformation, &limits, sizeof limits);
  return job;
}

}  // namespace

std::size_t readDescriptor(int descriptor, char* bytes, std::size_t size) {
  const int count = _read(descriptor, bytes, static_cast<unsigned>(size));
  return count > 0 ? static_cast<std::size_t>(count) : 0;
}

std::size_t writeDescriptor(int descriptor, const char* bytes, std::size_t size) {
  const int count = _write(descriptor, bytes, static_cast<unsigned>(size));
  return count > 0 ? static_cast<std::size_t>(count) : 0;
}

void closeDescriptor(int descriptor) {
  _close(descriptor);
}

SharedMemory::SharedMemory(std::size_t size) : size_(size) {
  const auto wide = static_cast<std::uint64_t>(size);
  const HANDLE memory =
      CreateFileMappingW(INVALID_HANDLE_VALUE, nullptr, PAGE_READWRITE,
                         static_cast<DWORD>(wide >> 32U), static_cast<DWORD>(wide), nullptr);
  if (memory == nullptr) {
    fail("There is no shared memory");
  }
  handle_ = asNumber(memory);
  bytes_ = map(memory, size);
}

SharedMemory::SharedMemory(const std::string& name) {
  const char* const end = name.data() + name.size();
  const auto first = std::from_chars(name.data(), end, handle_);
  const bool hasColon = first.ec == std::errc() && first.ptr != end && *first.ptr == ':';
  const auto second = std::from_chars(hasColon ? first.ptr + 1 : end, end, size_);
  if (second.ec != std::errc() || size_ == 0) {
    throw std::runtime_error("This is no shared memory: " + name);
  }
  bytes_ = map(asHandle(handle_), size_);
}

SharedMemory::~SharedMemory() {
  UnmapViewOfFile(bytes_);
  CloseHandle(asHandle(handle_));
}

std::string SharedMemory::namedForChild() const {
  return std::to_string(handle_) + ":" + std::to_string(size_);
}

ChildProcess::ChildProcess(const std::vector<std::string>& arguments, const SharedMemory* memory) {
  // A handle is inheritable for a moment. Two processes must not be started in that moment.
  static std::mutex starting;
  const std::lock_guard<std::mutex> lock(starting);
  PipeEnds toChild;
  PipeEnds fromChild;
  InheritedHandles inherited;
  inherited.add(toChild.read.get());
  inherited.add(fromChild.write.get());
  inherited.add(memory == nullptr ? nullptr : asHandle(memory->handle_));
  const HANDLE errors = GetStdHandle(STD_ERROR_HANDLE);
  inherited.add(errors);
  STARTUPINFOEXW start = {};
  start.StartupInfo.cb = sizeof start;
  start.StartupInfo.dwFlags = STARTF_USESTDHANDLES;
  start.StartupInfo.hStdInput = toChild.read.get();
  start.StartupInfo.hStdOutput = fromChild.write.get();
  start.StartupInfo.hStdError = errors;
  start.lpAttributeList = inherited.asAttribute();
  const std::wstring file = programFile();
  std::wstring commandLine = L"\"" + file + L"\"";
  for (const std::string& argument : arguments) {
    commandLine += L" " + quoted(argument);
  }
  PROCESS_INFORMATION started = {};
  // In a group of its own: Ctrl-C in the console is for the process that ends the others.
  if (CreateProcessW(file.c_str(), commandLine.data(), nullptr, nullptr, TRUE,
                     EXTENDED_STARTUPINFO_PRESENT | CREATE_NEW_PROCESS_GROUP | CREATE_SUSPENDED,
                     nullptr, nullptr, &start.StartupInfo, &started) == 0) {
    fail("A new process cannot be started");
  }
  process_ = asNumber(started.hProcess);
  const HANDLE job = newJob();
  job_ = asNumber(job);
  AssignProcessToJobObject(job, started.hProcess);
  ResumeThread(started.hThread);
  CloseHandle(started.hThread);
  if (memory != nullptr) {
    SetHandleInformation(asHandle(memory->handle_), HANDLE_FLAG_INHERIT, 0);
  }
  pipe_.emplace(descriptorOf(std::move(fromChild.read), _O_RDONLY),
                descriptorOf(std::move(toChild.write), _O_WRONLY));
}

ChildProcess::~ChildProcess() {
  end();
  CloseHandle(asHandle(process_));
  CloseHandle(asHandle(job_));
}

std::int64_t ChildProcess::id() const {
  return GetProcessId(asHandle(process_));
}

void ChildProcess::kill() {
  TerminateProcess(asHandle(process_), 1);
}

std::string ChildProcess::end() {
  const std::lock_guard<std::mutex> lock(ending_);
  if (hasEnded_) {
    return "";
  }
  hasEnded_ = true;
  // Its pipe may be closed a moment before it has ended by itself.
  constexpr DWORD shortEnd = 200;
  if (WaitForSingleObject(asHandle(process_), shortEnd) != WAIT_OBJECT_0) {
    kill();
    WaitForSingleObject(asHandle(process_), longestEnd);
  }
  DWORD status = 0;
  GetExitCodeProcess(asHandle(process_), &status);
  std::array<char, 32> text{};
  std::snprintf(text.data(), text.size(), status < 256 ? "exit status %lu" : "exception %08lX",
                static_cast<unsigned long>(status));
  return text.data();
}

ParentPipe::ParentPipe() : LinePipe(_dup(0), _dup(1)) {
  _dup2(2, 1);
  SetStdHandle(STD_OUTPUT_HANDLE, GetStdHandle(STD_ERROR_HANDLE));
  // Without this, a crash could leave a window that waits for an answer.
  SetErrorMode(SEM_FAILCRITICALERRORS | SEM_NOGPFAULTERRORBOX | SEM_NOOPENFILEERRORBOX);
}

void endThisProcess(int status) {
  TerminateProcess(GetCurrentProcess(), static_cast<UINT>(status));
  std::abort();  // never gets here
}

}  // namespace orvane::host
