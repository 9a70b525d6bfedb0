// The file that a command writes: "--out" and "--overwrite".
#include "oc_capture/output_path.hpp"

#include <algorithm>
#include <stdexcept>
#include <system_error>

#include "system/failures.hpp"
#include "system/system.hpp"
#include "system/text.hpp"

namespace orvane::host {

void addOutputOptions(CommandOptions& options, OutputPath& output, const OutputOption& texts) {
  options.add(
      "--out", texts.type, texts.description,
      [&output, endings = texts.endings](const char* option, const std::string& text) {
        output.path = pathFromUtf8(text);
        if (std::none_of(endings.begin(), endings.end(),
                         [&](const auto& ending) { return hasEnding(output.path, ending); })) {
          throw UsageError(std::string(option) + " needs a file name that ends in " +
                           alternatives(endings) + ", not " + inQuotes(text) + ".");
        }
      },
      texts.presence);
  options.addFlag("--overwrite", output.mayOverwrite,
                  "Replace " + std::string(texts.type) + " if it exists");
}

bool hasEnding(const std::filesystem::path& path, const std::string& ending) {
  const std::string actual = utf8FromPath(path.extension());
  return actual.size() == ending.size() && containsIgnoringCase(actual, ending);
}

void requireUsable(const OutputPath& output) {
  std::error_code ignored;
  const std::filesystem::path directory = output.path.parent_path();
  if (!directory.empty() && !std::filesystem::is_directory(directory, ignored)) {
    throw UsageError("There is no directory " + inQuotes(utf8FromPath(directory)) + ".");
  }
  if (!output.mayOverwrite && std::filesystem::exists(output.path, ignored)) {
    throw UsageError(inQuotes(utf8FromPath(output.path)) +
                     " exists already; name another file or add --overwrite.");
  }
  if (output.isGiven() &&
      (isBeingWritten(output.path) || isBeingWritten(temporaryName(output.path)))) {
    throw std::runtime_error("Cannot create " + inQuotes(utf8FromPath(output.path)) +
                             ": another program is writing it");
  }
}

}  // namespace orvane::host
