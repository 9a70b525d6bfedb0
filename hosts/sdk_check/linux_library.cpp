// Reads Linux libraries: the headers and the dynamic section of ELF files.
#include <elf.h>

#include <algorithm>
#include <sstream>

#include "sdk_check/library_file.hpp"

namespace orvane::host {

namespace {

constexpr Processor processors[] = {
    {EM_X86_64, "x64"}, {EM_386, "x86"}, {EM_AARCH64, "ARM64"}, {EM_ARM, "ARM"}};

// File offset of a virtual address.
std::uint64_t offsetOf(const std::vector<Elf64_Phdr>& segments, std::uint64_t address) {
  for (const Elf64_Phdr& segment : segments) {
    if (segment.p_type == PT_LOAD && address >= segment.p_vaddr &&
        address - segment.p_vaddr < segment.p_filesz) {
      return segment.p_offset + (address - segment.p_vaddr);
    }
  }
  throw DamagedFile();
}

void readSegments(const ByteReader& bytes, const std::vector<Elf64_Phdr>& segments,
                  LibraryFile& file) {
  std::vector<Elf64_Dyn> entries;
  for (const Elf64_Phdr& segment : segments) {
    if (segment.p_type == PT_LOAD) {
      static_cast<void>(bytes.part(segment.p_offset, segment.p_filesz));
    } else if (segment.p_type == PT_DYNAMIC) {
      entries = bytes.table<Elf64_Dyn>(segment.p_offset,
                                       std::min(segment.p_filesz / sizeof(Elf64_Dyn), mostEntries));
    }
  }
  const auto strings = std::find_if(entries.begin(), entries.end(),
                                    [](const Elf64_Dyn& each) { return each.d_tag == DT_STRTAB; });
  if (strings == entries.end()) {
    throw DamagedFile();
  }
  const std::uint64_t texts = offsetOf(segments, strings->d_un.d_ptr);
  for (const Elf64_Dyn& entry : entries) {
    const auto text = [&] { return bytes.text(texts + entry.d_un.d_val); };
    if (entry.d_tag == DT_NULL) {
      break;
    }
    if (entry.d_tag == DT_NEEDED) {
      file.imports.push_back(text());
    } else if (entry.d_tag == DT_SONAME) {
      file.soname = text();
    } else if (entry.d_tag == DT_RPATH || entry.d_tag == DT_RUNPATH) {
      std::istringstream list(text());
      for (std::string directory; std::getline(list, directory, ':');) {
        file.searchDirectories.push_back(directory);
      }
    }
  }
}

}  // namespace

bool readNativeLibrary(const ByteReader& bytes, LibraryFile& file) {
  if (!bytes.startsWith(ELFMAG)) {
    return false;
  }
  const auto header = bytes.at<Elf64_Ehdr>(0);
  file.isLibrary = header.e_type == ET_DYN;
  file.bits = header.e_ident[EI_CLASS] == ELFCLASS64 ? 64 : 32;
  file.processor = header.e_ident[EI_DATA] == ELFDATA2LSB
                       ? processorName(processors, header.e_machine)
                       : "another processor";
  if (file.isForThisProcess()) {
    if (header.e_phentsize != sizeof(Elf64_Phdr)) {
      throw DamagedFile();
    }
    readSegments(bytes, bytes.table<Elf64_Phdr>(header.e_phoff, header.e_phnum), file);
  }
  return true;
}

}  // namespace orvane::host
