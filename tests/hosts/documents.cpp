// What tests read from the documents.
#include "documents.hpp"

#include <filesystem>
#include <iomanip>
#include <sstream>

#include "scratch_directory.hpp"

namespace orvane::testing {

std::string documentText(const std::string& name) {
  return replaced(contentOf(std::filesystem::path(ORVANE_DOCS_DIR) / name), "\r", "");
}

std::string replaced(std::string text, const std::string& old, const std::string& by) {
  for (std::size_t at = text.find(old); at != std::string::npos;
       at = text.find(old, at + by.size())) {
    text.replace(at, old.size(), by);
  }
  return text;
}

std::vector<ShownCommand> shownCommands(const std::string& document, const std::string& prompt) {
  std::vector<ShownCommand> commands;
  bool isOutput = false;
  std::istringstream lines(document);
  for (std::string line; std::getline(lines, line);) {
    if (line.starts_with(prompt)) {
      ShownCommand& command = commands.emplace_back();
      std::istringstream words(line.substr(prompt.size()));
      words >> command.program;
      for (std::string word; words >> std::quoted(word);) {
        command.arguments.push_back(word);
      }
      isOutput = true;
    } else if (line.starts_with("```")) {
      isOutput = false;
    } else if (isOutput) {
      commands.back().output += line + "\n";
    }
  }
  return commands;
}

}  // namespace orvane::testing
