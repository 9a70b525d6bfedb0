// Reads Windows libraries: the headers, imports and version resource of PE files.
#include <windows.h>
#include <winver.h>

#include <cstddef>
#include <iterator>

#include "sdk_check/library_file.hpp"

namespace orvane::host {

namespace {

// The start of the version resource.
struct VersionInfo {
  WORD length;
  WORD valueLength;
  WORD type;
  WCHAR key[std::size(L"VS_VERSION_INFO")];
  VS_FIXEDFILEINFO value;
};

constexpr Processor processors[] = {{IMAGE_FILE_MACHINE_AMD64, "x64"},
                                    {IMAGE_FILE_MACHINE_I386, "x86"},
                                    {IMAGE_FILE_MACHINE_ARM64, "ARM64"},
                                    {IMAGE_FILE_MACHINE_ARMNT, "ARM"}};

class Image {
 public:
  // Throws DamagedFile unless all sections lie in the file.
  Image(const ByteReader& bytes, std::uint64_t offset, const IMAGE_NT_HEADERS64& headers)
      : bytes_(bytes),
        headers_(headers.OptionalHeader),
        sections_(bytes.table<IMAGE_SECTION_HEADER>(
            offset + offsetof(IMAGE_NT_HEADERS64, OptionalHeader) +
                headers.FileHeader.SizeOfOptionalHeader,
            headers.FileHeader.NumberOfSections)) {
    for (const IMAGE_SECTION_HEADER& section : sections_) {
      if (section.SizeOfRawData > 0) {
        static_cast<void>(bytes.part(section.PointerToRawData, section.SizeOfRawData));
      }
    }
  }

  std::vector<std::string> imports() const {
    std::vector<std::string> names;
    const DWORD table = directory(IMAGE_DIRECTORY_ENTRY_IMPORT);
    if (table == 0) {
      return names;
    }
    std::uint64_t offset = offsetOf(table);
    while (const DWORD name = bytes_.at<IMAGE_IMPORT_DESCRIPTOR>(offset).Name) {
      if (names.size() == mostEntries) {
        throw DamagedFile();
      }
      names.push_back(bytes_.text(offsetOf(name)));
      offset += sizeof(IMAGE_IMPORT_DESCRIPTOR);
    }
    return names;
  }

  // Throws DamagedFile if there is no version.
  std::string version() const {
    constexpr DWORD versionType = 16;  // RT_VERSION
    const std::uint64_t root = offsetOf(directory(IMAGE_DIRECTORY_ENTRY_RESOURCE));
    const std::uint64_t names = root + resource(root, versionType);
    const std::uint64_t languages = root + resource(names, std::nullopt);
    const std::uint64_t entry = root + resource(languages, std::nullopt);
    const DWORD address = bytes_.at<IMAGE_RESOURCE_DATA_ENTRY>(entry).OffsetToData;
    const VS_FIXEDFILEINFO info = bytes_.at<VersionInfo>(offsetOf(address)).value;
    if (info.dwSignature != VS_FFI_SIGNATURE) {
      throw DamagedFile();
    }
    const auto pair = [](DWORD numbers) {
      return std::to_string(HIWORD(numbers)) + "." + std::to_string(LOWORD(numbers));
    };
    return pair(info.dwFileVersionMS) + "." + pair(info.dwFileVersionLS);
  }

 private:
  // The address of a table that the header points to; 0 if there is none.
  DWORD directory(DWORD index) const {
    return index < headers_.NumberOfRvaAndSizes ? headers_.DataDirectory[index].VirtualAddress : 0;
  }

  // File offset of a relative virtual address.
  std::uint64_t offsetOf(DWORD address) const {
    for (const IMAGE_SECTION_HEADER& section : sections_) {
      if (address >= section.VirtualAddress &&
          address - section.VirtualAddress < section.SizeOfRawData) {
        return std::uint64_t{section.PointerToRawData} + (address - section.VirtualAddress);
      }
    }
    throw DamagedFile();
  }

  // Finds the entry of this type, or the first if no type is given, in a directory of the
  // resources. Returns its offset from the root.
  DWORD resource(std::uint64_t offset, std::optional<DWORD> type) const {
    const auto level = bytes_.at<IMAGE_RESOURCE_DIRECTORY>(offset);
    for (const auto& entry : bytes_.table<IMAGE_RESOURCE_DIRECTORY_ENTRY>(
             offset + sizeof level, DWORD{level.NumberOfNamedEntries} + level.NumberOfIdEntries)) {
      if (!type || entry.Name == *type) {
        return entry.OffsetToDirectory;
      }
    }
    throw DamagedFile();
  }

  ByteReader bytes_;
  IMAGE_OPTIONAL_HEADER64 headers_;
  std::vector<IMAGE_SECTION_HEADER> sections_;
};

}  // namespace

bool readNativeLibrary(const ByteReader& bytes, LibraryFile& file) {
  if (!bytes.startsWith("MZ")) {
    return false;
  }
  const auto offset = static_cast<DWORD>(bytes.at<IMAGE_DOS_HEADER>(0).e_lfanew);
  if (bytes.at<DWORD>(offset) != IMAGE_NT_SIGNATURE) {
    return false;
  }
  const auto headers = bytes.at<IMAGE_NT_HEADERS64>(offset);
  file.isLibrary = (headers.FileHeader.Characteristics & IMAGE_FILE_DLL) != 0;
  file.bits = headers.OptionalHeader.Magic == IMAGE_NT_OPTIONAL_HDR64_MAGIC ? 64 : 32;
  file.processor = processorName(processors, headers.FileHeader.Machine);
  if (!file.isForThisProcess()) {
    return true;
  }
  const Image image(bytes, offset, headers);
  file.imports = image.imports();
  try {
    file.version = image.version();
  } catch (const DamagedFile&) {
    // The loader does not need a version.
  }
  return true;
}

}  // namespace orvane::host
