// What the live view remembers from one start to the next, in a file of the user's profile.
#pragma once

#include <filesystem>
#include <map>
#include <optional>
#include <string>

#include "live_view/live_session.hpp"

namespace orvane::host {

/// The place of the window while it is not maximized, in pixels of the screen.
struct WindowPlace {
  int left = 0;
  int top = 0;
  int width = 0;
  int height = 0;
  bool isMaximized = false;

  friend bool operator==(const WindowPlace&, const WindowPlace&) = default;
};

struct RememberedSettings {
  std::string sdkDirectory;  ///< where SDKs were found; UTF-8, like the two below
  std::string recordings;
  std::string camera;  ///< the name of the one that was used last
  KnownSettings cameras;
  std::optional<WindowPlace> window;
};

/// The file's place for this user; empty if the user has no profile.
std::filesystem::path settingsFile();

/// Reads the file; nothing is remembered if there is none. Throws std::runtime_error, with a
/// sentence that names the file, if it cannot be read or understood.
RememberedSettings readSettings(const std::filesystem::path& file);

/// Writes the file, and its directory if that is missing. Throws std::runtime_error.
void writeSettings(const std::filesystem::path& file, const RememberedSettings& settings);

/// Notes what is in use now.
void remember(RememberedSettings& settings, const LiveState& state);

/// Fills in what the command line leaves open. For the SDKs that is the directory "sdk" beside the
/// program, or else the one that is remembered, if it is there; or else none.
void fillIn(LiveOptions& options, const RememberedSettings& settings,
            const std::filesystem::path& programDirectory);

}  // namespace orvane::host
