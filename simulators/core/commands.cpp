// Text commands, from sim_command() or from the environment variable ORVANE_SIMULATOR.

#include <algorithm>
#include <charconv>
#include <cstdio>
#include <deque>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <tuple>
#include <type_traits>
#include <utility>
#include <vector>

#include "core/cabinet.hpp"
#include "core/sdk.hpp"
#include "core/system.hpp"
#include "sdk_check/sdk_functions.hpp"

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

std::string inQuotes(std::string_view text) {
  return "\"" + std::string(text) + "\"";
}

// The parameters of commands are words, numbers, or one of these as the last.
struct Name {  // of a file or a model; may contain blanks
  std::string text;
};
struct Remainder {  // may also be empty
  std::string_view text;
};

bool readField(std::string_view& arguments, std::string_view& word) {
  word = cutOff(arguments, blanks);
  return !word.empty();
}

template <class Number>
requires std::is_arithmetic_v<Number>
bool readField(std::string_view& arguments, Number& number) {
  const std::string_view word = cutOff(arguments, blanks);
  const char* const end = word.data() + word.size();
  const std::from_chars_result read = std::from_chars(word.data(), end, number);
  return !word.empty() && read.ec == std::errc() && read.ptr == end;
}

bool readField(std::string_view& arguments, Remainder& remainder) {
  remainder.text = std::exchange(arguments, {});
  return true;
}

bool readField(std::string_view& arguments, Name& name) {
  name.text = std::exchange(arguments, {});
  return !name.text.empty();
}

// A command that a user can write.
struct Command {
  std::string_view form;  // the verb and the names of the parameters

  // Returns "" if the command was run, or why it cannot be; nothing if the arguments do not fit.
  std::function<std::optional<std::string>(std::string_view arguments)> run;

  std::string_view verb() const { return form.substr(0, form.find(' ')); }
};

// A command that passes its arguments to `effect`, which returns "" or a reason.
template <class... Fields>
Command commandFor(std::string_view form, std::function<std::string(Fields...)> effect) {
  return {form,
          [effect = std::move(effect)](std::string_view arguments) -> std::optional<std::string> {
            std::tuple<std::remove_cvref_t<Fields>...> fields;
            const auto readNext = [&arguments](auto& field) {
              arguments = trimmed(arguments);
              return readField(arguments, field);
            };
            const bool isRead =
                std::apply([&](auto&... each) { return (readNext(each) && ...); }, fields);
            if (!isRead || !trimmed(arguments).empty()) {
              return std::nullopt;
            }
            return std::apply(effect, fields);
          }};
}

bool hasFunction(const host::Sdk& each, std::string_view function) {
  return std::find(each.functions.begin(), each.functions.end(), function) != each.functions.end();
}

bool isThisSdk(const host::Sdk& each) {
  return each.baseName == std::string_view(maker.sdkName);
}

// The outputs of one of this SDK's functions, separated by blanks.
std::string_view outputsOf(std::string_view function) {
  const auto row =
      std::find_if(maker.outputs.begin(), maker.outputs.end(),
                   [function](const FunctionOutputs& each) { return each.function == function; });
  return row == maker.outputs.end() ? "result" : row->outputs;
}

bool hasOutput(std::string_view function, std::string_view output) {
  std::string_view outputs = outputsOf(function);
  while (!outputs.empty()) {
    if (cutOff(outputs, blanks) == output) {
      return true;
    }
  }
  return false;
}

constexpr std::pair<std::string_view, std::int32_t> thrownKinds[] = {
    {"standard", SIM_THROW_STANDARD}, {"number", SIM_THROW_NUMBER}, {"object", SIM_THROW_OBJECT}};

// Runs commands one by one. All functions return "", or why the command cannot be run.
class Interpreter {
 public:
  explicit Interpreter(bool isForAll) : isForAll_(isForAll) {}

  std::string run(std::string_view verb, std::string_view arguments) {
    if (verb == "sdk") {
      return chooseSdk(arguments);
    }
    if (!isForThis_) {
      return "";  // for another SDK, which checks it
    }
    std::string reason = "unknown command " + inQuotes(verb);
    for (const Command& command : commands_) {
      if (command.verb() == verb) {
        if (std::optional<std::string> result = command.run(arguments)) {
          return *std::move(result);
        }
        reason = "it is written " + inQuotes(command.form);
      }
    }
    return reason;
  }

 private:
  using Word = std::string_view;
  using Count = std::int32_t;

