// The command line of the live view.
#include "live_view/command_line.hpp"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <limits>
#include <tuple>

#include "session/file_names.hpp"
#include "session/license_texts.hpp"
#include "system/argument_values.hpp"
#include "system/failures.hpp"
#include "system/text.hpp"

namespace orvane::host {

LiveCommand parseLiveCommandLine(std::vector<std::string> arguments) {
  CLI::App app("Shows an astronomy camera's picture live.", "live_view");
  app.set_version_flag("--version", "live_view " ORVANE_VERSION, "Show the version and exit");
  app.add_flag_callback(
      "--licenses", [] { throw CLI::CallForVersion(licenseTexts(), 0); },
      "Show the licences and exit");
  app.allow_windows_style_options(false);  // a path may start with a slash
  app.footer("F1 shows the keys.");
  LiveOptions options;
  std::string recordings;
  bool isForgetful = false;
  std::string frames;
  std::string seconds;
  app.add_option("--sdk", options.sdkDirectory,
                 "Directory with the makers' SDK libraries; if not given, the directory \"sdk\" "
                 "beside the program, or the one used last, or the program asks")
      ->type_name("DIR");
  app.add_option("--camera", options.camera,
                 "Index, or a part of the name that fits one camera only; if not given, the one "
                 "used last, or chosen in the window")
      ->type_name("CAMERA");
  app.add_option("--recordings", recordings,
                 "Directory for recordings; if not given, the one used last, or the current one")
      ->type_name("DIR");
  RecordingWish& recording = options.recording;
  app.add_option("--name", recording.nameTemplate,
                 "Name of recordings, without an ending; the fields are " + nameFields() +
                     ", and \"" + usualNameTemplate + "\" is used if none is given")
      ->type_name("TEMPLATE");
  for (const auto& [option, text, meaning] : {std::tuple{"--target", &recording.target, "target"},
                                              {"--filter", &recording.filter, "filter"},
                                              {"--observer", &recording.observer, "observer"},
                                              {"--telescope", &recording.telescope, "telescope"}}) {
    app.add_option(option, *text, "The " + std::string(meaning) + ", for the settings log")
        ->type_name("NAME");
  }
  app.add_option("--frames", frames, "Recordings end after this many frames")->type_name("N");
  app.add_option("--seconds", seconds, "Recordings end after this time")->type_name("S");
  app.add_flag("--no-settings", isForgetful,
               "Neither read nor write the file that remembers directories, camera, settings and "
               "window");
  try {
    std::reverse(arguments.begin(), arguments.end());  // as the parser takes them
    app.parse(std::move(arguments));
  } catch (const CLI::CallForHelp&) {
    return app.help();
  } catch (const CLI::CallForVersion& version) {
    return std::string(version.what());
  } catch (const CLI::ArgumentMismatch& error) {
    const std::string text = error.what();
    throw UsageError(text.substr(0, text.find(':')) + " needs one value.");
  } catch (const CLI::ParseError& error) {
    throw UsageError(std::string(error.what()) + ".");
  }
  requireNameTemplate("--name", recording.nameTemplate);
  if (!frames.empty()) {
    recording.limit.frames =
        parseWholeNumber("--frames", frames, 1, std::numeric_limits<int>::max());
  }
  if (!seconds.empty()) {
    recording.limit.microseconds = parseSeconds("--seconds", seconds);
  }
  options.keepsSettings = !isForgetful;
  options.recordings = pathFromUtf8(recordings).make_preferred();
  return options;
}

}  // namespace orvane::host
