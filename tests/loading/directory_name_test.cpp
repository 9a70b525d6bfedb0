// The directory that the host names: names of all kinds that a system allows, some invalid ones,
// and when a change of it counts.
#include <system_error>

#include "library/library_test.hpp"
#include "loading/surroundings.hpp"

namespace orvane::testing {
namespace {

class DirectoryName : public LibraryTest {
 protected:
  // Makes the directory below the test's own, with an SDK in it. The copy uses std::filesystem
  // paths only, so the name on disk is exactly the given one.
  std::filesystem::path makeWithSdk(const std::filesystem::path& name) const {
    std::filesystem::path made = directory.path() / name;
    std::filesystem::create_directories(made);
    directory.add("ASICamera2");
    std::filesystem::rename(directory.file("ASICamera2"),
                            made / directory.file("ASICamera2").filename());
    return made;
  }

  void expectFoundIn(const std::string& named) {
    SCOPED_TRACE(named);
    oc.library_dir(named.c_str());
    expectAsiFound();
  }
};

struct Name {
  const char* label;
  const char8_t* text;
};

class DirectoryOfAnyName : public DirectoryName, public ::testing::WithParamInterface<Name> {};

TEST_P(DirectoryOfAnyName, IsFound) {
  expectFoundIn(utf8Of(makeWithSdk(std::filesystem::path(GetParam().text))));
}

INSTANTIATE_TEST_SUITE_P(
    Names, DirectoryOfAnyName,
    ::testing::Values(Name{"BlanksInside", u8"Program Files (x86)"}, Name{"LeadingBlank", u8" sdk"},
                      Name{"AccentsComposed", u8"t\u00e9l\u00e9scope \u00fc\u00f1\u00df"},
                      Name{"AccentsCombining", u8"te\u0301le\u0301scope"},
                      Name{"Cyrillic", u8"\u043a\u0430\u043c\u0435\u0440\u0430"},
                      Name{"Greek", u8"\u03ba\u03ac\u03bc\u03b5\u03c1\u03b1"},
                      Name{"RightToLeft", u8"\u05de\u05e6\u05dc\u05de\u05d4"},
                      Name{"Chinese", u8"\u5929\u6587\u76f8\u673a"},
                      Name{"ChineseBeyond16Bits", u8"\U00020bb7\u91ce"},
                      Name{"EmojiJoined", u8"\U0001f468\u200d\U0001f680"},
                      Name{"Punctuation", u8"a;b,c=d&e%PATH%'f'(g)!@#~"},
                      Name{"SeveralScripts", u8"caf\u00e9 \u5929\u6587 \U0001f52d"},
                      Name{"DotInside", u8"sdk.v1.dll"}, Name{"Parent", u8"one/../two"}),
    [](const auto& instance) { return std::string(instance.param.label); });

TEST_F(DirectoryName, OfMoreThan200CharactersIsFound) {
  // As long as the traditional path limit of Windows, 259 characters, allows.
  const std::size_t used =
      directory.path().native().size() + std::string("\\\\ASICamera2.dll").size();
  ASSERT_LT(used, 200U) << "build in a directory with a shorter name";
  const std::size_t rest = 259 - used;
  const std::filesystem::path made = makeWithSdk(std::string(rest, 'x'));
  EXPECT_GT(made.native().size(), 200U);
  expectFoundIn(utf8Of(made));
}

#ifdef _WIN32
TEST_F(DirectoryName, ExtendedFormOfMoreThan260CharactersIsFound) {
  // Beside the fixture's directory, because its ordinary path is too long to remove it.
  const std::filesystem::path outer =
      L"\\\\?\\" + std::filesystem::absolute(directory.path().parent_path()).native() + L"\\" +
      std::wstring(200, L'y');
  const std::filesystem::path made = outer / std::wstring(100, L'y');
  for (const auto& left : {made / "ASICamera2.dll", made, outer}) {
    std::filesystem::remove(left);  // from an earlier run
  }
  std::filesystem::create_directory(outer);
  std::filesystem::create_directory(made);
  directory.add("ASICamera2");
  std::filesystem::rename(directory.file("ASICamera2"), made / "ASICamera2.dll");
  expectFoundIn(utf8Of(made));
}
#endif

class TrailingSeparators : public DirectoryName,
                           public ::testing::WithParamInterface<const char*> {};

TEST_P(TrailingSeparators, MakeNoDifference) {
  directory.add("ASICamera2");
  expectFoundIn(directory.utf8() + GetParam());
}

#ifdef _WIN32
constexpr const char* separators[] = {"/", "\\", "\\\\"};
#else
constexpr const char* separators[] = {"/", "//"};
#endif
INSTANTIATE_TEST_SUITE_P(Texts, TrailingSeparators, ::testing::ValuesIn(separators));

TEST_F(DirectoryName, IsCopiedAtTheCall) {
  directory.add("ASICamera2");
  std::string named = directory.utf8();
  oc.library_dir(named.c_str());
  named.assign(named.size(), 'x');
  expectAsiFound();
}

TEST_F(DirectoryName, OfAFileFindsNothing) {
  directory.add("ASICamera2");
  oc.library_dir(utf8Of(directory.file("ASICamera2")).c_str());
  expectNothingFound();
}

TEST_F(DirectoryName, ThatIsNullOrEmptyFindsNothing) {
  directory.add("ASICamera2");
  for (const char* empty : {static_cast<const char*>(nullptr), ""}) {
    oc.library_dir(directory.utf8().c_str());
    oc.library_dir(empty);
    expectNothingFound();
  }
}

TEST_F(DirectoryName, IsTheLatestAtTheScanAfterAFailedLoad) {
  directory.add("ASICamera2");
  oc.library_dir((directory.utf8() + "/elsewhere").c_str());
  expectNothingFound();
  expectFoundIn(directory.utf8());
}

TEST_F(DirectoryName, DoesNotMatterToALoadedLibrary) {
  const SimulatedSdk first = install("ASICamera2");
  expectAsiFound();
  const SdkDirectory other("other");
  other.add("ASICamera2");
  const SimulatedSdk second(other.file("ASICamera2"));
  first.takeLog();
  expectFoundIn(other.utf8());
  EXPECT_NE(first.takeLog(), "");
  EXPECT_EQ(second.takeLog(), "");
}

#ifdef _WIN32
class DirectoryNotUtf8 : public DirectoryName, public ::testing::WithParamInterface<const char*> {
 protected:
  void expectSystemError(const std::string& named) {
    oc.library_dir(named.c_str());
    try {
      oc.scan();
      FAIL() << "no exception";
    } catch (const std::system_error& failure) {
      EXPECT_EQ(failure.code().value(), 1113);  // ERROR_NO_UNICODE_TRANSLATION
      EXPECT_STREQ(failure.code().category().name(), "system");
    }
  }
};

TEST_P(DirectoryNotUtf8, LeavesTheScanAsASystemError) {
  directory.add("ASICamera2");
  expectSystemError(directory.utf8() + GetParam());
  EXPECT_EQ(libraries(), "");
  EXPECT_EQ(error(), "");
  EXPECT_EQ(info(0), "{}");
  expectFoundIn(directory.utf8());
}

INSTANTIATE_TEST_SUITE_P(Texts, DirectoryNotUtf8,
                         ::testing::Values("\\\x80",      // continuation byte without a lead byte
                                           "\\\xe5\xa4",  // truncated sequence
                                           "\\\xff\xfe",  // bytes that UTF-8 never has
                                           "\\\xc0\xaf",  // overlong slash
                                           "\\\xed\xa0\x80",      // lone surrogate
                                           "\\\xf4\x90\x80\x80",  // above U+10FFFF
                                           "\\caf\xe9"));         // another code page

TEST_F(DirectoryNotUtf8, KeepsTheCamerasOfSdksThatWereLoadedBefore) {
  directory.add("ASICamera2");
  expectFoundIn(directory.utf8());
  expectSystemError("\xff");
  EXPECT_EQ(libraries(), "ASICamera2") << "the load of the next SDK failed";
  EXPECT_NE(info(0), "{}");
  EXPECT_EQ(oc.open(0, 64, 48, 1, 0, 1000, 1, 1), 1) << error();
  oc.close();
}
#else
TEST_F(DirectoryName, OfAnyBytesIsAPath) {
  oc.library_dir("/sdk/\xff\xfe");
  expectNothingFound();
}
#endif

}  // namespace
}  // namespace orvane::testing
