// The command line of the live view.
#include "live_view/command_line.hpp"

#include <CLI/CLI.hpp>
#include <algorithm>

#include "system/failures.hpp"
#include "system/text.hpp"

namespace orvane::host {

LiveCommand parseLiveCommandLine(std::vector<std::string> arguments) {
  CLI::App app("Shows an astronomy camera's picture live.", "live_view");
  app.allow_windows_style_options(false);  // a path may start with a slash
  app.footer("F1 shows the keys.");
  LiveOptions options;
  std::string recordings = ".";
  app.add_option("--sdk", options.sdkDirectory, "Directory with the makers' SDK libraries")
      ->required()
      ->type_name("DIR");
  app.add_option("--camera", options.camera,
                 "Index, or a part of the name that fits one camera only; chosen in the window if "
                 "not given")
      ->type_name("CAMERA");
  app.add_option("--recordings", recordings,
                 "Directory for recordings; the current one if not given")
      ->type_name("DIR");
  try {
    std::reverse(arguments.begin(), arguments.end());  // as the parser takes them
    app.parse(std::move(arguments));
  } catch (const CLI::CallForHelp&) {
    return app.help();
  } catch (const CLI::ArgumentMismatch& error) {
    const std::string text = error.what();
    throw UsageError(text.substr(0, text.find(':')) + " needs one value.");
  } catch (const CLI::ParseError& error) {
    throw UsageError(std::string(error.what()) + ".");
  }
  options.recordings = pathFromUtf8(recordings).make_preferred();
  return options;
}

}  // namespace orvane::host
