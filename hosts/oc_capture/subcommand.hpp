// What the options of all subcommands share: being a part of the argument parser, and their texts.
#pragma once

#include <optional>
#include <string>

#include "oc_capture/camera_options.hpp"

namespace CLI {
class App;
class Option;
}  // namespace CLI

namespace orvane::host {

/// What is written beside the work itself.
struct Reporting {
  bool isQuiet = false;  ///< nothing but errors and the JSON document
  bool asJson = false;   ///< one JSON document at the end, in place of a sentence
};

/// One subcommand's part of the argument parser. It holds what the parser writes into and must
/// outlive the parsing.
class Subcommand {
 public:
  Subcommand(const Subcommand&) = delete;
  Subcommand& operator=(const Subcommand&) = delete;

  /// True when this is the subcommand that was named.
  bool isGiven() const;

 protected:
  /// `examples`, one a line, and `explanation` stand below the options in the help.
  Subcommand(CLI::App& app, const char* name, const char* description, const std::string& examples,
             const std::string& explanation = "");
  ~Subcommand() = default;

  CLI::App& parser() const { return parser_; }

  /// An option with a text as its value.
  CLI::Option& add(const char* name, std::string& text, const char* type, const char* description);
  CLI::Option& add(const char* name, std::optional<std::string>& text, const char* type,
                   const char* description);

  /// "--sdk", which is required.
  void addSdk(std::string& directory);

  /// Which camera, how it is to be opened, and how its frames are to be put right.
  CLI::Option& addCamera(CameraTexts& texts);

  /// "--flip", "--swap-rb" and "--bayer".
  void addCorrection(CorrectionTexts& texts);

  /// "--quiet" and "--json".
  void addReporting(Reporting& reporting);

 private:
  CLI::App& parser_;
};

}  // namespace orvane::host
