// What the library's messages mean to an observer, and what to do about them.
#include "session/causes.hpp"

#include <gtest/gtest.h>

#include <algorithm>
#include <charconv>
#include <chrono>
#include <map>
#include <new>
#include <set>
#include <vector>

#include "cpp_face/scripted_library.hpp"
#include "session/causes_table.hpp"

namespace orvane::host {

namespace {

// A code that no SDK has.
constexpr const char* unusedCode = "-77";

std::string filledIn(std::string_view message, const std::string& code = unusedCode) {
  const std::map<std::string, std::string, std::less<>> values{{"<code>", code},
                                                               {"<number>", "5"},
                                                               {"<library>", "qhyccd"},
                                                               {"<function>", "ScanQHYCCD"},
                                                               {"<key>", "pixelSizeUm"}};
  std::string text(message);
  for (const auto& [placeholder, value] : values) {
    for (std::size_t at = text.find(placeholder); at != std::string::npos;
         at = text.find(placeholder)) {
      text.replace(at, placeholder.size(), value);
    }
  }
  EXPECT_EQ(text.find('<'), std::string::npos) << text;
  return text;
}

// What explained() adds to a text.
std::string addition(const std::string& text) {
  const std::string lines = explained(text);
  const std::string start = text + (text.ends_with('.') ? " " : ". ");
  EXPECT_TRUE(lines.starts_with(start)) << lines;
  return lines.substr(std::min(start.size(), lines.size()));
}

std::string causeAndCure(const MessageRow& row) {
  return std::string(row.cause) + " " + std::string(row.cure);
}

// The row without the last word, which is the code.
std::string_view callOf(const MessageRow& row) {
  return row.message.substr(0, row.message.rfind(' '));
}

template <class Test>
void forEachRow(Test test) {
  std::size_t rows = 0;
  for (const MessageSection& section : messageSections()) {
    for (const MessageRow& row : section.rows) {
      SCOPED_TRACE(row.message);
      test(section, row);
      ++rows;
    }
  }
  EXPECT_GE(rows, 100U);
}

TEST(Causes, OfACameraThatWasUnplugged) {
  EXPECT_EQ(
      explained("ASIGetVideoData: 5"),
      "ASIGetVideoData: 5. The camera was unplugged or has stopped answering. Check its cable, "
      "then scan again.");
}

TEST(Causes, OfASentenceOfTheLibrary) {
  EXPECT_EQ(
      explained("Camera not found; rescan"),
      "Camera not found; rescan. The camera is not among those that the last scan found. Check "
      "its cable, scan again and choose it from the new list.");
}

TEST(Causes, OfAMissingFunction) {
  EXPECT_EQ(explained("qhyccd: missing ScanQHYCCD"),
            "qhyccd: missing ScanQHYCCD. The file of this name is not the maker's SDK, or it is an "
            "old version. Get the maker's current SDK library, put it in place of this file and "
            "restart the program.");
}

TEST(Causes, OfSilence) {
  EXPECT_EQ(explained("The camera has sent no frame for 5 waits of 540 ms."),
            "The camera has sent no frame for 5 waits of 540 ms. The camera was unplugged or has "
            "stopped sending frames. Check its cable and power, then scan again. If the message "
            "returns, use another USB port or cable, or a powered hub.");
}

TEST(Causes, OfACodeThatHasNoRowNameTheCode) {
  EXPECT_EQ(explained("ASI gain: 5"),
            "ASI gain: 5. The camera did not accept the gain. The SDK reports: the camera was "
            "unplugged (ASI_ERROR_CAMERA_REMOVED). Check its cable, then scan and open it again.");
  EXPECT_EQ(addition("QHY gain: 4294967293"),
            "The camera did not accept the gain. The SDK reports: the camera was lost "
            "(QHYCCD_ERROR_DEVICELOSE). Use a gain within the camera's range.");
}

TEST(Causes, OfACodeThatSaysNothing) {
  EXPECT_EQ(addition("ASI gain: 16"),
            "The camera did not accept the gain. Check its cable, then scan and open it again.");
}

TEST(Causes, OfEachMessageWithACodeThatNoSdkHas) {
  forEachRow([](const MessageSection&, const MessageRow& row) {
    EXPECT_EQ(addition(filledIn(row.message)), causeAndCure(row));
  });
}

TEST(Causes, OfEachMessageWithEachCode) {
  std::size_t named = 0;
  forEachRow([&](const MessageSection& section, const MessageRow& row) {
    if (!row.message.ends_with("<code>")) {
      return;
    }
    EXPECT_FALSE(section.codes.empty());
    for (const ResultCode& code : section.codes) {
      const std::string text = filledIn(row.message, std::to_string(code.code));
      const auto own = std::ranges::find(section.rows, text, &MessageRow::message);
      if (own != section.rows.end()) {
        EXPECT_EQ(addition(text), causeAndCure(*own));
      } else if (code.helpsObserver) {
        EXPECT_EQ(addition(text), std::string(row.cause) +
                                      " The SDK reports: " + std::string(code.meaning) + " (" +
                                      std::string(code.name) + "). " + std::string(row.cure));
        ++named;
      } else {
        EXPECT_EQ(addition(text), causeAndCure(row));
      }
    }
  });
  EXPECT_GT(named, 300U);
}

TEST(Causes, OfSeveralMessagesAreOnLinesOfTheirOwn) {
  EXPECT_EQ(explained("ASIGetCameraProperty: 16; qhyccd: missing ScanQHYCCD; QHY scan failed"),
            explained("ASIGetCameraProperty: 16") + "\n" + explained("qhyccd: missing ScanQHYCCD") +
                "\n" + explained("QHY scan failed"));
}

TEST(Causes, OfKnownMessagesBetweenUnknownOnes) {
  EXPECT_EQ(explained("No device; try again; QHY scan failed; Odd; odder"),
            "No device; try again\n" + explained("QHY scan failed") + "\nOdd; odder");
}

TEST(Causes, OfUnknownTextsAreNotInvented) {
  for (const char* text : {"",
                           ".",
                           "; ",
                           "No device; try again",
                           "ASI gain",
                           "ASI gain:",
                           "ASI gain: ",
                           "ASI gain: x",
                           "ASI gain: 5x",
                           "ASI gain: -",
                           "ASI gain: 5 ",
                           " ASI gain: 5",
                           "asi gain: 5",
                           "ASI heat: 5",
                           "qhyccd: missing ",
                           "qhyccd: missing a b",
                           ": missing ScanQHYCCD",
                           "Camera closed.",
                           "The camera has sent no frame for 5 waits of  ms.",
                           "<library>: missing <function>!"}) {
    EXPECT_EQ(explained(text), text);
  }
}

TEST(Causes, AsASentenceEndWithAFullStop) {
  EXPECT_EQ(explainedSentence("QHY scan failed"), explained("QHY scan failed"));
  EXPECT_EQ(explainedSentence("No device"), "No device.");
  EXPECT_EQ(explainedSentence("No device."), "No device.");
}

TEST(Causes, OfACodeThatIsNoNumberOf64Bits) {
  EXPECT_EQ(addition("ASI gain: 99999999999999999999999"), addition("ASI gain: -77"));
}

TEST(Causes, OfTextsThatAreNotUtf8) {
  const std::string invalid = "Ger\xe4t \xff\xc3";
  EXPECT_EQ(explained(invalid), invalid);
  EXPECT_EQ(explained("ASI gain: 5\xc3"), "ASI gain: 5\xc3");
  EXPECT_EQ(explained(invalid + "; QHY scan failed"),
            invalid + "\n" + explained("QHY scan failed"));
  const std::string withNul("QHY scan failed\0", 16);
  EXPECT_EQ(explained(withNul), withNul);
}

TEST(Causes, OfExhaustedMemoryInThisCompilersWords) {
  EXPECT_EQ(addition(std::bad_alloc().what()), addition("std::bad_alloc"));
}

// The capture thread composes its texts itself.
TEST(Causes, OfTheTextsOfTheCaptureThread) {
  using testing::script;
  script().infos = {testing::infoText(0, "Camera")};
  script().scan = [] { return 1; };
  const oc::Library library = testing::scriptedLibrary();
  const auto textOf = [](const auto& act) {
    try {
      act();
    } catch (const oc::Error& error) {
      return std::string(error.what());
    }
    return std::string("no failure");
  };
  {
    oc::CaptureThread capture({}, library);
    EXPECT_FALSE(addition(textOf([&] { capture.reopen().get(); })).empty());
  }
  const oc::Scan found = oc::scan("sdk", library);
  script().open = [](int, int) -> int { throw 1; };
  EXPECT_FALSE(addition(textOf([&] {
                 oc::CaptureThread capture({}, library);
                 try {
                   capture.open(found.cameras.at(0), {}).get();
                 } catch (int) {
                   // The future has the exception itself; the state has a text.
                 }
                 throw oc::Error(capture.state().text);
               })).empty());
  script().open = [](int, int) { return 1; };
  script().read = [](std::uint8_t*, int) { return 0; };
  oc::CaptureOptions options;
  options.silentWaits = 1;
  EXPECT_FALSE(addition(textOf([&] {
                 oc::CaptureThread capture(found.cameras.at(0), {.exposureUs = 1}, options,
                                           library);
                 capture.next(std::chrono::seconds(20));
               })).empty());
  script().infos = {"{}"};
  EXPECT_FALSE(addition(oc::scan("sdk", library).error).empty());
}

TEST(CausesTable, IsForObservers) {
  forEachRow([](const MessageSection&, const MessageRow& row) {
    for (const std::string_view text : {row.cause, row.cure}) {
      EXPECT_TRUE(text.ends_with('.')) << text;
      EXPECT_TRUE(text.front() >= 'A' && text.front() <= 'Z') << text;
      // No code, links, placeholders, or names from the interface.
      EXPECT_EQ(text.find_first_of("`[]<>|\n"), std::string_view::npos) << text;
      EXPECT_EQ(text.find("oc_"), std::string_view::npos) << text;
      EXPECT_EQ(text.find("()"), std::string_view::npos) << text;
      EXPECT_TRUE(std::ranges::all_of(text, [](char c) { return c >= ' ' && c <= '~'; })) << text;
    }
    EXPECT_EQ(row.forPrograms.find('|'), std::string_view::npos) << row.forPrograms;
  });
}

TEST(CausesTable, HasEachMessageOnceAndItsCodesBelowIt) {
  std::set<std::string_view> seen;
  std::string_view general;
  forEachRow([&](const MessageSection&, const MessageRow& row) {
    EXPECT_TRUE(seen.insert(row.message).second);
    if (!row.from.empty()) {
      general = row.message;
      return;
    }
    EXPECT_EQ(std::string(callOf(row)) + " <code>", general);
    const std::string_view code = row.message.substr(row.message.rfind(' ') + 1);
    std::int64_t number = 0;
    const auto parsed = std::from_chars(code.data(), code.data() + code.size(), number);
    EXPECT_EQ(parsed.ptr, code.data() + code.size());
  });
}

TEST(CausesTable, HasTheNameOfEachSingleCode) {
  forEachRow([](const MessageSection& section, const MessageRow& row) {
    if (row.from.empty()) {
      const std::string_view code = row.message.substr(row.message.rfind(' ') + 1);
      EXPECT_TRUE(std::ranges::any_of(section.codes, [&](const ResultCode& each) {
        return std::to_string(each.code) == code;
      }));
    }
  });
}

}  // namespace

}  // namespace orvane::host
