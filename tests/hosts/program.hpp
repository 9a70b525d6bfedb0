// Runs a program as a user does, with arguments, and collects its exit status and its output.
#pragma once

#include <cstdint>
#include <filesystem>
#include <string>
#include <vector>

namespace orvane::testing {

/// How a program is started.
struct ProgramStart {
  std::filesystem::path file;
  std::vector<std::string> arguments;     ///< UTF-8
  std::string simulator;                  ///< the simulated SDKs' commands: ORVANE_SIMULATOR
  std::filesystem::path outputDirectory;  ///< what the program writes is collected in files here
  std::int64_t largestFile = 0;           ///< Linux: limit on the size of files; 0 for none
  bool mayBeInterrupted = false;          ///< needed for interrupt()
};

struct ProgramResult {
  int status = -1;  ///< exit status; Linux: minus the signal that ended the program
  std::string out;  ///< standard output, with plain line ends
  std::string err;  ///< standard error
};

/// A program that has been started. wait() must be called once.
class Program {
 public:
  explicit Program(const ProgramStart& start);
  Program(const Program&) = delete;
  Program& operator=(const Program&) = delete;

  bool isRunning() const;

  /// Sends Ctrl-C. The program must have been started with `mayBeInterrupted`.
  void interrupt() const;

  /// Ends the program at once, in whatever it is doing.
  void kill() const;

  ProgramResult wait() const;

 private:
  std::filesystem::path outFile_;
  std::filesystem::path errFile_;
  std::intptr_t process_;  // its id on Linux, its handle on Windows
};

/// Starts a program and waits for its end.
inline ProgramResult runProgram(const ProgramStart& start) {
  return Program(start).wait();
}

}  // namespace orvane::testing
