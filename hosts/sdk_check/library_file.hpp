// Reads the file of a shared library without the system's loader. The file may be damaged, or
// something else than a library.
#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "sdk_check/byte_reader.hpp"

namespace orvane::host {

/// What is not known is empty.
struct LibraryFile {
  std::string problem;     ///< one sentence: why this process cannot use the file; or ""
  std::string cure;        ///< what the SDK's user can do about the problem
  bool isDamaged = false;  ///< a library for this system, truncated or with bad offsets
  bool isLibrary = false;  ///< a library, not a program
  int bits = 0;            ///< 32 or 64; 0 also for another system's library
  std::string processor;   ///< "x64", "x86", "ARM64", "ARM" or "processor <number>"
  std::optional<std::string> version;  ///< Windows: the four numbers of the file version
  std::optional<std::string> soname;   ///< Linux: the library's own name for itself
  std::vector<std::string> imports;    ///< file names of the libraries that it needs, in order
  std::vector<std::string> searchDirectories;  ///< Linux: where it looks for them, as written

  bool isForThisProcess() const;
};

/// Examines the whole content of a file. Never fails: the result tells what is wrong.
LibraryFile readLibraryFile(std::span<const std::uint8_t> content);

/// More entries than any library has. Longer tables are not read.
inline constexpr std::uint64_t mostEntries = 4096;

/// A processor's number in this system's format.
struct Processor {
  unsigned machine;
  const char* name;
};

std::string processorName(std::span<const Processor> processors, unsigned machine);

/// Reads a file in this system's format; false if it has another one. Of a file that is not for
/// this process, it reads only the headers. Throws DamagedFile. One source file per system.
bool readNativeLibrary(const ByteReader& bytes, LibraryFile& file);

}  // namespace orvane::host
