// Examines a maker's SDK.
#include "sdk_check/examination.hpp"

#include <algorithm>
#include <fstream>
#include <iterator>
#include <span>
#include <stdexcept>

#include "sdk_check/cures.hpp"
#include "system/text.hpp"

namespace orvane::host {

namespace {

namespace fs = std::filesystem;

// More than any SDK has.
constexpr std::uintmax_t largestFile = 1U << 30U;
constexpr std::size_t mostImports = 1000;

// Does not read from pipes and devices, because that might never end.
LibraryFile readFile(const fs::path& path) {
  LibraryFile unread;
  std::error_code ignored;
  const std::uintmax_t size = fs::file_size(path, ignored);
  if (fs::is_directory(path, ignored)) {
    unread.problem = "This is a directory.";
    unread.cure = "Remove it and copy the maker's library of this name here.";
  } else if (!fs::is_regular_file(path, ignored)) {
    unread.problem = "This is no ordinary file.";
    unread.cure = "Remove it and copy the maker's library of this name here.";
  } else if (size > largestFile) {
    unread.problem = "The file is larger than any SDK.";
    unread.cure = "Replace it by the maker's library of this name.";
  } else {
    std::vector<std::uint8_t> bytes(static_cast<std::size_t>(size));
    std::ifstream stream(path, std::ios::binary);
    if (stream.read(reinterpret_cast<char*>(bytes.data()), static_cast<std::streamsize>(size))) {
      return readLibraryFile(bytes);
    }
    unread.problem = "The file cannot be read.";
    unread.cure = "Allow your user to read it, or copy it again.";
  }
  return unread;
}

// Adds the libraries that a library needs, and those that they need. The system's own libraries are
// assumed to be complete.
void addImports(SdkFindings& findings, const fs::path& importer, const LibraryFile& content) {
  for (const std::string& name : content.imports) {
    const std::string validName = validUtf8(name);
    if (findings.imports.size() == mostImports ||
        std::any_of(findings.imports.begin(), findings.imports.end(),
                    [&](const ImportFinding& each) { return each.name == validName; })) {
      continue;
    }
    const ImportPlace place = findImport(name, findings.file, importer, content);
    const bool isFound = !place.file.empty();
    const LibraryFile import = isFound && !place.isSystems ? readFile(place.file) : LibraryFile{};
    // If the SDK was loaded, the loader found everything that it needs.
    const bool isMissing = !isFound && !findings.isLoaded();
    findings.imports.push_back({validName, validUtf8(utf8FromPath(importer.filename())), place.file,
                                isMissing, import.problem,
                                isMissing             ? cureOfMissing(validName)
                                : import.cure.empty() ? ""
                                                      : validName + ": " + import.cure});
    addImports(findings, place.file, import);
  }
}

// Opening a pipe waits for its other end, and a damaged file may crash the loader.
bool mayBeLoaded(const SdkFindings& findings) {
  std::error_code ignored;
  return fs::is_directory(findings.file, ignored) ||
         (fs::is_regular_file(findings.file, ignored) &&
          (loaderSurvivesDamage || !findings.content.isDamaged));
}

}  // namespace

SdkFindings examineSdk(const Sdk& sdk, const fs::path& directory) {
  SdkFindings findings;
  findings.sdk = sdk;
  findings.file = directory / libraryFileName(sdk.baseName);
  std::error_code ignored;
  findings.isPresent = fs::exists(findings.file, ignored);
  if (findings.isPresent) {
    findings.content = readFile(findings.file);
    if (mayBeLoaded(findings)) {
      findings.load = loadLibrary(findings.file);
    }
    if (findings.isLoaded()) {
      std::copy_if(
          sdk.functions.begin(), sdk.functions.end(), std::back_inserter(findings.missingFunctions),
          [&](const auto& name) { return functionNamed(findings.load->module, name) == nullptr; });
    }
    addImports(findings, findings.file, findings.content);
  }
  return findings;
}

void refuseSdksThatCrashTheLoader(const fs::path& directory) {
  for (const Sdk& sdk : loaderSurvivesDamage ? std::span<const Sdk>() : allSdks()) {
    const fs::path file = directory / libraryFileName(sdk.baseName);
    std::error_code ignored;
    if (!fs::is_regular_file(file, ignored)) {
      continue;
    }
    const LibraryFile content = readFile(file);
    if (content.isDamaged) {
      throw std::runtime_error(inQuotes(utf8FromPath(file)) + ": " + content.problem + " " +
                               content.cure);
    }
  }
}

}  // namespace orvane::host
