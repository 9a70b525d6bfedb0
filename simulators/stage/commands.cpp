// Commands given as text, by sim_command() or in the environment variable ORVANE_SIMULATOR.

#include <algorithm>
#include <cstdlib>
#include <iostream>
#include <limits>
#include <sstream>
#include <string>

#include "stage/stage.hpp"

namespace orvane::sim {
namespace {

std::string trimmed(std::string_view text) {
  constexpr std::string_view blanks = " \t\r";
  const std::size_t first = text.find_first_not_of(blanks);
  if (first == std::string_view::npos) {
    return {};
  }
  return std::string(text.substr(first, text.find_last_not_of(blanks) - first + 1));
}

// Reads the words of one command; a command that has too few or too many is not understood.
class Words {
 public:
  explicit Words(const std::string& command) : stream_(command) {}

  template <class... Fields>
  bool read(Fields&... fields) {
    return static_cast<bool>((stream_ >> ... >> fields));
  }

  bool isAtEnd() {
    stream_ >> std::ws;
    return stream_.eof();
  }

  std::string rest() {
    std::string text;
    std::getline(stream_, text, '\0');
    return trimmed(text);
  }

 private:
  std::istringstream stream_;
};

// Understands a command and, when `isMeant`, carries it out. Returns whether it was understood.
bool carryOutOne(const std::string& verb, Words& words, bool isMeant) {
  std::string function;
  std::string output;
  CallRange range;
  if (verb == "clock") {
    std::string state;
    if (!words.read(state) || !words.isAtEnd() || (state != "stopped" && state != "running")) {
      return false;
    }
    if (isMeant) {
      stage().clock.stop(state == "stopped");
    }
    return true;
  }
  if (verb == "seed") {
    std::uint64_t seed = 0;
    if (!words.read(seed) || !words.isAtEnd()) {
      return false;
    }
    if (isMeant) {
      stage().setSeed(seed);
    }
    return true;
  }
  if (verb == "log") {
    const std::string path = words.rest();
    return !path.empty() && (!isMeant || stage().log.enableFile(path));
  }
  if (verb == "force") {
    std::int64_t result = 0;
    if (!words.read(function, range.nth, range.times, result) || !words.isAtEnd()) {
      return false;
    }
    if (isMeant) {
      stage().faults.forceResult(function, range, result);
    }
    return true;
  }
  if (verb == "output") {
    double value = 0;
    if (!words.read(function, output, range.nth, range.times, value) || !words.isAtEnd()) {
      return false;
    }
    if (isMeant) {
      stage().faults.forceOutput(function, output, range, value);
    }
    return true;
  }
  if (verb == "unplug") {
    std::int32_t camera = 0;
    if (!words.read(camera, function, range.nth) || !words.isAtEnd()) {
      return false;
    }
    if (isMeant && range.nth == 0) {
      stage().setPlugged(camera, false);
    } else if (isMeant) {
      stage().faults.unplug(function, range.nth, camera);
    }
    return true;
  }
  if (verb == "plug") {
    std::int32_t camera = 0;
    if (!words.read(camera) || !words.isAtEnd()) {
      return false;
    }
    if (isMeant) {
      stage().setPlugged(camera, true);
    }
    return true;
  }
  return false;
}

bool carryOutEnvironment() {
  // Runs while the library is being loaded; nobody else is there to change the environment.
  const char* commands = std::getenv("ORVANE_SIMULATOR");  // NOLINT(concurrency-mt-unsafe)
  if (commands == nullptr || carryOut(commands)) {
    return true;
  }
  std::cerr << "Simulated " << maker.sdkName
            << ": a command in ORVANE_SIMULATOR was not understood: " << commands << std::endl;
  return false;
}

const bool environmentUnderstood = carryOutEnvironment();

}  // namespace

bool carryOut(std::string_view commands) {
  bool isMeant = true;
  while (!commands.empty()) {
    const std::size_t length = std::min(commands.find_first_of(";\n"), commands.size());
    const std::string command = trimmed(commands.substr(0, length));
    commands.remove_prefix(std::min(length + 1, commands.size()));
    Words words(command);
    std::string verb;
    if (!words.read(verb)) {
      continue;
    }
    if (verb == "sdk") {
      std::string name;
      if (!words.read(name) || !words.isAtEnd()) {
        return false;
      }
      isMeant = name == "*" || name == maker.sdkName;
    } else if (!carryOutOne(verb, words, isMeant)) {
      return false;
    }
  }
  return true;
}

}  // namespace orvane::sim
