// SDKs with the right name in directories that the host did not name. They must not be loaded.
#include "library/library_test.hpp"
#include "loading/surroundings.hpp"

namespace orvane::testing {
namespace {

class Decoy : public LibraryTest {
 protected:
  // An SDK of each maker, in the current directory and on PATH.
  Decoy() {
    for (const char* name : sdkNames) {
      decoys.add(name);
    }
    std::filesystem::current_path(decoys.path());
    prependToSearchPaths(decoys.path());
  }

  void expectNothingFrom(const std::string& named) {
    SCOPED_TRACE(named);
    oc.library_dir(named.c_str());
    expectNothingFound();
  }

  SdkDirectory decoys{"decoys"};
};

TEST_F(Decoy, IsNotLoadedWhereTheNamedDirectoryHasNoSdk) {
  expectNothingFrom("");
  expectNothingFrom(directory.utf8());
  expectNothingFrom(directory.utf8() + "/no/such/directory");
}

TEST_F(Decoy, IsNotPreferredToTheNamedDirectory) {
  const SimulatedSdk named = install("ASICamera2");
  named.setCameras({});
  EXPECT_EQ(oc.scan(), 0);
  EXPECT_EQ(libraries(), "ASICamera2");
  EXPECT_NE(named.takeLog(), "") << "another file with this name was loaded";
}

#ifdef _WIN32
// The library's search flags need an absolute path; Windows rejects them with a relative one.
TEST_F(Decoy, RelativeDirectoryFindsNothing) {
  expectNothingFrom(".");
  std::filesystem::current_path(decoys.path().parent_path());
  expectNothingFrom("decoys");
  expectNothingFrom(".\\decoys");
}

TEST_F(Decoy, BareDriveStandsForItsCurrentDirectoryAndFindsNothing) {
  const std::string drive = utf8Of(std::filesystem::absolute(decoys.path()).root_name());
  ASSERT_EQ(drive.size(), 2U) << drive;
  expectNothingFrom(drive);
  // A path after the same drive letter makes it an ordinary directory.
  oc.library_dir(utf8Of(std::filesystem::absolute(decoys.path())).c_str());
  EXPECT_GE(oc.scan(), 8);
}
#else
TEST_F(Decoy, RelativeDirectoryIsRelativeToTheCurrentOne) {
  std::filesystem::current_path(decoys.path().parent_path());
  oc.library_dir("decoys");
  EXPECT_GE(oc.scan(), 8);
  EXPECT_EQ(libraries(), joinedSdkNames());
}
#endif

}  // namespace
}  // namespace orvane::testing