  // "sdk NAME"
  std::string chooseSdk(Word name) {
    const auto sdks = host::allSdks();
    isForAll_ = name == "*";
    isForThis_ = isForAll_ || name == maker.sdkName;
    const bool isKnown =
        isForThis_ || std::any_of(sdks.begin(), sdks.end(),
                                  [name](const host::Sdk& each) { return each.baseName == name; });
    return isKnown ? "" : "unknown SDK " + inQuotes(name);
  }

  // Runs `action` if this SDK has the function.
  template <class Action>
  std::string onFunction(Word function, const Action& action) const {
    bool isAnothers = false;
    for (const host::Sdk& each : host::allSdks()) {
      if (hasFunction(each, function)) {
        if (isThisSdk(each)) {
          return action();
        }
        isAnothers = true;
      }
    }
    if (isForAll_) {
      return isAnothers ? "" : "unknown function " + inQuotes(function);
    }
    return "unknown function " + inQuotes(function) + " of " + maker.sdkName;
  }

  std::string addFault(Word function, CallRange range, const Effect& effect) const {
    return onFunction(function, [&]() -> std::string {
      sdk().faults.add(function, range, effect);
      return "";
    });
  }

  std::string forceOutput(Word function, Word output, CallRange range, double value) const {
    return onFunction(function, [&] {
      if (!hasOutput(function, output)) {
        const Word outputs = outputsOf(function);
        return "unknown output " + inQuotes(output) + " of " + std::string(function) +
               ", which has " + (outputs.empty() ? "none" : std::string(outputs));
      }
      return addFault(function, range, ForcedOutput{std::string(output), value});
    });
  }

  std::string addThrow(Word function, CallRange range, Word kindName, Word text) const {
    const auto* const kind =
        std::find_if(std::begin(thrownKinds), std::end(thrownKinds),
                     [kindName](const auto& each) { return each.first == kindName; });
    if (kind == std::end(thrownKinds)) {
      return "unknown kind " + inQuotes(kindName) + " of exception";
    }
    static std::deque<std::string> texts;  // kept, because an exception may be read later
    texts.emplace_back(text);
    return addFault(function, range, ThrownFault{kind->second, texts.back().c_str()});
  }

  static std::string noCamera(Count camera) {
    return sdk().camera(camera) == nullptr ? "there is no camera " + std::to_string(camera) : "";
  }

  static std::string setPlugged(Count camera, Plug plug) {
    sdk().setPlugged(camera, plug);
    return noCamera(camera);
  }

  // Changes a plug just before a call; NTH 0 means now.
  std::string changePlug(Count camera, Word function, Count nth, Plug plug) const {
    return onFunction(function, [&] {
      if (nth == 0 || sdk().camera(camera) == nullptr) {
        return setPlugged(camera, plug);
      }
      return addFault(function, {nth}, PlugChange{camera, plug});
    });
  }

  std::string unplug(Count camera, Word function, Count nth, Word how) const {
    if (!how.empty() && how != "silently") {
      return "a camera can be unplugged silently, or without a further word";
    }
    return changePlug(camera, function, nth, how.empty() ? Plug::Out : Plug::OutSilently);
  }

  std::string addCamera(Word name) const {
    if (const std::optional<SimCamera> model = modelNamed(name)) {
      sdk().addCamera(*model);
      return "";
    }
    if (isForAll_) {
      return isModel(name) ? "" : "unknown model " + inQuotes(name);
    }
    return "unknown model " + inQuotes(name) + " of " + maker.sdkName;
  }

  // What another program has set and the SDK has kept.
  std::string keep(Count camera, int control, double value) const {
    if (!maker.keepsSettings) {
      return isForAll_ ? "" : std::string(maker.sdkName) + " keeps no settings";
    }
    const Camera* found = sdk().camera(camera);
    if (found != nullptr) {
      sdk().keptSettings(found->model)[control] = value;
    }
    return noCamera(camera);
  }

  // Passes whether the word is the first or the second of two.
  template <class Action>
  static std::string choose(Word what, Word word, Word yes, Word no, const Action& action) {
    if (word != yes && word != no) {
      return "the " + std::string(what) + " can be " + std::string(yes) + " or " + std::string(no);
    }
    action(word == yes);
    return "";
  }

  template <class Action>
  static Command command(Word form, Action action) {
    return commandFor(form, std::function(std::move(action)));
  }

