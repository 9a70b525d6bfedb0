// What tests read from the documents.
#pragma once

#include <string>
#include <vector>

namespace orvane::testing {

/// The text of a document in docs/, with plain line ends.
std::string documentText(const std::string& name);

std::string replaced(std::string text, const std::string& old, const std::string& by);

/// A command that a document shows behind the prompt of Windows, and what it prints there.
struct ShownCommand {
  std::string program;
  std::vector<std::string> arguments;
  std::string output;  ///< its lines until the next prompt or the end of the block
};

/// All commands that a document shows behind this prompt.
std::vector<ShownCommand> shownCommands(const std::string& document, const std::string& prompt);

/// The prompt in docs/observers.md.
inline constexpr const char* observersPrompt = "C:\\orvane\\bin>";

}  // namespace orvane::testing
