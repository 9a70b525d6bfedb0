// Reads the file of a shared library without the system's loader.
#include "sdk_check/library_file.hpp"

namespace orvane::host {

namespace {

#ifdef _WIN32
constexpr const char* otherMagic = "\x7f\x45LF";
constexpr const char* otherSystem = "This is a library for Linux, not for Windows.";
#else
constexpr const char* otherMagic = "MZ";
constexpr const char* otherSystem = "This is a library for Windows, not for Linux.";
#endif

#if defined(__aarch64__) || defined(_M_ARM64)
constexpr const char* thisProcessor = "ARM64";
#else
constexpr const char* thisProcessor = "x64";
#endif

std::string read(const ByteReader& bytes, LibraryFile& file) {
  if (bytes.startsWith(otherMagic)) {
    return otherSystem;
  }
  if (!readNativeLibrary(bytes, file)) {
    return "This is no library, neither for Windows nor for Linux.";
  }
  if (!file.isForThisProcess()) {
    return "This is a " + std::to_string(file.bits) + "-bit library for " + file.processor +
           ", which a 64-bit program cannot use on this computer.";
  }
  return file.isLibrary ? "" : "This is a program, not a library.";
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
    file.problem = content.empty() ? "The file is empty." : read(ByteReader(content), file);
  } catch (const DamagedFile&) {
    file.isDamaged = true;
    file.problem = "The file is cut off or damaged.";
  }
  return file;
}

}  // namespace orvane::host
