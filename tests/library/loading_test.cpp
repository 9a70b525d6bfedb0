// Loading SDKs from real files: from which directory, when, how often, and what a bad directory
// causes.
#include <system_error>

#include "library/library_test.hpp"

namespace orvane::testing {
namespace {

using Loading = LibraryTest;

// Scans the SDK's directory, written in some form; expects its four default cameras or more.
#define EXPECT_SDK_FOUND()              \
  EXPECT_GE(oc.scan(), 3);              \
  EXPECT_EQ(libraries(), "ASICamera2"); \
  EXPECT_EQ(error(), "")

TEST_F(Loading, MissingLibraryIsSilent) {
  EXPECT_EQ(oc.scan(), 0);
  EXPECT_EQ(libraries(), "");
  EXPECT_EQ(error(), "");
}

TEST_F(Loading, NullDirectoryIsAnEmptyOneAndFindsNothing) {
  directory.add("ASICamera2");
  for (const char* empty : {static_cast<const char*>(nullptr), ""}) {
    oc.library_dir(directory.utf8().c_str());
    oc.library_dir(empty);
    EXPECT_EQ(oc.scan(), 0);
    EXPECT_EQ(libraries(), "");
    EXPECT_EQ(error(), "");
  }
}

TEST_F(Loading, DirectoryThatDoesNotExistIsSilent) {
  oc.library_dir((directory.utf8() + "/no/such/directory").c_str());
  EXPECT_EQ(oc.scan(), 0);
  EXPECT_EQ(error(), "");
}

TEST_F(Loading, FileThatIsNoLibraryIsSilent) {
  directory.addFile("ASICamera2", "this is a text file\n");
  EXPECT_EQ(oc.scan(), 0);
  EXPECT_EQ(libraries(), "");
  EXPECT_EQ(error(), "");
}

TEST_F(Loading, LibraryIsFoundInTheNamedDirectory) {
  directory.add("ASICamera2");
  EXPECT_SDK_FOUND();
}

TEST_F(Loading, TrailingSeparatorsMakeNoDifference) {
  directory.add("ASICamera2");
  oc.library_dir((directory.utf8() + "/").c_str());
  EXPECT_SDK_FOUND();
}

#ifdef _WIN32
TEST_F(Loading, TrailingBackslashMakesNoDifference) {
  directory.add("ASICamera2");
  oc.library_dir((directory.utf8() + "\\").c_str());
  EXPECT_SDK_FOUND();
}
#endif

TEST_F(Loading, DirectoryWithBlanksAccentsAndOtherScripts) {
  const std::u8string name = u8"caméra 天文 🔭";
  const SdkDirectory odd(std::string(name.begin(), name.end()));
  // Makes the name from UTF-8, as the library does.
  const std::filesystem::path real = directory.path() / std::filesystem::path(name);
  std::filesystem::create_directories(real);
  directory.add("ASICamera2");
  std::filesystem::rename(directory.file("ASICamera2"),
                          real / directory.file("ASICamera2").filename());
  oc.library_dir((directory.utf8() + "/" + std::string(name.begin(), name.end())).c_str());
  EXPECT_SDK_FOUND();
}

TEST_F(Loading, FailedLoadIsRetriedAtTheNextScanFromTheLatestDirectory) {
  directory.add("ASICamera2");
  oc.library_dir((directory.utf8() + "/elsewhere").c_str());
  EXPECT_EQ(oc.scan(), 0);
  EXPECT_EQ(libraries(), "");
  oc.library_dir(directory.utf8().c_str());
  EXPECT_SDK_FOUND();
}

TEST_F(Loading, LibraryThatAppearsLaterIsFoundByALaterScan) {
  EXPECT_EQ(oc.scan(), 0);
  directory.add("ASICamera2");
  EXPECT_SDK_FOUND();
}

TEST_F(Loading, LoadedLibraryIsKeptEvenIfTheDirectoryChanges) {
  directory.add("ASICamera2");
  const SimulatedSdk first(directory.file("ASICamera2"));
  EXPECT_SDK_FOUND();
  const SdkDirectory other("other");
  other.add("ASICamera2");
  const SimulatedSdk second(other.file("ASICamera2"));
  first.takeLog();
  oc.library_dir(other.utf8().c_str());
  EXPECT_SDK_FOUND();
  EXPECT_NE(first.takeLog(), "");
  EXPECT_EQ(second.takeLog(), "");
}

TEST_F(Loading, OpenOfACameraWhoseLibraryLacksAFunctionNamesBoth) {
  const SimulatedSdk sdk = install("ASICamera2", {"ASISetStartPos"});
  ASSERT_GE(oc.scan(), 1);
  EXPECT_EQ(oc.open(0, 640, 480, 1, 0, 20000, 10, 5), 0);
  EXPECT_EQ(error(), "ASICamera2: missing ASISetStartPos");
  expectClosed();
  expectClean(sdk);
}

#ifdef _WIN32
TEST_F(Loading, DirectoryThatIsNotUtf8MakesTheScanThrowTheWindowsError) {
  directory.add("ASICamera2");
  oc.library_dir("C:\\sdk\\\xff\xfe");
  try {
    oc.scan();
    FAIL() << "no exception";
  } catch (const std::system_error& failure) {
    EXPECT_EQ(failure.code().value(), 1113);  // ERROR_NO_UNICODE_TRANSLATION
    EXPECT_STREQ(failure.code().category().name(), "system");
  }
  EXPECT_EQ(error(), "");
  oc.library_dir(directory.utf8().c_str());
  EXPECT_SDK_FOUND();
}
#else
TEST_F(Loading, DirectoryOfAnyBytesIsAPath) {
  oc.library_dir("/sdk/\xff\xfe");
  EXPECT_EQ(oc.scan(), 0);
  EXPECT_EQ(error(), "");
}
#endif

}  // namespace
}  // namespace orvane::testing
