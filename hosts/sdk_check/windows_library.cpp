// Reads Windows libraries: the PE format's headers, imports and version resource.
#include <algorithm>

#include "sdk_check/library_file.hpp"
#include "sdk_check/processor.hpp"

namespace orvane::host {

namespace {

constexpr std::uint16_t libraryFlag = 0x2000;
constexpr std::uint16_t optionalHeader64 = 0x20b;

enum class Directory : std::uint64_t { Imports = 1, Resources = 2 };

// Far more than any library has: a list without an end must not be followed for long.
constexpr std::uint64_t mostImports = 4096;

// The part of the file that is loaded to an address.
struct Section {
  std::uint32_t address;
  std::uint32_t sizeInMemory;
  std::uint32_t offset;
  std::uint32_t sizeInFile;
};

constexpr Processor processors[] = {
    {"x64", 0x8664, 64}, {"x86", 0x014c, 32}, {"ARM64", 0xaa64, 64}, {"ARM", 0x01c4, 32}};

// A file of which the headers have been found.
class WindowsLibrary {
 public:
  WindowsLibrary(const ByteReader& bytes, std::uint64_t header) : bytes_(bytes) {
    const auto sectionCount = bytes.number<std::uint16_t>(header + 6);
    const auto optionalSize = bytes.number<std::uint16_t>(header + 20);
    optionalHeader_ = header + 24;
    for (std::uint64_t index = 0; index < sectionCount; ++index) {
      const std::uint64_t at = optionalHeader_ + optionalSize + index * 40;
      sections_.push_back(
          {bytes.number<std::uint32_t>(at + 12), bytes.number<std::uint32_t>(at + 8),
           bytes.number<std::uint32_t>(at + 20), bytes.number<std::uint32_t>(at + 16)});
    }
  }

  bool is64Bit() const { return bytes_.number<std::uint16_t>(optionalHeader_) == optionalHeader64; }

  // Throws unless all sections are there as a whole.
  void checkSections() const {
    for (const Section& section : sections_) {
      if (section.sizeInFile > 0) {
        static_cast<void>(bytes_.part(section.offset, section.sizeInFile));
      }
    }
  }

  // The address of one of the tables that the header points to; 0 where there is none.
  std::uint32_t directory(Directory directory) const {
    const auto number = static_cast<std::uint64_t>(directory);
    const auto count = bytes_.number<std::uint32_t>(optionalHeader_ + 108);
    return number < count ? bytes_.number<std::uint32_t>(optionalHeader_ + 112 + number * 8) : 0;
  }

  // Where in the file that stands which is loaded to this address.
  std::uint64_t offsetOf(std::uint64_t address) const {
    const auto found = std::find_if(sections_.begin(), sections_.end(), [&](const Section& each) {
      return address >= each.address && address - each.address < each.sizeInFile;
    });
    if (found == sections_.end()) {
      throw BeyondTheEnd();
    }
    return found->offset + (address - found->address);
  }

 private:
  ByteReader bytes_;
  std::uint64_t optionalHeader_ = 0;
  std::vector<Section> sections_;
};

std::vector<std::string> importsOf(const ByteReader& bytes, const WindowsLibrary& library) {
  std::vector<std::string> imports;
  const std::uint32_t table = library.directory(Directory::Imports);
  if (table == 0) {
    return imports;
  }
  for (std::uint64_t at = library.offsetOf(table); imports.size() < mostImports; at += 20) {
    const auto name = bytes.number<std::uint32_t>(at + 12);
    if (name == 0) {
      return imports;
    }
    imports.push_back(bytes.text(library.offsetOf(name)));
  }
  throw BeyondTheEnd();
}

// The entry with this number in one level of the resources, or the first one; an offset from their
// start, or nothing.
std::optional<std::uint32_t> resourceEntry(const ByteReader& bytes, std::uint64_t level,
                                           std::optional<std::uint32_t> number) {
  const std::uint64_t count = std::uint64_t{bytes.number<std::uint16_t>(level + 12)} +
                              bytes.number<std::uint16_t>(level + 14);
  for (std::uint64_t index = 0; index < count; ++index) {
    const std::uint64_t entry = level + 16 + index * 8;
    if (!number || bytes.number<std::uint32_t>(entry) == *number) {
      return bytes.number<std::uint32_t>(entry + 4) & 0x7fffffffU;
    }
  }
  return std::nullopt;
}

// The numbers stand behind a title of fixed length, with a signature before them.
std::optional<std::string> versionIn(const ByteReader& bytes, std::uint64_t offset) {
  constexpr std::uint64_t titleEnd = 40;
  if (bytes.number<std::uint32_t>(offset + titleEnd) != 0xfeef04bdU) {
    return std::nullopt;
  }
  std::string version;
  for (const std::uint64_t at : {10U, 8U, 14U, 12U}) {
    version += (version.empty() ? "" : ".") +
               std::to_string(bytes.number<std::uint16_t>(offset + titleEnd + at));
  }
  return version;
}

std::optional<std::string> storedVersion(const ByteReader& bytes, const WindowsLibrary& library) {
  constexpr std::uint32_t versionResource = 16;
  const std::uint32_t table = library.directory(Directory::Resources);
  if (table == 0) {
    return std::nullopt;
  }
  const std::uint64_t start = library.offsetOf(table);
  // Three levels: kind, name, language.
  std::optional<std::uint32_t> entry = resourceEntry(bytes, start, versionResource);
  for (int level = 0; entry && level < 2; ++level) {
    entry = resourceEntry(bytes, start + *entry, std::nullopt);
  }
  if (!entry) {
    return std::nullopt;
  }
  return versionIn(bytes, library.offsetOf(bytes.number<std::uint32_t>(start + *entry)));
}

// A library without a readable version works as well as any other.
std::optional<std::string> versionOf(const ByteReader& bytes, const WindowsLibrary& library) {
  try {
    return storedVersion(bytes, library);
  } catch (const BeyondTheEnd&) {
    return std::nullopt;
  }
}

}  // namespace

void readWindowsLibrary(const ByteReader& bytes, LibraryFile& file) {
  file.format = LibraryFormat::Windows;
  const std::uint64_t header = bytes.number<std::uint32_t>(0x3c);
  if (!bytes.part(header, 4).startsWith(std::string_view("PE\0\0", 4))) {
    file.format = LibraryFormat::None;
    return;
  }
  const auto machine = bytes.number<std::uint16_t>(header + 4);
  file.isLibrary = (bytes.number<std::uint16_t>(header + 22) & libraryFlag) != 0;
  const WindowsLibrary library(bytes, header);
  describeProcessor(processors, machine, library.is64Bit() ? 64 : 32, file);
  file.isForThisMachine = file.isForThisMachine && library.is64Bit();
  if (!file.isForThisMachine) {
    return;
  }
  library.checkSections();
  file.imports = importsOf(bytes, library);
  file.version = versionOf(bytes, library);
}

}  // namespace orvane::host
