// What "oc_capture snap" is told on the command line.
#include "oc_capture/snap_options.hpp"

#include <CLI/CLI.hpp>

#include "oc_capture/output_path.hpp"

namespace orvane::host {

namespace {

constexpr const char* explanation =
    "A PNG file shows the frame in colour and brightened, with 8 bits. A FITS file holds its "
    "samples\n"
    "as they are, a mosaic as a mosaic (BAYERPAT), RGB as three planes, rows from the top\n"
    "(ROWORDER), with the settings, the temperature and the time in its header.";

}  // namespace

SnapOptions::SnapOptions(CLI::App& app)
    : Subcommand(app, "snap", "Take one frame as a PNG or FITS file",
                 "oc_capture snap --sdk C:\\sdk --camera 0 --exposure 2s --out m31.png\n"
                 "oc_capture snap --sdk C:\\sdk --camera ASI294 --format raw16 --discard 2 --out "
                 "dark.fits",
                 explanation) {
  addCamera(camera_).required();
  add("--out", file_, "FILE", "The file: .png, .fits or .fit").required();
  parser().add_flag("--overwrite", snap_.mayOverwrite, "Replace the file if it exists");
  add("--observer", snap_.observer, "NAME", "Written into a FITS file");
  add("--telescope", snap_.telescope, "NAME", "Written into a FITS file");
  addReporting(snap_.reporting);
}

SnapCommand SnapOptions::command() const {
  SnapCommand snap = snap_;
  snap.camera = readCameraTexts(camera_);
  snap.file = readOutputPath(file_, {".png", ".fits", ".fit"});
  snap.isFits = !hasEnding(snap.file, ".png");
  return snap;
}

}  // namespace orvane::host
