// "--scene": a recording that simulated cameras look at. It has no effect on real cameras.
#include "oc_capture/simulated_scene.hpp"

#include <filesystem>
#include <system_error>

#include "system/failures.hpp"
#include "system/system.hpp"
#include "system/text.hpp"

namespace orvane::host {

namespace {

// The simulated SDKs read their commands from it when they are loaded.
constexpr const char* commandVariable = "ORVANE_SIMULATOR";

void showToSimulatedCameras(const char*, const std::string& file) {
  const std::filesystem::path path = pathFromUtf8(file);
  std::error_code ignored;
  if (!std::filesystem::is_regular_file(path, ignored)) {
    throw UsageError("--scene needs a recording; there is no file " + inQuotes(file) + ".");
  }
  const std::string full = utf8FromPath(std::filesystem::absolute(path));
  // These characters separate commands.
  if (full.find_first_of(";\n") != std::string::npos) {
    throw UsageError("--scene cannot take a file with a semicolon in its path: " + inQuotes(full) +
                     ".");
  }
  const std::string others = environmentVariable(commandVariable);
  const std::string command = "sdk *; scene " + full;
  setEnvironmentVariable(commandVariable, others.empty() ? command : others + "; " + command);
}

}  // namespace

void addSceneOption(CommandOptions& options) {
  options.add("--scene", "FILE.ser",
              "Recording that simulated cameras look at;\nwithout effect on real ones",
              showToSimulatedCameras);
}

}  // namespace orvane::host
