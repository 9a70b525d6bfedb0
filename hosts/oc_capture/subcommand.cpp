// What the options of all subcommands share: being a part of the argument parser, and their texts.
#include "oc_capture/subcommand.hpp"

#include <CLI/CLI.hpp>

#include "oc_capture/simulated_scene.hpp"

namespace orvane::host {

namespace {

constexpr const char* statusText =
    "Exit status: 0 done, also when Ctrl-C ended it; 1 a camera or a file failed; 2 wrong "
    "arguments.";

std::string indented(const std::string& lines) {
  std::string text = "  ";
  for (const char letter : lines) {
    text += letter;
    text += letter == '\n' ? "  " : "";
  }
  return text;
}

}  // namespace

Subcommand::Subcommand(CLI::App& app, const char* name, const char* description,
                       const std::string& examples, const std::string& explanation)
    : parser_(*app.add_subcommand(name, description)) {
  parser_.footer((explanation.empty() ? "" : explanation + "\n\n") + "Examples:\n" +
                 indented(examples) + "\n\n" + statusText);
}

bool Subcommand::isGiven() const {
  return parser_.parsed();
}

CLI::Option& Subcommand::add(const char* name, std::string& text, const char* type,
                             const char* description) {
  return *parser_.add_option(name, text, description)->type_name(type);
}

CLI::Option& Subcommand::add(const char* name, std::optional<std::string>& text, const char* type,
                             const char* description) {
  return *parser_.add_option(name, text, description)->type_name(type);
}

void Subcommand::addSdk(std::string& directory) {
  add("--sdk", directory, "DIR", "Directory with the makers' SDK libraries").required();
  addSceneOption(parser_);
}

CLI::Option& Subcommand::addCamera(CameraTexts& texts) {
  addSdk(texts.sdkDirectory);
  CLI::Option& camera = add("--camera", texts.camera, "CAMERA",
                            "Index, or a part of the name that fits one camera only");
  add("--width", texts.width, "PIXELS", "Frame width; whole sensor if not given");
  add("--height", texts.height, "PIXELS", "Frame height; whole sensor if not given");
  add("--bin", texts.bin, "N", "Binning factor; 1 if not given");
  add("--format", texts.format, "FORMAT",
      "raw8, raw16, rgb24 or mono8; the camera's first if not given");
  add("--exposure", texts.exposure, "TIME", "With its unit: 500us, 20ms, 1.5s; 20ms if not given");
  add("--gain", texts.gain, "N",
      "In the maker's units; a third of the camera's range if not given");
  add("--offset", texts.offset, "N", "Black level in the maker's units; 10 if not given");
  add("--discard", texts.discard, "N",
      "Frames to throw away before the first that counts; 0 if not given");
  addCorrection(texts.correction);
  return camera;
}

void Subcommand::addCorrection(CorrectionTexts& texts) {
  parser_.add_flag("--flip", texts.flips, "Turn frames upside down");
  parser_.add_flag("--swap-rb", texts.swapsRedAndBlue, "Exchange red and blue of rgb24 frames");
  add("--bayer", texts.bayer, "PATTERN",
      "The mosaic of raw frames as they come, in place of what the SDK says: RGGB, GRBG, GBRG, "
      "BGGR or none");
}

void Subcommand::addReporting(Reporting& reporting) {
  parser_.add_flag("--quiet", reporting.isQuiet, "Write nothing but errors and the JSON document");
  parser_.add_flag("--json", reporting.asJson, "Write one JSON document at the end");
}

}  // namespace orvane::host
