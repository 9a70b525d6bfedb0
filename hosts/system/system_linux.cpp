// What the host programs ask of the operating system, on Linux.
#include <fcntl.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

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

bool seekFile(std::FILE* file, std::int64_t position) {
  static_assert(sizeof(off_t) == sizeof position);
  return fseeko(file, position, SEEK_SET) == 0;
}

bool truncateFile(std::FILE* file, std::int64_t size) {
  return ftruncate(fileno(file), size) == 0;
}

std::string environmentVariable(const char* name) {
  // Only the main thread uses the environment, before it loads any SDK.
  const char* const value = std::getenv(name);  // NOLINT(concurrency-mt-unsafe)
  return value == nullptr ? "" : value;
}

void setEnvironmentVariable(const char* name, const std::string& value) {
  setenv(name, value.c_str(), 1);  // NOLINT(concurrency-mt-unsafe): as above
}

}  // namespace orvane::host
