// The commands of docs/observers.md print what the document shows.
#include <algorithm>
#include <regex>

#include "documents.hpp"
#include "oc_capture_test.hpp"

namespace orvane::testing {

namespace {

// The document's reader has ZWO's SDK, one camera, and a folder for pictures.
class OcCaptureObservers : public OcCaptureAsiTest {
 protected:
  // Paths of the document's reader are others in this test.
  std::string here(std::string text) const {
    const std::string picture = utf8(scratch.file("x"));
    text = replaced(text, "C:\\astro\\", picture.substr(0, picture.size() - 1));
    return replaced(text, "..\\simulated-sdks", ORVANE_SDK_DIR);
  }

  ProgramResult runHere(const ShownCommand& command) const {
    std::vector<std::string> words{command.arguments};
    for (std::string& word : words) {
      word = word == "sdk" ? utf8(sdks.path()) : here(word);
    }
    // The document's reader has more time. Of so few frames no gap is reported.
    const auto seconds = std::ranges::find(words, "--seconds");
    if (seconds != words.end()) {
      seconds[0] = "--frames";
      seconds[1] = "5";
    }
    std::string simulator = "seed 5";
    if (std::ranges::find(command.arguments, "sdk") != command.arguments.end()) {
      simulator += "; sdk ASICamera2; camera ZWO ASI120MC-S";
    }
    if (command.output.starts_with("oc_capture: ASIOpenCamera: 16. ")) {
      simulator += "; force ASIOpenCamera 1 -1 16";
    }
    return run(CommandLine(words.begin(), words.end()), simulator);
  }

  // Without what differs from run to run, from Windows to Linux, or from folder to folder.
  static std::string comparable(const std::string& text) {
    static const std::regex measured(R"(\d+ frames of|[\d.]+ s \([\d.]+ fps\))");
    static const std::regex differing("\n  (File|Kind|File version|Soname|Needs) [^\n]*");
    return std::regex_replace(std::regex_replace(text, measured, "#"), differing, "");
  }

  // What was printed, with the line "..." where the document has it: there it leaves lines out.
  static std::string shortenedAs(const std::string& shown, const std::string& printed) {
    const std::string gap = "\n...\n";
    const std::size_t at = shown.find(gap);
    if (at == std::string::npos) {
      return printed;
    }
    const std::size_t rest = shown.size() - at - gap.size();
    return printed.size() < at + rest
               ? printed
               : printed.substr(0, at) + gap + printed.substr(printed.size() - rest);
  }
};

TEST_F(OcCaptureObservers, TheCommandsPrintWhatIsShown) {
  const std::regex progress("[^\n]* fps, [^\n]*\n");
  std::size_t count = 0;
  for (const ShownCommand& command : shownCommands(documentText("observers.md"), observersPrompt)) {
    if (command.program == "oc_capture") {
      const ProgramResult result = runHere(command);
      const std::string printed =
          comparable(std::regex_replace(result.err, progress, "") + result.out);
      const std::string shown = comparable(here(command.output));
      EXPECT_EQ(shortenedAs(shown, printed), shown);
      ++count;
    }
  }
  EXPECT_EQ(count, 7U);
}

}  // namespace

}  // namespace orvane::testing
