// Files with the name of an SDK that this process cannot load. They contribute no cameras and no
// message.
#include "library/library_test.hpp"

namespace orvane::testing {
namespace {

class BadFile : public LibraryTest {
 protected:
  BadFile() {
    directory.add("ASICamera2");
    sdk = SdkDirectory::contentOf(directory.file("ASICamera2"));
  }

  // The simulated SDK, changed only in the machine number of its file header.
  std::string sdkForMachine([[maybe_unused]] unsigned windowsNumber,
                            [[maybe_unused]] unsigned linuxNumber) const {
    std::string image = sdk;
#ifdef _WIN32
    const unsigned number = windowsNumber;
    const auto byteAt = [&](std::size_t at) { return static_cast<unsigned char>(image.at(at)); };
    const std::size_t header = byteAt(0x3c) + 256U * byteAt(0x3d);
    EXPECT_EQ(image.substr(header, 4), std::string("PE\0\0", 4));
    const std::size_t at = header + 4;
#else
    const unsigned number = linuxNumber;
    EXPECT_EQ(image.substr(0, 4), "\177ELF");
    const std::size_t at = 18;
#endif
    image.at(at) = static_cast<char>(number & 0xFFU);
    image.at(at + 1) = static_cast<char>(number >> 8U);
    return image;
  }

  std::string sdk;
};

TEST_F(BadFile, ContributesNothing) {
  const std::string rest(500, '\0');
  const std::pair<const char*, std::string> files[] = {
      {"empty", ""},
      {"a text", "this is a text file\n"},
      {"for 32-bit processes", sdkForMachine(0x014c, 3)},
      {"for another processor", sdkForMachine(0xaa64, 183)},
      {"cut off in its header", sdk.substr(0, 50)},
#ifdef _WIN32
      {"cut off in the middle", sdk.substr(0, sdk.size() / 2)},
      {"of the other system", "\177ELF\2\1\1" + rest},
#else
      {"of the other system", "MZ" + rest},
#endif
  };
  for (const auto& [kind, content] : files) {
    SCOPED_TRACE(kind);
    directory.addFile("ASICamera2", content);
    expectNothingFound();
  }
}

TEST_F(BadFile, ForThisProcessorIsLoaded) {
  // A control: the same change with the right number loads.
  directory.addFile("ASICamera2", sdkForMachine(0x8664, 62));
  expectAsiFound();
}

TEST_F(BadFile, DirectoryOfTheName) {
  std::filesystem::remove(directory.file("ASICamera2"));
  std::filesystem::create_directory(directory.file("ASICamera2"));
  expectNothingFound();
}

TEST_F(BadFile, LeavesTheOtherSdksAlone) {
  directory.addFile("ASICamera2", "");
  directory.add("PlayerOneCamera");
  directory.addFile("qhyccd", "this is a text file\n");
  directory.add("toupcam");
  EXPECT_GE(oc.scan(), 2);
  EXPECT_EQ(libraries(), "PlayerOneCamera, toupcam");
  EXPECT_EQ(error(), "");
}

TEST_F(BadFile, ReplacedByAGoodOneIsLoadedByTheSecondScan) {
  directory.addFile("ASICamera2", sdkForMachine(0x014c, 3));
  expectNothingFound();
  directory.add("ASICamera2");
  expectAsiFound();
}

// A library for another purpose under the name of an SDK is loaded, and lacks the functions of the
// SDK.
TEST_F(BadFile, LibraryOfAnotherPurposeNamesItsFirstMissingFunction) {
  directory.addFile("ASICamera2", SdkDirectory::contentOf(ORVANE_STAND_IN_DEPENDENCY));
  EXPECT_EQ(oc.scan(), 0);
  EXPECT_EQ(libraries(), "ASICamera2");
  EXPECT_EQ(error(), "ASICamera2: missing ASIGetNumOfConnectedCameras");
}

}  // namespace
}  // namespace orvane::testing
