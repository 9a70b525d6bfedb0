// SDKs that depend on another library: it is beside them, missing, or added later.
#include "library/library_test.hpp"
#include "loading/surroundings.hpp"

namespace orvane::testing {
namespace {

class SdkDependency : public LibraryTest {
 protected:
  void addSdk() const {
    directory.addFile("ASICamera2", SdkDirectory::contentOf(ORVANE_STAND_IN_SDK));
  }

  static void addDependencyTo(const SdkDirectory& place) {
    place.addFile("sdk_dependency", SdkDirectory::contentOf(ORVANE_STAND_IN_DEPENDENCY));
  }

  // Both libraries are loaded, and the SDK can call the other one.
  void expectWorking() {
    EXPECT_EQ(oc.scan(), 0);
    EXPECT_EQ(libraries(), "ASICamera2");
    EXPECT_EQ(error(), "ASIGetCameraProperty: 4711");
  }
};

TEST_F(SdkDependency, BesideTheSdkIsFoundWhateverTheCurrentDirectory) {
  addSdk();
  addDependencyTo(directory);
  const SdkDirectory elsewhere("elsewhere");
  std::filesystem::current_path(elsewhere.path());
  expectWorking();
}

TEST_F(SdkDependency, MissingLeavesTheOtherSdksAlone) {
  addSdk();
  directory.add("PlayerOneCamera");
  EXPECT_GE(oc.scan(), 1);
  EXPECT_EQ(libraries(), "PlayerOneCamera");
  EXPECT_EQ(error(), "");
}

TEST_F(SdkDependency, ThatComesLaterIsFoundByTheSecondScan) {
  addSdk();
  expectNothingFound();
  addDependencyTo(directory);
  expectWorking();
}

TEST_F(SdkDependency, IsNotTakenFromTheCurrentDirectoryOrSearchPaths) {
  addSdk();
  const SdkDirectory decoy("decoy");
  addDependencyTo(decoy);
  std::filesystem::current_path(decoy.path());
  prependToSearchPaths(decoy.path());
  expectNothingFound();
}

TEST_F(SdkDependency, ThatIsNoLibraryLeavesTheSdkOutSilently) {
  addSdk();
  directory.addFile("sdk_dependency", "this is a text file\n");
  expectNothingFound();
}

#ifndef _WIN32
// Windows refuses such an SDK, too. Wine loads it and stops the process at the call.
TEST_F(SdkDependency, ThatLacksTheFunctionLeavesTheSdkOutSilently) {
  addSdk();
  std::string image = SdkDirectory::contentOf(ORVANE_STAND_IN_DEPENDENCY);
  const std::string function = "numberOfTheDependency";
  for (std::size_t at = image.find(function); at != std::string::npos; at = image.find(function)) {
    image[at + function.size() - 1] = '!';
  }
  directory.addFile("sdk_dependency", image);
  expectNothingFound();
}
#endif

#ifdef _WIN32
TEST_F(SdkDependency, SdkThatRefusesToBeLoadedIsAskedAgainByTheSecondScan) {
  addSdk();
  addDependencyTo(directory);
  setEnvironment("ORVANE_STAND_IN_REFUSES", "1");
  expectNothingFound();
  setEnvironment("ORVANE_STAND_IN_REFUSES", "");
  expectWorking();
}
#endif

}  // namespace
}  // namespace orvane::testing
