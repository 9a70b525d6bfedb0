// Names of recordings and pictures, made from a template.
#include "session/file_names.hpp"

#include <gtest/gtest.h>

#include <fstream>
#include <iomanip>
#include <sstream>
#include <vector>

#include "scratch_directory.hpp"
#include "system/failures.hpp"

namespace orvane::host {

namespace {

using orvane::testing::ScratchDirectory;

NameValues evening() {
  NameValues values;
  values.camera = "ZWO ASI294MC Pro";
  std::istringstream("2026-11-01 20:05:09") >>
      std::get_time(&values.localTime, "%Y-%m-%d %H:%M:%S");
  return values;
}

struct NameCase {
  const char* text;
  const char* target;
  const char* filter;
  const char* name;
};

TEST(NameFromTemplate, PutsValuesInThePlaceOfFields) {
  for (const NameCase& row : std::vector<NameCase>{
           {usualNameTemplate, "", "", "2026-11-01_20-05-09_ZWO ASI294MC Pro"},
           {"{date}-{time}_{target}_{filter}_{camera}", "Jupiter", "IR685",
            "2026-11-01-20-05-09_Jupiter_IR685_ZWO ASI294MC Pro"},
           {"{target}", "M 31", "", "M 31"},
           {"plain", "", "", "plain"},
           // A field without a value takes one separator with it.
           {"{target}_{filter}_{date}", "", "R", "R_2026-11-01"},
           {"{date}_{target}_{filter}", "", "", "2026-11-01"},
           {"{date}_{target}{filter}_x", "", "", "2026-11-01_x"},
           {"{target}", "", "", "_"},
           // Characters and names that a file system refuses.
           {"a/{target}", "<b>c:d\"e/f\\g|h?i*j\nk", "", "a--b-c-d-e-f-g-h-i-j-k"},
           {"{target}", "  Moon. . ", "", "Moon"},
           {"{target}", "con", "", "_con"},
           {"{target}.x", "LPT1", "", "_LPT1.x"},
           {"{target}", "COMA", "", "COMA"},
           {"{target}", "a\xff", "", "a\ufffd"},
       }) {
    NameValues values = evening();
    values.target = row.target;
    values.filter = row.filter;
    EXPECT_EQ(nameFromTemplate(row.text, values), row.name) << row.text;
  }
}

TEST(NameFromTemplate, CutsBetweenCharacters) {
  NameValues values = evening();
  values.camera = std::string(59, 'x') + "\u00e9\u00e9";
  EXPECT_EQ(nameFromTemplate("{camera}", values), std::string(59, 'x'));
  EXPECT_EQ(nameFromTemplate(std::string(179, 'y') + "\u00e9", values), std::string(179, 'y'));
}

TEST(RequireNameTemplate, RefusesWhatIsNoField) {
  const auto problem = [](const char* text) -> std::string {
    try {
      requireNameTemplate("--name", text);
      return "";
    } catch (const UsageError& error) {
      return error.what();
    }
  };
  EXPECT_EQ(problem("{date}-{time}_{target}_{filter}_{camera}{observer}"), "");
  EXPECT_EQ(problem(""), "--name needs a name.");
  EXPECT_EQ(problem("{date}_{planet}"),
            "--name has no field {planet}; there are {date}, {time}, {target}, {filter}, {camera}, "
            "{observer}.");
  EXPECT_NE(problem("{Date}"), "");
  for (const char* text : {"{date", "date}", "{da{te}", "}{", "{date}}"}) {
    EXPECT_EQ(problem(text),
              "--name \"" + std::string(text) + "\" has a brace without its partner.");
  }
}

TEST(UnusedName, IsNumberedWhereAnyOfTheFilesExists) {
  const ScratchDirectory scratch;
  const auto unused = [&] { return unusedName(scratch.path(), "a", {".ser", ".txt"}); };
  EXPECT_EQ(unused(), "a");
  std::ofstream(scratch.file("a.png")) << "1";
  EXPECT_EQ(unused(), "a");
  std::ofstream(scratch.file("a.ser")) << "1";
  EXPECT_EQ(unused(), "a_2");
  std::ofstream(scratch.file("a_2.txt")) << "2";
  EXPECT_EQ(unused(), "a_3");
}

}  // namespace

}  // namespace orvane::host
