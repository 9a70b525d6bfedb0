// Reading the files of libraries: made images, a real library, and both truncated or changed.
#include "sdk_check/library_file.hpp"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <random>

#include "scratch_directory.hpp"

namespace orvane::host {

namespace {

using testing::contentOf;

const std::string noLibrary = "This is no library, neither for Windows nor for Linux.";

LibraryFile read(const std::string& text) {
  return readLibraryFile({reinterpret_cast<const std::uint8_t*>(text.data()), text.size()});
}

#ifdef _WIN32
// A Windows library with one section, built piece by piece.
class WindowsImage {
 public:
  WindowsImage() {
    put16(0, 0x5a4d);  // MZ
    put32(0x3c, header);
    put32(header, 0x4550);       // PE
    put16(header + 4, 0x8664);   // x64
    put16(header + 6, 1);        // sections
    put16(header + 20, 240);     // size of the optional header
    put16(header + 22, 0x2022);  // a library
    put16(optional, 0x20b);
    put32(optional + 108, 16);  // tables
    put32(section + 8, 0x1000);
    put32(section + 12, address);
    put32(section + 16, 0x400);
    put32(section + 20, start);
    image.resize(start + 0x400);
  }

  void addImport(const std::string& name) {
    put32(optional + 120, address);
    put32(start + imports * 20 + 12, address + 0x100 + imports * 0x20);
    image.replace(start + 0x100 + imports * 0x20, name.size(), name);
    ++imports;
  }

  void addVersion() {
    put32(optional + 128, address + 0x200);
    const std::uint32_t table = start + 0x200;
    put16(table + 14, 1);
    put32(table + 16, 16);
    put32(table + 20, 0x80000018U);
    put16(table + 0x18 + 12, 1);  // a name
    put32(table + 0x18 + 20, 0x80000030U);
    put16(table + 0x30 + 14, 1);  // a language
    put32(table + 0x30 + 20, 0x48);
    put32(table + 0x48, address + 0x300);
    put32(start + 0x300 + 40, 0xfeef04bdU);
    put32(start + 0x300 + 48, 0x00010029);
    put32(start + 0x300 + 52, 0x00070bb8);
  }

  void put16(std::size_t at, std::uint32_t value) { put(at, value, 2); }
  void put32(std::size_t at, std::uint32_t value) { put(at, value, 4); }

  static constexpr std::uint32_t header = 0x80;
  static constexpr std::uint32_t optional = header + 24;
  static constexpr std::uint32_t section = optional + 240;
  static constexpr std::uint32_t start = 0x200;
  static constexpr std::uint32_t address = 0x5000;
  std::uint32_t imports = 0;
  std::string image;

