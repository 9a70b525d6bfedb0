// What "oc_capture play" is told on the command line.
#include "oc_capture/play_options.hpp"

#include <CLI/CLI.hpp>

#include "oc_capture/output_path.hpp"
#include "system/text.hpp"

namespace orvane::host {

namespace {

constexpr const char* explanation =
    "Frames, size, colours, depth, the rate and the gaps as the frames' time stamps have them. An\n"
    "interval of more than one and a half times the usual one counts as a gap. The contact sheet\n"
    "shows up to twelve frames from the first to the last, in colour and brightened.";

}  // namespace

PlayOptions::PlayOptions(CLI::App& app)
    : Subcommand(app, "play", "Tell what a recording holds, and show it on a contact sheet",
                 "oc_capture play jupiter.ser\n"
                 "oc_capture play jupiter.ser --out jupiter-sheet.png",
                 explanation) {
  add("FILE.ser", file_, "", "The recording").required();
  add("--out", sheet_, "SHEET.png", "The contact sheet");
  parser().add_flag("--overwrite", play_.mayOverwrite, "Replace SHEET.png if it exists");
  addCorrection(correction_);
  addReporting(play_.reporting);
}

PlayCommand PlayOptions::command() const {
  PlayCommand play = play_;
  play.file = pathFromUtf8(file_);
  if (sheet_) {
    play.sheet = readOutputPath(*sheet_, {".png"});
  }
  play.correction = readCorrectionTexts(correction_);
  return play;
}

}  // namespace orvane::host
