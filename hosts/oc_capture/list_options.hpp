// What "oc_capture list" is told on the command line.
#pragma once

#include <string>

#include "oc_capture/subcommand.hpp"

namespace orvane::host {

struct ListCommand {
  std::string sdkDirectory;
  bool asJson = false;
  bool isQuiet = false;  ///< nothing but errors
};

/// The options of "list" as a part of the argument parser.
class ListOptions : public Subcommand {
 public:
  explicit ListOptions(CLI::App& app);

  /// What was asked for; valid once the arguments have been parsed.
  ListCommand command() const { return list_; }

 private:
  ListCommand list_;
};

}  // namespace orvane::host
