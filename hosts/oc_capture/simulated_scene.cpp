// "--scene": a recording that simulated cameras look at.
#include "oc_capture/simulated_scene.hpp"

#include <CLI/CLI.hpp>
#include <filesystem>
#include <system_error>

#include "system/failures.hpp"
#include "system/system.hpp"
#include "system/text.hpp"

namespace orvane::host {

namespace {

// Where the simulated SDKs look for commands when they are loaded.
constexpr const char* commandVariable = "ORVANE_SIMULATOR";

void showToSimulatedCameras(const std::string& file) {
  const std::filesystem::path path = pathFromUtf8(file);
  std::error_code ignored;
  if (!std::filesystem::is_regular_file(path, ignored)) {
    throw UsageError("--scene needs a recording; there is no file " + inQuotes(file) + ".");
  }
  const std::string full = utf8FromPath(std::filesystem::absolute(path));
  // What separates the commands would end the name.
  if (full.find_first_of(";\n") != std::string::npos) {
    throw UsageError("--scene cannot take a file with a semicolon in its path: " + inQuotes(full) +
                     ".");
  }
  const std::string others = environmentVariable(commandVariable);
  const std::string command = "sdk *; scene " + full;
  setEnvironmentVariable(commandVariable, others.empty() ? command : others + "; " + command);
}

}  // namespace

void addSceneOption(CLI::App& command) {
  command
      .add_option_function<std::string>(
          "--scene", showToSimulatedCameras,
          "Recording that simulated cameras look at; without effect on real ones")
      ->type_name("FILE.ser");
}

}  // namespace orvane::host