 private:
  void put(std::size_t at, std::uint32_t value, std::size_t size) {
    image.resize(std::max(image.size(), at + size));
    std::memcpy(&image[at], &value, size);  // both are little-endian
  }
};

TEST(LibraryFile, WindowsLibraryTellsItsImportsAndVersion) {
  WindowsImage made;
  made.addImport("KERNEL32.dll");
  made.addImport("MSVCP140.dll");
  made.addVersion();
  const LibraryFile file = read(made.image);
  EXPECT_EQ(file.problem, "");
  EXPECT_TRUE(file.isForThisProcess());
  EXPECT_TRUE(file.isLibrary);
  EXPECT_FALSE(file.isDamaged);
  EXPECT_EQ(file.bits, 64);
  EXPECT_EQ(file.processor, "x64");
  EXPECT_EQ(file.imports, (std::vector<std::string>{"KERNEL32.dll", "MSVCP140.dll"}));
  EXPECT_EQ(file.version.value_or("none"), "1.41.7.3000");
}

TEST(LibraryFile, WindowsLibraryMayHaveNeitherImportsNorVersion) {
  const LibraryFile file = read(WindowsImage().image);
  EXPECT_FALSE(file.isDamaged);
  EXPECT_TRUE(file.imports.empty());
  EXPECT_FALSE(file.version.has_value());
}

TEST(LibraryFile, VersionThatCannotBeReadIsNoDamage) {
  WindowsImage made;
  made.addVersion();
  made.put32(WindowsImage::start + 0x300 + 40, 4711);  // the signature
  EXPECT_FALSE(read(made.image).version.has_value());
  made.addVersion();
  made.put32(WindowsImage::start + 0x200 + 20, 0x8fffffffU);  // beyond the end
  const LibraryFile file = read(made.image);
  EXPECT_FALSE(file.version.has_value());
  EXPECT_FALSE(file.isDamaged);
}

TEST(LibraryFile, ImportsWithoutAnEndAreDamage) {
  WindowsImage made;
  made.addImport("KERNEL32.dll");
  made.put32(WindowsImage::start + 0x100, 0x41414141U);
  std::fill(made.image.begin() + WindowsImage::start + 0x20, made.image.end(), 'A');
  EXPECT_TRUE(read(made.image).isDamaged);
}

TEST(LibraryFile, WindowsProgramIsNoLibrary) {
  WindowsImage made;
  made.put16(WindowsImage::header + 22, 0x0022);
  const LibraryFile file = read(made.image);
  EXPECT_FALSE(file.isLibrary);
  EXPECT_EQ(file.problem, "This is a program, not a library.");
}

TEST(LibraryFile, OtherProcessorsAreNamed) {
  WindowsImage made;
  made.put16(WindowsImage::header + 4, 0x014c);
  made.put16(WindowsImage::optional, 0x10b);
  EXPECT_EQ(read(made.image).bits, 32);
  EXPECT_EQ(read(made.image).processor, "x86");
  EXPECT_FALSE(read(made.image).isForThisProcess());
  made.put16(WindowsImage::header + 4, 0x0200);
  EXPECT_EQ(read(made.image).processor, "processor 512");
}

TEST(LibraryFile, WindowsHeaderAloneIsNoLibrary) {
  EXPECT_EQ(read("MZ" + std::string(500, '\0')).problem, noLibrary);
}

#else
// A real library with one byte of its header changed.
LibraryFile readChanged(std::size_t at, char value) {
  std::string library = contentOf(ORVANE_LIBRARY_FILE);
  library.at(at) = value;
  return read(library);
}

TEST(LibraryFile, LinuxProgramIsNoLibrary) {
  const LibraryFile file = readChanged(16, 2);
  EXPECT_FALSE(file.isLibrary);
  EXPECT_EQ(file.problem, "This is a program, not a library.");
}

TEST(LibraryFile, OtherProcessorsAreNamed) {
  EXPECT_EQ(readChanged(4, 1).bits, 32);
  EXPECT_FALSE(readChanged(4, 1).isForThisProcess());
  EXPECT_EQ(readChanged(18, 3).processor, "x86");
  EXPECT_EQ(readChanged(19, 2).processor, "processor 574");
  EXPECT_EQ(readChanged(5, 2).processor, "another processor");
}
#endif

TEST(LibraryFile, OtherFilesAreNoLibraries) {
  EXPECT_EQ(read("").problem, "The file is empty.");
  for (const std::string& text :
       {std::string("x"), std::string("this is a text file\n"), std::string(5000, '\0')}) {
    EXPECT_EQ(read(text).problem, noLibrary);
  }
}

TEST(LibraryFile, RealLibraryIsReadAsAWhole) {
  const LibraryFile file = read(contentOf(ORVANE_LIBRARY_FILE));
  EXPECT_EQ(file.problem, "");
  EXPECT_TRUE(file.isForThisProcess());
  EXPECT_GE(file.imports.size(), 2U);
#ifdef _WIN32
  EXPECT_EQ(file.version.value_or("none"), ORVANE_LIBRARY_VERSION ".0");
#else
  EXPECT_EQ(file.soname.value_or("none"), "liborvane_desktop_camera.so");
#endif
}

// The end of a library may be missing: the loader does not need its section headers and symbols.
TEST(LibraryFile, CutOffAnywhereIsNoProblemForTheReader) {
  const std::string library = contentOf(ORVANE_LIBRARY_FILE);
  constexpr std::size_t headersAndMore = 4096;
  for (std::size_t size = 0; size < library.size(); size += size < headersAndMore ? 1 : 4099) {
    const LibraryFile file = read(library.substr(0, size));
    EXPECT_TRUE(size >= headersAndMore || !file.problem.empty()) << size;
  }
}

TEST(LibraryFile, ChangedBytesAreNoProblemForTheReader) {
  const std::string library = contentOf(ORVANE_LIBRARY_FILE);
  std::vector<std::string> images{library};
#ifdef _WIN32
  WindowsImage made;
  made.addImport("KERNEL32.dll");
  made.addVersion();
  images.push_back(made.image);
#endif
  std::mt19937 random(20);
  for (const std::string& image : images) {
    const std::size_t headers = std::min<std::size_t>(image.size(), 2048);
    std::string changed = image;
    for (int round = 0; round < 3000; ++round) {
      changed.replace(0, headers, image, 0, headers);
      for (int change = 0; change < 4; ++change) {
        changed[random() % headers] = static_cast<char>(random());
      }
      EXPECT_LE(read(changed).imports.size(), 4096U);
    }
  }
}

}  // namespace

}  // namespace orvane::host
