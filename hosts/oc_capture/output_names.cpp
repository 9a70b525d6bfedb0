// The files of a command's runs: "--out", or "--name" with a template.
#include "oc_capture/output_names.hpp"

#include <algorithm>
#include <chrono>
#include <system_error>
#include <utility>

#include "session/file_names.hpp"
#include "system/failures.hpp"
#include "system/file.hpp"
#include "system/system.hpp"
#include "system/text.hpp"

namespace orvane::host {

namespace {

std::tm now() {
  return localTime(std::chrono::system_clock::to_time_t(std::chrono::system_clock::now()));
}

bool isTaken(const std::filesystem::path& path) {
  std::error_code ignored;
  return std::filesystem::exists(path, ignored);
}

}  // namespace

void addNameOptions(CommandOptions& options, OutputNames& names, const OutputNamesTexts& texts) {
  options.add("--out", texts.type, texts.description, intoText(names.out), Presence::Required);
  options.addFlag("--overwrite", names.mayOverwrite, "Replace files that exist");
  options.add("--name", "TEMPLATE",
              "Make the names of the files, in the directory\n--out, from these fields and other "
              "text: {date},\n{time}, {target}, {filter}, {camera}, {observer}",
              [&names](const char* option, const std::string& text) {
                requireNameTemplate(option, text);
                names.nameTemplate = text;
              });
  options.add("--target", "NAME", "What is observed: written into the files, {target}",
              intoText(names.target));
  options.add("--filter", "NAME", "Written into the files, {filter}", intoText(names.filter));
  options.add("--observer", "NAME", texts.observer, intoText(names.observer));
}

RunFiles::RunFiles(const OutputNames& names, const std::vector<std::string>& endings,
                   std::string ending, std::vector<std::string> companions,
                   std::optional<int> count)
    : names_(names),
      ending_(std::move(ending)),
      companions_(std::move(companions)),
      count_(count),
      out_(pathFromUtf8(names.out)) {
  const auto isEnding = [&](const std::string& allowed) { return hasEnding(out_, allowed); };
  if (names_.nameTemplate.empty() && std::none_of(endings.begin(), endings.end(), isEnding)) {
    throw UsageError("--out needs a file name that ends in " + alternatives(endings) + ", not " +
                     inQuotes(names_.out) + ".");
  }
  std::error_code ignored;
  if (!std::filesystem::is_directory(directory(), ignored)) {
    throw UsageError("There is no directory " + inQuotes(utf8FromPath(directory())) + ".");
  }
}

std::filesystem::path RunFiles::directory() const {
  if (!names_.nameTemplate.empty()) {
    return out_;
  }
  const std::filesystem::path parent = out_.parent_path();
  return parent.empty() ? "." : parent;
}

std::vector<OutputPath> RunFiles::known() const {
  std::vector<OutputPath> files;
  for (int run = 1; names_.nameTemplate.empty() && run <= count_.value_or(1); ++run) {
    files.push_back(numbered(run));
  }
  return files;
}

OutputPath RunFiles::file(int run, const std::string& camera) {
  if (names_.nameTemplate.empty()) {
    return numbered(run);
  }
  const auto isUsed = [&](const std::string& name) {
    if (std::find(taken_.begin(), taken_.end(), name) != taken_.end()) {
      return true;
    }
    const OutputPath file{out_ / pathFromUtf8(name + ending_), false};
    const auto hasCompanion = [&](const std::string& companion) {
      return isTaken(companionOf(file, companion).path);
    };
    return !names_.mayOverwrite &&
           (isTaken(file.path) || isTaken(temporaryName(file.path)) ||
            std::any_of(companions_.begin(), companions_.end(), hasCompanion));
  };
  taken_.push_back(
      unusedName(nameFromTemplate(names_.nameTemplate,
                                  {now(), camera, names_.target, names_.filter, names_.observer}),
                 isUsed));
  return {out_ / pathFromUtf8(taken_.back() + ending_), names_.mayOverwrite};
}

OutputPath RunFiles::numbered(int run) const {
  if (!count_) {
    return {out_, names_.mayOverwrite};
  }
  const std::size_t digits = std::max<std::size_t>(3, std::to_string(*count_).size());
  std::string number = std::to_string(run);
  number.insert(0, digits - number.size(), '0');
  const OutputPath file{out_, names_.mayOverwrite};
  return companionOf(file, "-" + number + utf8FromPath(out_.extension()));
}

OutputPath companionOf(const OutputPath& file, std::string_view ending) {
  OutputPath companion = file;
  companion.path.replace_extension();
  companion.path += pathFromUtf8(ending);
  return companion;
}

}  // namespace orvane::host
