// What the user typed, understood as far as that is possible without having seen the cameras.
#include "oc_capture/command_line.hpp"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <limits>

#include "common/argument_values.hpp"
#include "common/failures.hpp"
#include "common/ser_writer.hpp"
#include "common/text.hpp"
#include "oc_capture/simulated_scene.hpp"

namespace orvane::host {

namespace {

constexpr int smallestInt = std::numeric_limits<int>::min();
constexpr int largestInt = std::numeric_limits<int>::max();

constexpr const char* statusText =
    "Exit status: 0 done, also when Ctrl-C ended a recording; 1 a camera or a file failed;\n"
    "2 wrong arguments.";

constexpr const char* recordText =
    "A recording ends after --frames frames (100 when neither that nor --seconds is given), after\n"
    "--seconds seconds, or on Ctrl-C; whatever ends it, the file is valid. Frames are waited for\n"
    "twice the exposure and 500 ms; five such waits without a frame end the recording with an "
    "error.\n"
    "\n"
    "FILE.ser holds the frames as the camera delivers them, 16-bit ones as 16 bits whatever the\n"
    "converter has, and each frame's time of arrival. FILE.png, written beside it, shows the last\n"
    "frame, in colour and brightened.\n";

// The options as typed.
struct RecordTexts {
  std::optional<std::string> width, height, format, gain, frames, seconds;
  std::string bin = "1", exposure = "20ms", offset = "10", file;
};

void addSdkOption(CLI::App& command, std::string& directory) {
  command.add_option("--sdk", directory, "Directory with the makers' SDK libraries")
      ->required()
      ->type_name("DIR");
  addSceneOption(command);
}

void addRecordOptions(CLI::App& command, RecordCommand& record, RecordTexts& texts) {
  const auto add = [&](const char* name, auto& text, const char* type, const char* description) {
    return command.add_option(name, text, description)->type_name(type);
  };
  add("--camera", record.camera, "CAMERA", "Index, or a part of the name that fits one camera only")
      ->required();
  add("--out", texts.file, "FILE.ser", "The recording")->required();
  command.add_flag("--overwrite", record.mayOverwrite, "Replace FILE.ser if it exists");
  add("--width", texts.width, "PIXELS", "Frame width; whole sensor if not given");
  add("--height", texts.height, "PIXELS", "Frame height; whole sensor if not given");
  add("--bin", texts.bin, "N", "Binning factor; 1 if not given");
  add("--format", texts.format, "FORMAT",
      "raw8, raw16, rgb24 or mono8; the camera's first if not given");
  add("--exposure", texts.exposure, "TIME", "With its unit: 500us, 20ms, 1.5s; 20ms if not given");
  add("--gain", texts.gain, "N",
      "In the maker's units; a third of the camera's range if not given");
  add("--offset", texts.offset, "N", "Black level in the maker's units; 10 if not given");
  add("--frames", texts.frames, "N", "Number of frames to record");
  add("--seconds", texts.seconds, "S", "Length of the recording");
  add("--observer", record.observer, "NAME", "Written into the file; at most 40 bytes");
  add("--telescope", record.telescope, "NAME", "Written into the file; at most 40 bytes");
}

std::optional<int> optionalNumber(const char* option, const std::optional<std::string>& text,
                                  int smallest, int largest) {
  if (!text) {
    return std::nullopt;
  }
  return parseWholeNumber(option, *text, smallest, largest);
}

std::filesystem::path recordingPath(const std::string& text) {
  std::filesystem::path path = pathFromUtf8(text);
  std::string extension = utf8FromPath(path.extension());
  if (extension.size() != 4 || !containsIgnoringCase(extension, ".ser")) {
    throw UsageError("--out needs a file name that ends in .ser, not " + inQuotes(text) + ".");
  }
  return path;
}

void readTexts(const RecordTexts& texts, RecordCommand& record) {
  record.width = optionalNumber("--width", texts.width, 1, largestInt);
  record.height = optionalNumber("--height", texts.height, 1, largestInt);
  record.bin = parseWholeNumber("--bin", texts.bin, 1, largestInt);
  if (texts.format) {
    record.format = formatFromName(*texts.format);
    if (!record.format) {
      throw UsageError("--format needs raw8, raw16, rgb24 or mono8, not " +
                       inQuotes(*texts.format) + ".");
    }
  }
  record.exposureUs = parseDuration("--exposure", texts.exposure);
  if (record.exposureUs > largestInt) {
    throw UsageError("--exposure can be 2147483647us at most.");
  }
  record.gain = optionalNumber("--gain", texts.gain, smallestInt, largestInt);
  record.offset = parseWholeNumber("--offset", texts.offset, smallestInt, largestInt);
  if (texts.frames && texts.seconds) {
    throw UsageError("--frames and --seconds cannot be given together.");
  }
  if (texts.seconds) {
    record.durationUs = parseSeconds("--seconds", *texts.seconds);
  } else {
    record.frames =
        optionalNumber("--frames", texts.frames, 1, SerWriter::maxFrameCount).value_or(100);
  }
  record.file = recordingPath(texts.file);
}

// What the argument parser has to say, as a sentence.
UsageError usageError(const CLI::ParseError& error, const CLI::App& app) {
  const std::string text = error.what();
  if (dynamic_cast<const CLI::RequiredError*>(&error) != nullptr && app.get_subcommands().empty()) {
    return UsageError("Say what to do: list, record or doctor.");
  }
  if (dynamic_cast<const CLI::ArgumentMismatch*>(&error) != nullptr) {
    const std::string option = text.substr(0, text.find(':'));
    return UsageError(option + " needs one value.");
  }
  return UsageError(text + ".");
}

}  // namespace

Command parseCommandLine(std::vector<std::string> arguments) {
  CLI::App app("Lists astronomy cameras and records from them.", "oc_capture");
  app.require_subcommand(1);
  app.allow_windows_style_options(false);  // a path may start with a slash
  app.footer(statusText);

  ListCommand list;
  CLI::App* const listApp = app.add_subcommand("list", "List the cameras and what they can do");
  addSdkOption(*listApp, list.sdkDirectory);
  listApp->add_flag("--json", list.asJson, "Write one JSON document");

  RecordCommand record;
  RecordTexts texts;
  CLI::App* const recordApp =
      app.add_subcommand("record", "Record a camera's frames into a SER file");
  addSdkOption(*recordApp, record.sdkDirectory);
  addRecordOptions(*recordApp, record, texts);
  recordApp->footer(std::string(recordText) + "\n" + statusText);

  DoctorCommand doctor;
  const CLI::App* const doctorApp = addDoctorCommand(app, doctor);

  try {
    std::reverse(arguments.begin(), arguments.end());  // as the parser takes them
    app.parse(std::move(arguments));
  } catch (const CLI::CallForHelp&) {
    return HelpText{app.help()};
  } catch (const CLI::ParseError& error) {
    throw usageError(error, app);
  }
  if (listApp->parsed()) {
    return list;
  }
  if (doctorApp->parsed()) {
    return doctor;
  }
  readTexts(texts, record);
  return record;
}

}  // namespace orvane::host
