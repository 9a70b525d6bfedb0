// "oc_capture doctor": whether the makers' SDKs are there, load, and have all that is needed.
#include <algorithm>
#include <filesystem>
#include <iostream>
#include <optional>
#include <sstream>
#include <stdexcept>
#include <string>
#include <vector>

#include "oc_capture/camera_options.hpp"
#include "oc_capture/report.hpp"
#include "sdk_check/cures.hpp"
#include "sdk_check/examination.hpp"
#include "session/camera_catalogue.hpp"
#include "session/causes.hpp"
#include "system/text.hpp"

namespace orvane::host {

namespace {

struct DoctorSettings {
  std::string sdkDirectory;
  bool mayScan = false;  // opens every camera for a moment
  bool asJson = false;
};

void addOptions(CommandOptions& options, DoctorSettings& doctor) {
  addSdkOptions(options, doctor.sdkDirectory);
  options.addFlag("--scan", doctor.mayScan, "Scan too, which opens every camera");
  options.addFlag("--json", doctor.asJson, "Write one JSON document");
}

struct DoctorFindings {
  std::filesystem::path directory;
  std::vector<SdkFindings> sdks;  // all four
  bool wasAskedToScan = false;
  std::optional<oc::Scan> scan;

  // What oc_libraries() should list.
  std::string loadableSdks() const {
    std::vector<std::string> names;
    for (const SdkFindings& sdk : sdks) {
      if (sdk.isLoaded()) {
        names.emplace_back(sdk.sdk.baseName);
      }
    }
    return joined(names, ", ");
  }

  std::string loadedSdks() const { return joined(scan->libraries, ", "); }

  bool hasSdk() const {
    return std::any_of(sdks.begin(), sdks.end(),
                       [](const SdkFindings& sdk) { return sdk.isPresent; });
  }

