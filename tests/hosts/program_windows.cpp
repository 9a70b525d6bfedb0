// Runs a program as a user does, on Windows.
#include <windows.h>

#include <stdexcept>

#include "program.hpp"
#include "scratch_directory.hpp"

namespace orvane::testing {

namespace {

std::wstring wide(const std::string& utf8Text) {
  return std::filesystem::path(std::u8string(utf8Text.begin(), utf8Text.end())).wstring();
}

// Quotes an argument as CommandLineToArgvW() expects it: backslashes before a quotation mark, and
// only those, are doubled.
std::wstring quotedArgument(const std::wstring& argument) {
  std::wstring text = L"\"";
  std::size_t backslashes = 0;
  for (const wchar_t letter : argument) {
    if (letter == L'\\') {
      ++backslashes;
    } else {
      text.append(letter == L'"' ? backslashes + 1 : 0, L'\\');
      backslashes = 0;
    }
    text += letter;
  }
  return text.append(backslashes, L'\\') + L'"';
}

HANDLE inheritableFile(const std::filesystem::path& file) {
  SECURITY_ATTRIBUTES inheritable{sizeof inheritable, nullptr, TRUE};
  HANDLE handle = CreateFileW(file.c_str(), GENERIC_WRITE, FILE_SHARE_READ | FILE_SHARE_WRITE,
                              &inheritable, CREATE_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr);
  if (handle == INVALID_HANDLE_VALUE) {
    throw std::runtime_error("cannot create " + utf8(file));
  }
  return handle;
}

BOOL WINAPI ignoreCtrlC(DWORD event) {
  return event == CTRL_C_EVENT ? TRUE : FALSE;
}

// Ctrl-C reaches all programs of a console, so the test takes one of its own.
void takeOwnConsole() {
  FreeConsole();
  AllocConsole();
  SetConsoleCtrlHandler(ignoreCtrlC, TRUE);
}

std::string withPlainLineEnds(std::string text) {
  std::erase(text, '\r');
  return text;
}

HANDLE handle(std::intptr_t process) {
  return reinterpret_cast<HANDLE>(process);
}

}  // namespace

Program::Program(const ProgramStart& start)
    : outFile_(start.outputDirectory / "stdout"), errFile_(start.outputDirectory / "stderr") {
  if (start.largestFile > 0) {
    throw std::logic_error("Windows has no limit on the size of files");
  }
  if (start.mayBeInterrupted) {
    takeOwnConsole();
  }
  STARTUPINFOW startup{};
  startup.cb = sizeof startup;
  startup.dwFlags = STARTF_USESTDHANDLES;
  startup.hStdOutput = inheritableFile(outFile_);
  startup.hStdError = inheritableFile(errFile_);
  std::wstring line = quotedArgument(start.file.wstring());
  for (const std::string& argument : start.arguments) {
    line += L' ' + quotedArgument(wide(argument));
  }
  SetEnvironmentVariableW(L"ORVANE_SIMULATOR", wide(start.simulator).c_str());
  PROCESS_INFORMATION process{};
  const BOOL started = CreateProcessW(start.file.c_str(), line.data(), nullptr, nullptr, TRUE, 0,
                                      nullptr, nullptr, &startup, &process);
  SetEnvironmentVariableW(L"ORVANE_SIMULATOR", nullptr);
  CloseHandle(startup.hStdOutput);
  CloseHandle(startup.hStdError);
  if (started == 0) {
    throw std::runtime_error("cannot start " + utf8(start.file));
  }
  CloseHandle(process.hThread);
  process_ = reinterpret_cast<std::intptr_t>(process.hProcess);
}

bool Program::isRunning() const {
  return WaitForSingleObject(handle(process_), 0) == WAIT_TIMEOUT;
}

void Program::interrupt() const {
  if (GenerateConsoleCtrlEvent(CTRL_C_EVENT, 0) == 0) {
    TerminateProcess(handle(process_), 1);
    throw std::runtime_error("Ctrl-C could not be sent");
  }
}

void Program::kill() const {
  TerminateProcess(handle(process_), 1);
}

ProgramResult Program::wait() const {
  WaitForSingleObject(handle(process_), INFINITE);
  DWORD status = 0;
  GetExitCodeProcess(handle(process_), &status);
  CloseHandle(handle(process_));
  return {static_cast<int>(status), withPlainLineEnds(contentOf(outFile_)),
          withPlainLineEnds(contentOf(errFile_))};
}

}  // namespace orvane::testing
