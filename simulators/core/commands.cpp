// Text commands, from sim_command() or from the environment variable ORVANE_SIMULATOR.

#include <algorithm>
#include <charconv>
#include <cstdio>
#include <deque>
#include <string>
#include <string_view>
#include <type_traits>

#include "core/sdk.hpp"
#include "core/system.hpp"

namespace orvane::sim {
namespace {

constexpr std::string_view blanks = " \t\r";

std::string_view trimmed(std::string_view text) {
  text.remove_prefix(std::min(text.find_first_not_of(blanks), text.size()));
  return text.substr(0, text.find_last_not_of(blanks) + 1);
}

// Removes the text up to the first separator, and the separator, and returns the text.
std::string_view cutOff(std::string_view& text, std::string_view separators) {
  const std::size_t length = std::min(text.find_first_of(separators), text.size());
  const std::string_view part = text.substr(0, length);
  text.remove_prefix(std::min(length + 1, text.size()));
  return part;
}

bool readWord(std::string_view word, std::string_view& field) {
  field = word;
  return !word.empty();
}

template <class Number>
requires std::is_arithmetic_v<Number>
bool readWord(std::string_view word, Number& field) {
  const char* const end = word.data() + word.size();
  const std::from_chars_result read = std::from_chars(word.data(), end, field);
  return !word.empty() && read.ec == std::errc() && read.ptr == end;
}

// Reads all words of a command's arguments. Returns false if one is invalid or their number is
// wrong.
template <class... Fields>
bool read(std::string_view arguments, Fields&... fields) {
  const auto readNext = [&arguments](auto& field) {
    arguments = trimmed(arguments);
    return readWord(cutOff(arguments, blanks), field);
  };
  return (readNext(fields) && ...) && trimmed(arguments).empty();
}

// A command: runs it if it `isMeant` for this SDK, and returns whether it was understood.
using Command = bool (*)(std::string_view arguments, bool isMeant);

bool runClock(std::string_view arguments, bool isMeant) {
  std::string_view state;
  if (!read(arguments, state) || (state != "stopped" && state != "running")) {
    return false;
  }
  if (isMeant) {
    sdk().clock.stop(state == "stopped");
  }
  return true;
}

bool runSeed(std::string_view arguments, bool isMeant) {
  std::uint64_t seed = 0;
  if (!read(arguments, seed)) {
    return false;
  }
  if (isMeant) {
    sdk().setSeed(seed);
  }
  return true;
}

bool runLog(std::string_view arguments, bool isMeant) {
  return !arguments.empty() && (!isMeant || sdk().log.enableFile(std::string(arguments)));
}

bool runScene(std::string_view arguments, bool isMeant) {
  return !arguments.empty() && (!isMeant || sdk().playRecording(std::string(arguments).c_str()));
}

bool runForce(std::string_view arguments, bool isMeant) {
  std::string_view function;
  CallRange range;
  std::int64_t result = 0;
  if (!read(arguments, function, range.nth, range.times, result)) {
    return false;
  }
  if (isMeant) {
    sdk().faults.forceResult(function, range, result);
  }
  return true;
}

bool runOutput(std::string_view arguments, bool isMeant) {
  std::string_view function;
  std::string_view output;
  CallRange range;
  double value = 0;
  if (!read(arguments, function, output, range.nth, range.times, value)) {
    return false;
  }
  if (isMeant) {
    sdk().faults.forceOutput(function, output, range, value);
  }
  return true;
}

// "FUNCTION NTH TIMES KIND [TEXT]"; the text may contain spaces.
bool runThrow(std::string_view arguments, bool isMeant) {
  constexpr std::pair<std::string_view, ThrownKind> kinds[] = {{"standard", ThrownKind::Standard},
                                                               {"number", ThrownKind::Number},
                                                               {"object", ThrownKind::Object}};
  for (const auto& [name, kind] : kinds) {
    const std::size_t place = arguments.find(name);
    if (place == std::string_view::npos) {
      continue;
    }
    std::string_view function;
    CallRange range;
    if (!read(arguments.substr(0, place), function, range.nth, range.times)) {
      return false;
    }
    if (isMeant) {
      static std::deque<std::string> texts;  // kept, because an exception may be read later
      texts.emplace_back(trimmed(arguments.substr(place + name.size())));
      sdk().faults.throwFrom(function, range, {kind, texts.back().c_str()});
    }
    return true;
  }
  return false;
}

// "INDEX FUNCTION NTH", where NTH 0 means now.
bool changePlug(std::string_view arguments, bool isMeant, bool isPlugged) {
  std::int32_t camera = 0;
  std::string_view function;
  std::int32_t nth = 0;
  if (!read(arguments, camera, function, nth)) {
    return false;
  }
  if (isMeant && nth == 0) {
    sdk().setPlugged(camera, isPlugged);
  } else if (isMeant) {
    sdk().faults.plug(function, nth, {camera, isPlugged});
  }
  return true;
}

bool runUnplug(std::string_view arguments, bool isMeant) {
  return changePlug(arguments, isMeant, false);
}

bool runPlug(std::string_view arguments, bool isMeant) {
  std::int32_t camera = 0;
  if (!read(arguments, camera)) {
    return changePlug(arguments, isMeant, true);
  }
  if (isMeant) {
    sdk().setPlugged(camera, true);
  }
  return true;
}

Command commandOf(std::string_view verb) {
  constexpr std::pair<std::string_view, Command> verbs[] = {
      {"clock", runClock}, {"seed", runSeed},     {"scene", runScene},
      {"log", runLog},     {"force", runForce},   {"output", runOutput},
      {"throw", runThrow}, {"unplug", runUnplug}, {"plug", runPlug}};
  const auto* const found = std::find_if(std::begin(verbs), std::end(verbs),
                                         [&](const auto& known) { return known.first == verb; });
  return found == std::end(verbs) ? nullptr : found->second;
}

bool runEnvironment() {
  const bool isRun = runCommands(environmentVariable("ORVANE_SIMULATOR"));
  if (!isRun) {
    static_cast<void>(std::fprintf(
        stderr, "%s: a command in ORVANE_SIMULATOR was not carried out\n", maker.sdkName));
  }
  return isRun;
}

const bool environmentIsRun = runEnvironment();

}  // namespace

bool runCommands(std::string_view commands) {
  bool isMeant = true;
  while (!commands.empty()) {
    std::string_view arguments = trimmed(cutOff(commands, ";\n"));
    const std::string_view verb = cutOff(arguments, blanks);
    arguments = trimmed(arguments);
    if (verb.empty()) {
      continue;
    }
    if (verb == "sdk") {
      std::string_view name;
      if (!read(arguments, name)) {
        return false;
      }
      isMeant = name == "*" || name == maker.sdkName;
      continue;
    }
    const Command run = commandOf(verb);
    if (run == nullptr || !run(arguments, isMeant)) {
      return false;
    }
  }
  return true;
}

}  // namespace orvane::sim
