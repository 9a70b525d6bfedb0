// Files with the name of an SDK that this process cannot load. They contribute no cameras and no
// message.
#include "library/library_test.hpp"
#include "loading/surroundings.hpp"

namespace orvane::testing {
namespace {

class BadFile : public LibraryTest {
 protected:
  // The simulated SDK, changed only in the machine number of its file header.
  std::string sdkForMachine(unsigned windowsNumber, unsigned linuxNumber) const {
    directory.add("ASICamera2");
    std::string image = contentOf(directory.file("ASICamera2"));
#ifdef _WIN32
    static_cast<void>(linuxNumber);
    const unsigned number = windowsNumber;
    const auto byteAt = [&](std::size_t at) { return static_cast<unsigned char>(image.at(at)); };
    const std::size_t header = byteAt(0x3c) + 256U * byteAt(0x3d);
    EXPECT_EQ(image.substr(header, 4), std::string("PE\0\0", 4));
    const std::size_t at = header + 4;
#else
    static_cast<void>(windowsNumber);
    const unsigned number = linuxNumber;
    EXPECT_EQ(image.substr(0, 4),
              "\x7f"
              "ELF");
    const std::size_t at = 18;
#endif
    image.at(at) = static_cast<char>(number & 0xFFU);
    image.at(at + 1) = static_cast<char>(number >> 8U);
    return image;
  }

  void expectNothing() {
    EXPECT_EQ(oc.scan(), 0);
    EXPECT_EQ(libraries(), "");
    EXPECT_EQ(error(), "");
  }
};

TEST_F(BadFile, Empty) {
  directory.addFile("ASICamera2", "");
  expectNothing();
}

TEST_F(BadFile, For32BitProcesses) {
  directory.addFile("ASICamera2", sdkForMachine(0x014c, 3));
  expectNothing();
}

TEST_F(BadFile, ForAnotherProcessor) {
  directory.addFile("ASICamera2", sdkForMachine(0xaa64, 183));
  expectNothing();
}

TEST_F(BadFile, ForThisProcessorIsLoaded) {
  // A control: the same change with the right number loads.
  directory.addFile("ASICamera2", sdkForMachine(0x8664, 62));
  EXPECT_GE(oc.scan(), 3);
  EXPECT_EQ(libraries(), "ASICamera2");
}

TEST_F(BadFile, OfTheOtherSystem) {
#ifdef _WIN32
  directory.addFile("ASICamera2", std::string("\x7f"
                                              "ELF\x02\x01\x01",
                                              7) +
                                      std::string(500, '\0'));
#else
  directory.addFile("ASICamera2", "MZ" + std::string(500, '\0'));
#endif
  expectNothing();
}

TEST_F(BadFile, CutOffInItsHeader) {
  directory.add("ASICamera2");
  directory.addFile("ASICamera2", contentOf(directory.file("ASICamera2")).substr(0, 50));
  expectNothing();
}

#ifdef _WIN32
TEST_F(BadFile, CutOffInTheMiddle) {
  directory.add("ASICamera2");
  const std::string image = contentOf(directory.file("ASICamera2"));
  directory.addFile("ASICamera2", image.substr(0, image.size() / 2));
  expectNothing();
}
#endif

TEST_F(BadFile, DirectoryOfTheName) {
  std::filesystem::create_directory(directory.file("ASICamera2"));
  expectNothing();
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
  expectNothing();
  directory.add("ASICamera2");
  EXPECT_GE(oc.scan(), 3);
  EXPECT_EQ(libraries(), "ASICamera2");
}

// A library for another purpose under the name of an SDK is loaded, and lacks the functions of the
// SDK.
TEST_F(BadFile, LibraryOfAnotherPurposeNamesItsFirstMissingFunction) {
  directory.addFile("ASICamera2", contentOf(ORVANE_STAND_IN_DEPENDENCY));
  EXPECT_EQ(oc.scan(), 0);
  EXPECT_EQ(libraries(), "ASICamera2");
  EXPECT_EQ(error(), "ASICamera2: missing ASIGetNumOfConnectedCameras");
}

}  // namespace
}  // namespace orvane::testing
