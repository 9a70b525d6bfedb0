// Reads the file of a shared library without the system's loader.
#include "sdk_check/library_file.hpp"

#include <utility>

namespace orvane::host {

namespace {

#ifdef _WIN32
constexpr const char* otherMagic = "\x7f\x45LF";
constexpr const char* otherSystem = "This is a library for Linux, not for Windows.";
constexpr const char* getForThisSystem = "Get the one for Windows (64 bits) from the maker.";
#else
constexpr const char* otherMagic = "MZ";
constexpr const char* otherSystem = "This is a library for Windows, not for Linux.";
constexpr const char* getForThisSystem = "Get the one for Linux (64 bits) from the maker.";
#endif

constexpr const char* copyAgain = "Copy it again from the maker's package, or download that again.";

#if defined(__aarch64__) || defined(_M_ARM64)
constexpr const char* thisProcessor = "ARM64";
#else
constexpr const char* thisProcessor = "x64";
#endif

void setProblem(LibraryFile& file, std::string problem, std::string cure) {
  file.problem = std::move(problem);
  file.cure = std::move(cure);
}

void read(const ByteReader& bytes, LibraryFile& file) {
  if (bytes.startsWith(otherMagic)) {
    setProblem(file, otherSystem, getForThisSystem);
  } else if (!readNativeLibrary(bytes, file)) {
    setProblem(file, "This is no library, neither for Windows nor for Linux.",
               "Replace it by the maker's library of this name; unpack the maker's archive first.");
  } else if (!file.isForThisProcess()) {
    setProblem(file,
               "This is a " + std::to_string(file.bits) + "-bit library for " + file.processor +
                   ", which a 64-bit program cannot use on this computer.",
               std::string("Replace it by the one for ") + thisProcessor +
                   " (64 bits), often in another folder of the maker's package.");
  } else if (!file.isLibrary) {
    setProblem(file, "This is a program, not a library.",
               "Replace it by the maker's library of this name.");
  }
}

}  // namespace

bool LibraryFile::isForThisProcess() const {
  return bits == 64 && processor == thisProcessor;
}

std::string processorName(std::span<const Processor> processors, unsigned machine) {
  for (const Processor& processor : processors) {
    if (processor.machine == machine) {
      return processor.name;
    }
  }
  return "processor " + std::to_string(machine);
}

LibraryFile readLibraryFile(std::span<const std::uint8_t> content) {
  LibraryFile file;
  try {
    if (content.empty()) {
      setProblem(file, "The file is empty.", copyAgain);
    } else {
      read(ByteReader(content), file);
    }
  } catch (const DamagedFile&) {
    file.isDamaged = true;
    setProblem(file, "The file is cut off or damaged.", copyAgain);
  }
  return file;
}

}  // namespace orvane::host
