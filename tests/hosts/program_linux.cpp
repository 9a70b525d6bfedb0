// Runs a program as a user does, on Linux.
#include <fcntl.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <stdexcept>

#include "program.hpp"
#include "scratch_directory.hpp"

namespace orvane::testing {

namespace {

constexpr int startFailed = 127;

// In the new process, before it becomes the program.
void redirect(int descriptor, const std::filesystem::path& file) {
  const int opened = open(file.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0644);
  if (opened < 0 || dup2(opened, descriptor) < 0) {
    _exit(startFailed);
  }
}

// A list of texts in the form that execve() takes.
std::vector<char*> pointersTo(std::vector<std::string>& texts) {
  std::vector<char*> pointers;
  pointers.reserve(texts.size() + 1);
  for (std::string& text : texts) {
    pointers.push_back(text.data());
  }
  pointers.push_back(nullptr);
  return pointers;
}

[[noreturn]] void becomeProgram(const ProgramStart& start, const std::filesystem::path& outFile,
                                const std::filesystem::path& errFile) {
  redirect(STDOUT_FILENO, outFile);
  redirect(STDERR_FILENO, errFile);
  // Tests that run in the background may have inherited these as ignored.
  struct sigaction usual = {};
  usual.sa_handler = SIG_DFL;
  sigaction(SIGINT, &usual, nullptr);
  sigaction(SIGXFSZ, &usual, nullptr);
  if (start.largestFile > 0) {
    const rlimit limit{static_cast<rlim_t>(start.largestFile),
                       static_cast<rlim_t>(start.largestFile)};
    setrlimit(RLIMIT_FSIZE, &limit);
  }
  std::vector<std::string> arguments{start.file.string()};
  arguments.insert(arguments.end(), start.arguments.begin(), start.arguments.end());
  // The first of two values of a name counts.
  std::vector<std::string> environment{"ORVANE_SIMULATOR=" + start.simulator};
  for (char** variable = environ; *variable != nullptr; ++variable) {
    environment.emplace_back(*variable);
  }
  execve(start.file.c_str(), pointersTo(arguments).data(), pointersTo(environment).data());
  _exit(startFailed);
}

}  // namespace

Program::Program(const ProgramStart& start)
    : outFile_(start.outputDirectory / "stdout"),
      errFile_(start.outputDirectory / "stderr"),
      process_(fork()) {
  if (process_ < 0) {
    throw std::runtime_error("no new process");
  }
  if (process_ == 0) {
    becomeProgram(start, outFile_, errFile_);
  }
}

bool Program::isRunning() const {
  siginfo_t end{};
  waitid(P_PID, static_cast<id_t>(process_), &end, WEXITED | WNOHANG | WNOWAIT);
  return end.si_pid == 0;
}

void Program::interrupt() const {
  ::kill(static_cast<pid_t>(process_), SIGINT);
}

void Program::kill() const {
  ::kill(static_cast<pid_t>(process_), SIGKILL);
}

ProgramResult Program::wait() const {
  int status = 0;
  waitpid(static_cast<pid_t>(process_), &status, 0);
  return {WIFEXITED(status) ? WEXITSTATUS(status) : -WTERMSIG(status), contentOf(outFile_),
          contentOf(errFile_)};
}

}  // namespace orvane::testing
