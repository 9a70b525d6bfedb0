// The findings of "oc_capture doctor", as text and as JSON.
#include "oc_capture/doctor_report.hpp"

#include <algorithm>
#include <nlohmann/json.hpp>

#include "system/text.hpp"

namespace orvane::host {

namespace {

using nlohmann::ordered_json;

constexpr std::size_t labelWidth = 14;

// A path on Linux need not be UTF-8.
std::string pathText(const std::filesystem::path& path) {
  return validUtf8(utf8FromPath(path));
}

std::string line(const std::string& label, const std::string& text) {
  return "  " + label + std::string(labelWidth - label.size(), ' ') + text + "\n";
}

std::string furtherLine(const std::string& text) {
  return line("", text);
}

std::string kindOf(const SdkFindings& sdk) {
  if (!sdk.content.problem.empty()) {
    return sdk.content.problem;
  }
  return std::to_string(sdk.content.bits) + "-bit library for " + sdk.content.processor;
}

std::string loadText(const SdkFindings& sdk) {
  switch (sdk.load) {
    case LoadOutcome::Loaded:
      return "yes";
    case LoadOutcome::Failed:
      return "no: " + sdk.loadProblem +
             (sdk.loadCode ? " (" + std::to_string(*sdk.loadCode) + ")" : "");
    default:
      return "not tried: loading this file could end the program";
  }
}

// "4 of 5 WORD".
std::string countText(std::size_t present, std::size_t all, const std::string& word) {
  return std::to_string(present) + " of " + std::to_string(all) + " " + word;
}

std::string functionLines(const SdkFindings& sdk) {
  if (sdk.load != LoadOutcome::Loaded) {
    return line("Functions", "not known");
  }
  const std::size_t all = sdk.sdk.functions.size();
  std::string lines = line("Functions", countText(all - sdk.missingFunctions.size(), all, "there"));
  for (const std::string& function : sdk.missingFunctions) {
    lines += furtherLine("missing: " + function);
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
  const auto fine = static_cast<std::size_t>(std::count_if(
      sdk.imports.begin(), sdk.imports.end(), [](const auto& each) { return each.isFine(); }));
  std::string lines = line("Needs", countText(fine, sdk.imports.size(), "libraries found"));
  for (const ImportFinding& import : sdk.imports) {
    lines += import.isFine() ? "" : furtherLine(importProblem(import));
  }
  return lines;
}

std::string versionLine(const SdkFindings& sdk) {
#ifdef _WIN32
  return line("File version", sdk.content.version.value_or("none"));
#else
  return line("Soname", validUtf8(sdk.content.soname.value_or("none")));
#endif
}

std::string stateOf(const SdkFindings& sdk) {
  if (!sdk.isPresent) {
    return "not there";
  }
  return sdk.isHealthy() ? "healthy" : "NOT HEALTHY";
}

std::string sdkLines(const SdkFindings& sdk) {
  std::string lines =
      std::string(sdk.sdk.maker) + ": " + stateOf(sdk) + "\n" + line("File", pathText(sdk.file));
  if (sdk.isPresent) {
    lines += line("Kind", kindOf(sdk)) + versionLine(sdk) + line("Loads", loadText(sdk)) +
             functionLines(sdk) + importLines(sdk);
  }
  return lines + "\n";
}

// What oc_libraries() should list.
std::string loadableSdks(const DoctorFindings& findings) {
  std::string names;
  for (const SdkFindings& sdk : findings.sdks) {
    if (sdk.load == LoadOutcome::Loaded) {
      names += (names.empty() ? "" : ", ") + std::string(sdk.sdk.baseName);
    }
  }
  return names;
}

std::string libraryLines(const DoctorFindings& findings) {
  std::string lines = "The library itself\n";
  if (findings.scan) {
    const LibraryFindings& scan = *findings.scan;
    lines += line("oc_scan", std::to_string(scan.cameraCount) + " cameras") +
             line("oc_libraries", inQuotes(scan.libraries)) +
             line("oc_error", inQuotes(scan.error));
    if (scan.libraries != loadableSdks(findings)) {
      lines += furtherLine("The library loaded other SDKs than could be loaded here.");
    }
  } else if (findings.wasAskedToScan) {
    lines += furtherLine("not asked: a scan would load the file that it is not safe to load");
  } else {
    lines += furtherLine("not asked: it loads the SDKs in a scan only, and a scan opens every");
    lines += furtherLine("camera for a moment; oc_libraries and oc_error know nothing before.");
    lines += furtherLine("Add --scan when no other program is using a camera.");
  }
  return lines + "\n";
}

std::string summary(const DoctorFindings& findings) {
  const auto countIf = [&](auto isCounted) {
    return std::count_if(findings.sdks.begin(), findings.sdks.end(), isCounted);
  };
  const auto present = countIf([](const SdkFindings& sdk) { return sdk.isPresent; });
  const auto healthy = countIf([](const SdkFindings& sdk) { return sdk.isHealthy(); });
  if (present == 0) {
    return "There is no SDK in this directory.\n";
  }
  return "Found " + std::to_string(present) + " of " + std::to_string(findings.sdks.size()) +
         " SDKs, " + std::to_string(healthy) + " healthy.\n";
}

template <class Value>
ordered_json orNull(const std::optional<Value>& value) {
  return value ? ordered_json(*value) : ordered_json(nullptr);
}

ordered_json orNull(const std::string& text) {
  return text.empty() ? ordered_json(nullptr) : ordered_json(text);
}

ordered_json importJson(const ImportFinding& import) {
  return {{"name", import.name},
          {"neededBy", import.neededBy},
          {"missing", import.isMissing},
          {"file", orNull(pathText(import.file))},
          {"problem", orNull(import.problem)}};
}

ordered_json loadsJson(const SdkFindings& sdk) {
  return sdk.load == LoadOutcome::NotTried ? ordered_json(nullptr)
                                           : ordered_json(sdk.load == LoadOutcome::Loaded);
}

ordered_json sdkJson(const SdkFindings& sdk) {
  ordered_json imports = ordered_json::array();
  for (const ImportFinding& import : sdk.imports) {
    imports.push_back(importJson(import));
  }
  const bool isLoaded = sdk.load == LoadOutcome::Loaded;
  ordered_json json;
  json["maker"] = sdk.sdk.maker;
  json["name"] = sdk.sdk.baseName;
  json["file"] = pathText(sdk.file);
  json["present"] = sdk.isPresent;
  json["healthy"] = sdk.isHealthy();
  json["problem"] = orNull(sdk.content.problem);
  json["bits"] = sdk.content.bits == 0 ? ordered_json(nullptr) : ordered_json(sdk.content.bits);
  json["processor"] = orNull(sdk.content.processor);
  json["fileVersion"] = orNull(sdk.content.version);
  json["soname"] =
      sdk.content.soname ? ordered_json(validUtf8(*sdk.content.soname)) : ordered_json(nullptr);
  json["loads"] = loadsJson(sdk);
  json["loadError"] = orNull(sdk.loadProblem);
  json["loadErrorCode"] = orNull(sdk.loadCode);
  json["functions"] = sdk.sdk.functions.size();
  json["missingFunctions"] = isLoaded ? ordered_json(sdk.missingFunctions) : ordered_json(nullptr);
  json["imports"] = imports;
  return json;
}

ordered_json libraryJson(const DoctorFindings& findings) {
  const bool wasScanned = findings.scan.has_value();
  return {{"scanned", wasScanned},
          {"cameras", wasScanned ? ordered_json(findings.scan->cameraCount) : ordered_json()},
          {"libraries", wasScanned ? ordered_json(findings.scan->libraries) : ordered_json()},
          {"error", wasScanned ? ordered_json(findings.scan->error) : ordered_json()}};
}

}  // namespace

bool DoctorFindings::isHealthy() const {
  return std::all_of(sdks.begin(), sdks.end(),
                     [](const SdkFindings& sdk) { return !sdk.isPresent || sdk.isHealthy(); }) &&
         (!scan || (scan->error.empty() && scan->libraries == loadableSdks(*this)));
}

std::string doctorText(const DoctorFindings& findings) {
  std::string text;
  for (const SdkFindings& sdk : findings.sdks) {
    text += sdkLines(sdk);
  }
  return text + libraryLines(findings) + summary(findings);
}

std::string doctorJson(const DoctorFindings& findings) {
  ordered_json json;
  json["directory"] = pathText(findings.directory);
  json["healthy"] = findings.isHealthy();
  json["sdks"] = ordered_json::array();
  for (const SdkFindings& sdk : findings.sdks) {
    json["sdks"].push_back(sdkJson(sdk));
  }
  json["library"] = libraryJson(findings);
  return json.dump(2) + "\n";
}

}  // namespace orvane::host
