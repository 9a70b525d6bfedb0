// The files of a command's runs: "--out", or "--name" with a template.
#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "oc_capture/command.hpp"
#include "oc_capture/output_path.hpp"

namespace orvane::host {

struct OutputNames {
  std::string out;           ///< a file; with a template a directory
  std::string nameTemplate;  ///< empty if "--out" is a file
  std::string target;        ///< what the fields of a template stand for
  std::string filter;
  std::string observer;
  bool mayOverwrite = false;
};

/// The help texts of "--out" and "--observer".
struct OutputNamesTexts {
  const char* type;
  const char* description;
  const char* observer;
};

/// "--out", "--overwrite", "--name", "--target", "--filter" and "--observer".
void addNameOptions(CommandOptions& options, OutputNames& names, const OutputNamesTexts& texts);

/// Names the file of each run.
class RunFiles {
 public:
  /// "--out" must have one of the endings; the names of a template get `ending`. A name is in use
  /// if there is a file with that ending, or with one of `companions` in its place. `count` is none
  /// for a single run; several runs without a template have numbers in their names. Throws
  /// UsageError if the ending is wrong or the directory is missing.
  RunFiles(const OutputNames& names, const std::vector<std::string>& endings, std::string ending,
           std::vector<std::string> companions, std::optional<int> count);

  /// The files that are known before the first run: all, or with a template none.
  std::vector<OutputPath> known() const;

  /// The file of a run that starts now. `run` is 1 for the first.
  OutputPath file(int run, const std::string& camera);

  std::filesystem::path directory() const;

 private:
  OutputPath numbered(int run) const;

  const OutputNames names_;
  const std::string ending_;
  const std::vector<std::string> companions_;
  const std::optional<int> count_;
  const std::filesystem::path out_;
  std::vector<std::string> taken_;  // names of earlier runs
};

/// The file beside another, with this in place of its ending.
OutputPath companionOf(const OutputPath& file, std::string_view ending);

}  // namespace orvane::host