  // There is an SDK, every one that is there works, and so did the scan, if there was one.
  bool isHealthy() const {
    return hasSdk() &&
           std::all_of(sdks.begin(), sdks.end(),
                       [](const SdkFindings& sdk) { return !sdk.isPresent || sdk.isHealthy(); }) &&
           (!scan || (scan->error.empty() && loadedSdks() == loadableSdks()));
  }
};

constexpr std::size_t labelWidth = 14;

// A path on Linux need not be UTF-8.
std::string pathText(const std::filesystem::path& path) {
  return validUtf8(utf8FromPath(path));
}

std::string line(const std::string& label, const std::string& text) {
  return "  " + label + std::string(labelWidth - label.size(), ' ') + text + "\n";
}

// Several lines, the first with a label.
std::string labelledLines(const char* label, const std::vector<std::string>& texts) {
  std::string all;
  for (const std::string& text : texts) {
    all += line(all.empty() ? label : "", text);
  }
  return all;
}

std::string kindOf(const LibraryFile& file) {
  return !file.problem.empty() ? file.problem
                               : std::to_string(file.bits) + "-bit library for " + file.processor;
}

std::string loadText(const SdkFindings& sdk) {
  if (!sdk.load) {
    return "not tried: loading this file could end the program";
  }
  const auto& code = sdk.load->code;
  return sdk.isLoaded() ? "yes"
                        : "no: " + validUtf8(sdk.load->problem) +
                              (code ? " (" + std::to_string(*code) + ")" : "");
}

// "4 of 5 WORD".
std::string countText(std::size_t present, std::size_t all, const std::string& word) {
  return std::to_string(present) + " of " + std::to_string(all) + " " + word;
}

std::string functionLines(const SdkFindings& sdk) {
  if (!sdk.isLoaded()) {
    return line("Functions", "not known");
  }
  const std::size_t all = sdk.sdk.functions.size();
  std::string lines = line("Functions", countText(all - sdk.missingFunctions.size(), all, "there"));
  for (const std::string& function : sdk.missingFunctions) {
    lines += line("", "missing: " + function);
  }
  return lines;
}

std::string importProblem(const ImportFinding& import) {
  const std::string what = import.name + ", needed by " + import.neededBy;
  return import.isMissing
             ? "missing: " + what
             : "unusable: " + what + ": " + pathText(import.file) + ": " + import.problem;
}

std::string importLines(const SdkFindings& sdk) {
  if (sdk.imports.empty()) {
    return line("Needs", sdk.content.problem.empty() ? "no other library" : "not known");
  }
  std::size_t fine = 0;
  std::string problems;
  for (const ImportFinding& import : sdk.imports) {
    fine += import.isFine() ? 1 : 0;
    problems += import.isFine() ? "" : line("", importProblem(import));
  }
  return line("Needs", countText(fine, sdk.imports.size(), "libraries found")) + problems;
}

std::string versionLine(const SdkFindings& sdk) {
#ifdef _WIN32
  return line("File version", sdk.content.version.value_or("none"));
#else
  return line("Soname", validUtf8(sdk.content.soname.value_or("none")));
#endif
}

std::string sdkLines(const SdkFindings& sdk) {
  const char* const state = !sdk.isPresent    ? "not there"
                            : sdk.isHealthy() ? "healthy"
                                              : "NOT HEALTHY";
  std::string lines =
      std::string(sdk.sdk.maker) + ": " + state + "\n" + line("File", pathText(sdk.file));
  if (sdk.isPresent) {
    lines += line("Kind", kindOf(sdk.content)) + versionLine(sdk) + line("Loads", loadText(sdk)) +
             functionLines(sdk) + importLines(sdk) + labelledLines("Cure", curesOf(sdk));
  }
  return lines + "\n";
}

// What the failures of a scan mean.
std::string causeLines(const std::string& error) {
  std::istringstream stream(explained(error));
  std::vector<std::string> texts;
  for (std::string text; std::getline(stream, text);) {
    texts.push_back(text);
  }
  return labelledLines("Cause", texts);
}

std::string libraryLines(const DoctorFindings& findings) {
  std::string lines = "The library itself\n";
  if (findings.scan) {
    lines += line("oc_scan", std::to_string(findings.scan->cameras.size()) + " cameras") +
             line("oc_libraries", inQuotes(findings.loadedSdks())) +
             line("oc_error", inQuotes(findings.scan->error)) + causeLines(findings.scan->error);
    if (findings.loadedSdks() != findings.loadableSdks()) {
      lines += line("", "The library loaded other SDKs than could be loaded here.") +
               line("Cure", "Close other programs that use cameras, and run this again.");
    }
  } else if (findings.wasAskedToScan) {
    lines += line("", "not asked: a scan would load the file that it is not safe to load");
  } else {
    lines += line("", "not asked: it loads the SDKs in a scan only, and a scan opens every");
    lines += line("", "camera for a moment; oc_libraries and oc_error know nothing before.");
    lines += line("", "Add --scan when no other program is using a camera.");
  }
  return lines + "\n";
}

std::string summary(const DoctorFindings& findings) {
  int present = 0;
  int healthy = 0;
  for (const SdkFindings& sdk : findings.sdks) {
    present += sdk.isPresent ? 1 : 0;
    healthy += sdk.isHealthy() ? 1 : 0;
  }
  if (present == 0) {
    return "There is no SDK in this directory. " + cureOfNoSdk() + "\n";
  }
  return "Found " + std::to_string(present) + " of " + std::to_string(findings.sdks.size()) +
         " SDKs, " + std::to_string(healthy) + " healthy.\n";
}

Json sdkJson(const SdkFindings& sdk) {
  Json imports = Json::array();
  for (const ImportFinding& import : sdk.imports) {
    imports.push_back({{"name", import.name},
                       {"neededBy", import.neededBy},
                       {"missing", import.isMissing},
                       {"file", orNull(pathText(import.file))},
                       {"problem", orNull(import.problem)},
                       {"cure", orNull(import.cure)}});
  }
  const LoadResult load = sdk.load.value_or(LoadResult());
  const LibraryFile& content = sdk.content;
  return {{"maker", sdk.sdk.maker},
          {"name", sdk.sdk.baseName},
          {"file", pathText(sdk.file)},
          {"present", sdk.isPresent},
          {"healthy", sdk.isHealthy()},
          {"problem", orNull(content.problem)},
          {"bits", content.bits == 0 ? Json() : Json(content.bits)},
          {"processor", orNull(content.processor)},
          {"fileVersion", orNull(content.version)},
          {"soname", content.soname ? Json(validUtf8(*content.soname)) : Json()},
          {"loads", sdk.load ? Json(sdk.isLoaded()) : Json()},
          {"loadError", orNull(validUtf8(load.problem))},
          {"loadErrorCode", orNull(load.code)},
          {"functions", sdk.sdk.functions.size()},
          {"missingFunctions", sdk.isLoaded() ? Json(sdk.missingFunctions) : Json()},
          {"imports", imports},
          {"cure", orNull(joined(curesOf(sdk), " "))}};
}

Json libraryJson(const DoctorFindings& findings) {
  if (!findings.scan) {
    return {{"scanned", false},
            {"cameras", nullptr},
            {"libraries", nullptr},
            {"error", nullptr},
            {"explanation", nullptr}};
  }
  return {{"scanned", true},
          {"cameras", findings.scan->cameras.size()},
          {"libraries", findings.loadedSdks()},
          {"error", findings.scan->error},
          {"explanation", explained(findings.scan->error)}};
}

std::string textOf(const DoctorFindings& findings) {
  return joined(findings.sdks, "", sdkLines) + libraryLines(findings) + summary(findings);
}

Json jsonOf(const DoctorFindings& findings) {
  Json sdks = Json::array();
  for (const SdkFindings& sdk : findings.sdks) {
    sdks.push_back(sdkJson(sdk));
  }
  return {{"directory", pathText(findings.directory)},
          {"healthy", findings.isHealthy()},
          {"cure", findings.hasSdk() ? Json() : Json(cureOfNoSdk())},
          {"sdks", sdks},
          {"library", libraryJson(findings)}};
}

// No scan if an SDK was not loaded because that could end this program: the scan would load it.
bool canBeScanned(const std::vector<SdkFindings>& sdks) {
  return std::none_of(sdks.begin(), sdks.end(),
                      [](const SdkFindings& sdk) { return sdk.isPresent && !sdk.load; });
}

int examineSdks(const DoctorSettings& settings) {
  DoctorFindings findings;
  findings.directory = fullSdkDirectory(settings.sdkDirectory);
  for (const Sdk& sdk : allSdks()) {
    findings.sdks.push_back(examineSdk(sdk, findings.directory));
  }
  findings.wasAskedToScan = settings.mayScan;
  if (settings.mayScan && canBeScanned(findings.sdks)) {
    findings.scan = presentable(oc::scan(findings.directory));
  }
  report({false, settings.asJson}, jsonOf(findings), textOf(findings));
  if (!std::cout) {
    throw std::runtime_error("The findings could not be written.");
  }
  return findings.isHealthy() ? 0 : 1;
}

}  // namespace

const Command doctorCommand{
    .name = "doctor",
    .description = "Tell why an SDK cannot be used, without opening a camera",
    .explanation =
        R"(Tells about each of the four SDKs: its file, whether it loads or the system's
message, the functions that the library calls but the SDK lacks, and the
libraries that the SDK needs. The SDKs are loaded, but no camera is opened.
"Cure" says what to do about a finding.

With --scan the library itself scans for cameras, too. It opens every camera
for a moment, which disturbs a program that is using one.)",
    .examples =
        R"(  oc_capture doctor --sdk C:\sdk
  oc_capture doctor --sdk C:\sdk --scan --json)",
    .whenDone = "all SDKs there are healthy",
    .whenFailed = "one is not, or no SDK, or scan failed",
    .prepare = prepareCommand<DoctorSettings, addOptions, examineSdks>,
};

}  // namespace orvane::host
