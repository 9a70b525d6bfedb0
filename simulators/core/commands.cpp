// Text commands, from sim_command() or from the environment variable ORVANE_SIMULATOR.

#include <algorithm>
#include <charconv>
#include <cstdio>
#include <deque>
#include <string>
#include <string_view>
#include <tuple>
#include <type_traits>
#include <utility>

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

// Reads a command's arguments as the parameters of `effect`, and runs it if the command `isMeant`
// for this SDK. Returns whether the command was understood.
template <class... Fields>
bool run(std::string_view arguments, bool isMeant, void (*effect)(Fields...)) {
  std::tuple<Fields...> fields;
  const bool isUnderstood =
      std::apply([&](Fields&... each) { return read(arguments, each...); }, fields);
  if (isUnderstood && isMeant) {
    std::apply(effect, fields);
  }
  return isUnderstood;
}

// "FUNCTION NTH TIMES KIND [TEXT]"; the text may contain spaces.
bool runThrow(std::string_view arguments, bool isMeant) {
  constexpr std::pair<std::string_view, std::int32_t> kinds[] = {
      {"standard", SIM_THROW_STANDARD}, {"number", SIM_THROW_NUMBER}, {"object", SIM_THROW_OBJECT}};
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
      sdk().faults.add(function, range, ThrownFault{kind, texts.back().c_str()});
    }
    return true;
  }
  return false;
}

// Changes a plug just before a call; NTH 0 means now.
void changePlug(std::int32_t camera, std::string_view function, std::int32_t nth, bool isPlugged) {
  if (nth == 0) {
    sdk().setPlugged(camera, isPlugged);
  } else {
    sdk().faults.add(function, {nth}, PlugChange{camera, isPlugged});
  }
}

// Runs a command if it `isMeant` for this SDK, and returns whether it was understood.
bool runCommand(std::string_view verb, std::string_view arguments, bool isMeant) {
  using Word = std::string_view;
  using Count = std::int32_t;
  const auto runAs = [&](auto* effect) { return run(arguments, isMeant, effect); };
  if (verb == "clock") {
    return (arguments == "stopped" || arguments == "running") &&
           runAs(+[](Word state) { sdk().clock.stop(state == "stopped"); });
  }
  if (verb == "seed") {
    return runAs(+[](std::uint64_t seed) { sdk().seed = seed; });
  }
  if (verb == "scene") {
    return !arguments.empty() && (!isMeant || sdk().playRecording(std::string(arguments).c_str()));
  }
  if (verb == "log") {
    return !arguments.empty() && (!isMeant || sdk().log.enableFile(std::string(arguments)));
  }
  if (verb == "force") {
    return runAs(+[](Word function, Count nth, Count times, std::int64_t result) {
      sdk().faults.add(function, {nth, times}, ForcedResult{result});
    });
  }
  if (verb == "output") {
    return runAs(+[](Word function, Word output, Count nth, Count times, double value) {
      sdk().faults.add(function, {nth, times}, ForcedOutput{std::string(output), value});
    });
  }
  if (verb == "throw") {
    return runThrow(arguments, isMeant);
  }
  if (verb == "unplug") {
    return runAs(
        +[](Count camera, Word function, Count nth) { changePlug(camera, function, nth, false); });
  }
  return verb == "plug" && (runAs(+[](Count camera) { sdk().setPlugged(camera, true); }) ||
                            runAs(+[](Count camera, Word function, Count nth) {
                              changePlug(camera, function, nth, true);
                            }));
}

bool runEnvironment() {
  const bool isRun = runCommands(environmentVariable("ORVANE_SIMULATOR"));
  if (!isRun) {
    static_cast<void>(
        std::fprintf(stderr, "%s: a command in ORVANE_SIMULATOR failed\n", maker.sdkName));
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
    if (!runCommand(verb, arguments, isMeant)) {
      return false;
    }
  }
  return true;
}

}  // namespace orvane::sim
