// Examines a maker's SDK where it lies.
#include "sdk_check/examination.hpp"

#include <algorithm>
#include <fstream>

#include "sdk_check/system_loader.hpp"
#include "system/text.hpp"

namespace orvane::host {

namespace {

namespace fs = std::filesystem;

// More than any SDK has; what is not an SDK at all may be of any size.
constexpr std::uintmax_t largestFile = 1U << 30U;

// Far more than any SDK needs.
constexpr std::size_t mostImports = 1000;

struct ReadResult {
  LibraryFile content;
  std::string problem;
};

// Files are looked at only where reading comes to an end: no directories, pipes or devices.
ReadResult readFile(const fs::path& file) {
  std::error_code ignored;
  if (fs::is_directory(file, ignored)) {
    return {{}, "This is a directory."};
  }
  if (!fs::is_regular_file(file, ignored)) {
    return {{}, "This is no ordinary file."};
  }
  const std::uintmax_t size = fs::file_size(file, ignored);
  if (size > largestFile) {
    return {{}, "The file is larger than any SDK."};
  }
  std::vector<std::uint8_t> bytes(static_cast<std::size_t>(size));
  std::ifstream stream(file, std::ios::binary);
  if (!stream ||
      !stream.read(reinterpret_cast<char*>(bytes.data()), static_cast<std::streamsize>(size))) {
    return {{}, "The file cannot be read."};
  }
  LibraryFile content = readLibraryFile(bytes);
  std::string problem = problemOf(content);
  return {std::move(content), std::move(problem)};
}

bool isListed(const std::vector<ImportFinding>& imports, const std::string& name) {
  return std::any_of(imports.begin(), imports.end(),
                     [&](const ImportFinding& each) { return each.name == name; });
}

// Follows what the SDK needs, and what that needs in turn, but not into the system's own libraries:
// those are complete.
class ImportSearch {
 public:
  explicit ImportSearch(SdkFindings& findings) : findings_(findings) {}

  void follow(const fs::path& importer, const LibraryFile& content) {
    for (const std::string& name : content.imports) {
      if (!isListed(findings_.imports, name) && findings_.imports.size() < mostImports) {
        look(name, importer, content);
      }
    }
  }

 private:
  void look(const std::string& name, const fs::path& importer, const LibraryFile& content) {
    const ImportPlace place = findImport(name, findings_.file, importer, content);
    ImportFinding finding{
        validUtf8(name), validUtf8(utf8FromPath(importer.filename())), place.file, false, {}};
    // What is loaded has found all that it needs, wherever that was.
    finding.isMissing = place.file.empty() && findings_.load != LoadOutcome::Loaded;
    if (place.file.empty() || place.isSystems) {
      findings_.imports.push_back(finding);
      return;
    }
    const ReadResult read = readFile(place.file);
    finding.problem = read.problem;
    findings_.imports.push_back(finding);
    follow(place.file, read.content);
  }

  SdkFindings& findings_;
};

// The loader would wait for a pipe's other end, and may not survive a file that is cut off.
bool mayBeLoaded(const SdkFindings& findings) {
  std::error_code ignored;
  if (!fs::is_regular_file(findings.file, ignored) && !fs::is_directory(findings.file, ignored)) {
    return false;
  }
  const LibraryFile& content = findings.content;
  return loaderSurvivesDamage || !content.isDamaged || !content.isForThisSystem;
}

void tryToLoad(SdkFindings& findings) {
  if (!mayBeLoaded(findings)) {
    return;
  }
  const LoadResult result = loadLibrary(findings.file);
  if (result.module == nullptr) {
    findings.load = LoadOutcome::Failed;
    findings.loadProblem = validUtf8(result.problem);
    findings.loadCode = result.code;
    return;
  }
  findings.load = LoadOutcome::Loaded;
  for (const std::string& function : findings.sdk.functions) {
    if (!hasFunction(result.module, function)) {
      findings.missingFunctions.push_back(function);
    }
  }
}

}  // namespace

SdkFindings examineSdk(const Sdk& sdk, const fs::path& directory) {
  SdkFindings findings;
  findings.sdk = sdk;
  findings.file = directory / libraryFileName(sdk.baseName);
  std::error_code ignored;
  const fs::file_status status = fs::status(findings.file, ignored);
  findings.isPresent =
      status.type() != fs::file_type::not_found && status.type() != fs::file_type::none;
  if (!findings.isPresent) {
    return findings;
  }
  ReadResult read = readFile(findings.file);
  findings.content = std::move(read.content);
  findings.problem = std::move(read.problem);
  tryToLoad(findings);
  ImportSearch(findings).follow(findings.file, findings.content);
  return findings;
}

}  // namespace orvane::host
