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

std::wstring commandLine(const ProgramStart& start) {
  std::wstring line = quotedArgument(start.file.wstring());
  for (const std::string& argument : start.arguments) {
    line += L' ' + quotedArgument(wide(argument));
  }
  return line;
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

std::string withPlainLineEnds(const std::string& text) {
  std::string plain = text;
  std::erase(plain, '\r');
  return plain;
}

}  // namespace

struct Program::Process {
  PROCESS_INFORMATION information{};
};

Program::Program(const ProgramStart& start)
    : outFile_(start.outputDirectory / "stdout"),
      errFile_(start.outputDirectory / "stderr"),
      process_(std::make_unique<Process>()) {
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
  std::wstring line = commandLine(start);
  SetEnvironmentVariableW(L"ORVANE_SIMULATOR", wide(start.simulator).c_str());
  const BOOL started = CreateProcessW(start.file.c_str(), line.data(), nullptr, nullptr, TRUE, 0,
                                      nullptr, nullptr, &startup, &process_->information);
  SetEnvironmentVariableW(L"ORVANE_SIMULATOR", nullptr);
  CloseHandle(startup.hStdOutput);
  CloseHandle(startup.hStdError);
  if (started == 0) {
    throw std::runtime_error("cannot start " + utf8(start.file));
  }
}

Program::~Program() {
  CloseHandle(process_->information.hProcess);
  CloseHandle(process_->information.hThread);
}

bool Program::isRunning() {
  return WaitForSingleObject(process_->information.hProcess, 0) == WAIT_TIMEOUT;
}

void Program::interrupt() {
  if (GenerateConsoleCtrlEvent(CTRL_C_EVENT, 0) == 0) {
    TerminateProcess(process_->information.hProcess, 1);
    throw std::runtime_error("Ctrl-C could not be sent");
  }
}

void Program::kill() {
  TerminateProcess(process_->information.hProcess, 1);
}

ProgramResult Program::wait() {
  WaitForSingleObject(process_->information.hProcess, INFINITE);
  DWORD status = 0;
  GetExitCodeProcess(process_->information.hProcess, &status);
  return {static_cast<int>(status), withPlainLineEnds(contentOf(outFile_)),
          withPlainLineEnds(contentOf(errFile_))};
}

}  // namespace orvane::testing
