// What stands in the file of a shared library, read without the system's loader: any file at all
// may be looked at, whatever is wrong with it.
#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "sdk_check/byte_reader.hpp"

namespace orvane::host {

enum class LibraryFormat {
  None,     // neither of the two
  Windows,  // PE
  Linux,    // ELF
};

/// What is not known is empty.
struct LibraryFile {
  LibraryFormat format = LibraryFormat::None;
  bool isEmpty = false;           ///< the file has no bytes
  bool isForThisSystem = false;   ///< has this system's format
  bool isForThisMachine = false;  ///< and is for this process's processor: all below is filled in
  bool isLibrary = false;         ///< and no program
  bool isDamaged = false;         ///< cut off, or points to places that are not there
  int bits = 0;                   ///< 32 or 64
  std::string processor;          ///< "x64", "x86", "ARM64" or "processor <number>"
  std::optional<std::string> version;  ///< Windows: the four numbers of the file version
  std::optional<std::string> soname;   ///< Linux: the name that the library gives itself
  std::vector<std::string> imports;    ///< file names of the libraries that it needs, in order
  std::vector<std::string> searchDirectories;  ///< Linux: where it says that they are, as written
};

/// Reads a file's whole content. Never fails: what is wrong stands in the result.
LibraryFile readLibraryFile(std::span<const std::uint8_t> content);

/// One sentence about why such a file cannot serve in this process, or "".
std::string problemOf(const LibraryFile& file);

/// The two formats; both throw BeyondTheEnd with what has been read so far in `file`.
void readWindowsLibrary(const ByteReader& bytes, LibraryFile& file);
void readLinuxLibrary(const ByteReader& bytes, LibraryFile& file);

}  // namespace orvane::host
