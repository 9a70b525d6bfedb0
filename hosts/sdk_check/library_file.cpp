// What stands in the file of a shared library: telling the formats apart, and what is wrong with a
// file.
#include "sdk_check/library_file.hpp"

namespace orvane::host {

namespace {

#ifdef _WIN32
constexpr LibraryFormat thisSystem = LibraryFormat::Windows;
#else
constexpr LibraryFormat thisSystem = LibraryFormat::Linux;
#endif

std::string systemName(LibraryFormat format) {
  return format == LibraryFormat::Windows ? "Windows" : "Linux";
}

}  // namespace

LibraryFile readLibraryFile(std::span<const std::uint8_t> content) {
  const ByteReader bytes(content);
  LibraryFile file;
  file.isEmpty = content.empty();
  try {
    if (bytes.startsWith("MZ")) {
      readWindowsLibrary(bytes, file);
    } else if (bytes.startsWith("\x7f"
                                "ELF")) {
      readLinuxLibrary(bytes, file);
    }
  } catch (const BeyondTheEnd&) {
    file.isDamaged = true;
  }
  file.isForThisSystem = file.format == thisSystem;
  return file;
}

std::string problemOf(const LibraryFile& file) {
  if (file.isEmpty) {
    return "The file is empty.";
  }
  if (file.format == LibraryFormat::None) {
    return "This is no library, neither for Windows nor for Linux.";
  }
  if (!file.isForThisSystem) {
    return "This is a library for " + systemName(file.format) + ", not for " +
           systemName(thisSystem) + ".";
  }
  if (!file.isForThisMachine && file.bits != 0) {
    return "This is a " + std::to_string(file.bits) + "-bit library for " + file.processor +
           ", which a 64-bit program cannot use on this computer.";
  }
  if (file.isDamaged) {
    return "The file is cut off or damaged.";
  }
  return file.isLibrary ? "" : "This is a program, not a library.";
}

}  // namespace orvane::host