  bool isForThis_ = true;  // the present command is for this SDK
  bool isForAll_;          // and for the others
  const std::vector<Command> commands_ = {
      command("force FUNCTION NTH TIMES RESULT",
              [this](Word function, Count nth, Count times, std::int64_t result) {
                return addFault(function, {nth, times}, ForcedResult{result});
              }),
      command("output FUNCTION OUTPUT NTH TIMES VALUE",
              [this](Word function, Word output, Count nth, Count times, double value) {
                return forceOutput(function, output, {nth, times}, value);
              }),
      command("throw FUNCTION NTH TIMES KIND [TEXT]",
              [this](Word function, Count nth, Count times, Word kind, Remainder text) {
                return addThrow(function, {nth, times}, kind, text.text);
              }),
      command("hang FUNCTION NTH",
              [this](Word function, Count nth) { return addFault(function, {nth}, Hang{}); }),
      command("crash FUNCTION NTH",
              [this](Word function, Count nth) { return addFault(function, {nth}, Crash{}); }),
      command("camera MODEL", [this](const Name& model) { return addCamera(model.text); }),
      command("unplug INDEX FUNCTION NTH [silently]",
              [this](Count camera, Word function, Count nth, Remainder how) {
                return unplug(camera, function, nth, how.text);
              }),
      command("plug INDEX",
              [this](Count camera) {
                // Of a command for all SDKs, it is not known which of them has the camera.
                const std::string reason = setPlugged(camera, Plug::In);
                return isForAll_ ? "" : reason;
              }),
      command("plug INDEX FUNCTION NTH",
              [this](Count camera, Word function, Count nth) {
                return changePlug(camera, function, nth, Plug::In);
              }),
      command("damage NTH TIMES FRAMES",
              [this](Count nth, Count times, Count frames) {
                return addFault("ASIGetVideoData", {nth, times}, DamagedFrames{frames});
              }),
      command(
          "keep INDEX CONTROL VALUE",
          [this](Count camera, int control, double value) { return keep(camera, control, value); }),
      command("timing real|quick",
              [](Word timing) {
                return choose("timing", timing, "real", "quick",
                              [](bool isReal) { sdk().isTimingReal = isReal; });
              }),
      command("light on|off",
              [](Word state) {
                return choose("light", state, "off", "on",
                              [](bool isOff) { sdk().isDark = isOff; });
              }),
      command("clock stopped|running",
              [](Word state) {
                return choose("clock", state, "stopped", "running",
                              [](bool isStopped) { sdk().clock.stop(isStopped); });
              }),
      command("seed N",
              [](std::uint64_t seed) -> std::string {
                sdk().seed = seed;
                return "";
              }),
      command("scene FILE",
              [](const Name& file) {
                const std::string reason = sdk().playRecording(file.text.c_str());
                return reason.empty() ? "" : "the file cannot be played: " + reason;
              }),
      command("log FILE", [](const Name& file) -> std::string {
        return sdk().log.enableFile(file.text) ? "" : "the file cannot be opened";
      })};
};

// Returns "", or the first command that cannot be run, and why.
std::string problemOf(std::string_view commands, bool areForAll) {
  Interpreter interpreter(areForAll);
  while (!commands.empty()) {
    const std::string_view command = trimmed(cutOff(commands, ";\n"));
    std::string_view arguments = command;
    const std::string_view verb = cutOff(arguments, blanks);
    if (verb.empty()) {
      continue;
    }
    const std::string reason = interpreter.run(verb, trimmed(arguments));
    if (!reason.empty()) {
      return inQuotes(command) + ": " + reason;
    }
  }
  return "";
}

// Whether no simulated SDK has told this line in this process. Each is a library of its own; what
// they share is the environment. A child process inherits it, so it names the process.
bool isNews(const std::string& line) {
  constexpr const char* variable = "ORVANE_SIMULATOR_TOLD";
  const std::string process = processId() + "\n";
  std::string told = environmentVariable(variable);
  if (!told.starts_with(process)) {
    told = process;
  }
  if (told.find("\n" + line) != std::string::npos) {
    return false;
  }
  setEnvironmentVariable(variable, told + line);
  return true;
}

void tell(const std::string& line) {
  static_cast<void>(std::fputs(line.c_str(), stderr));
}

}  // namespace

bool runCommands(std::string_view commands) {
  const std::string problem = problemOf(commands, false);
  if (!problem.empty()) {
    tell(std::string(maker.sdkName) + ": " + problem + "\n");
  }
  return problem.empty();
}

bool runEnvironment() {
  const std::string problem = problemOf(environmentVariable("ORVANE_SIMULATOR"), true);
  const std::string line = "ORVANE_SIMULATOR: " + problem + "\n";
  if (!problem.empty() && isNews(line)) {
    tell(line);
  }
  return problem.empty();
}

}  // namespace orvane::sim
