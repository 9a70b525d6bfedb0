// Reads Linux libraries: the ELF format's headers and its dynamic section.
#include <algorithm>

#include "sdk_check/library_file.hpp"
#include "sdk_check/processor.hpp"

namespace orvane::host {

namespace {

constexpr Processor processors[] = {
    {"x64", 62, 64}, {"x86", 3, 32}, {"ARM64", 183, 64}, {"ARM", 40, 32}};

constexpr std::uint64_t programHeaderSize = 56;
constexpr std::uint64_t dynamicEntrySize = 16;
constexpr std::uint16_t sharedObject = 3;

enum class SegmentKind : std::uint32_t { Loaded = 1, Dynamic = 2 };
enum class Tag : std::uint64_t {
  Needed = 1,
  Strings = 5,
  Soname = 14,
  SearchPath = 15,
  SearchPathOfItsOwn = 29,
};

struct Segment {
  SegmentKind kind;
  std::uint64_t offset;
  std::uint64_t address;
  std::uint64_t sizeInFile;
};

std::vector<Segment> segmentsOf(const ByteReader& bytes) {
  std::vector<Segment> segments;
  const auto table = bytes.number<std::uint64_t>(32);
  const auto size = bytes.number<std::uint16_t>(54);
  const auto count = bytes.number<std::uint16_t>(56);
  if (size != programHeaderSize) {
    throw BeyondTheEnd();
  }
  for (std::uint64_t index = 0; index < count; ++index) {
    const ByteReader header = bytes.part(table, programHeaderSize * count)
                                  .part(index * programHeaderSize, programHeaderSize);
    segments.push_back({static_cast<SegmentKind>(header.number<std::uint32_t>(0)),
                        header.number<std::uint64_t>(8), header.number<std::uint64_t>(16),
                        header.number<std::uint64_t>(32)});
  }
  return segments;
}

// Where in the file that stands which is loaded to this address.
std::uint64_t offsetOf(const std::vector<Segment>& segments, std::uint64_t address) {
  const auto found = std::find_if(segments.begin(), segments.end(), [&](const Segment& each) {
    return each.kind == SegmentKind::Loaded && address >= each.address &&
           address - each.address < each.sizeInFile;
  });
  if (found == segments.end()) {
    throw BeyondTheEnd();
  }
  return found->offset + (address - found->address);
}

struct DynamicEntry {
  Tag tag;
  std::uint64_t value;
};

std::vector<DynamicEntry> dynamicEntries(const ByteReader& bytes,
                                         const std::vector<Segment>& segments) {
  std::vector<DynamicEntry> entries;
  for (const Segment& segment : segments) {
    if (segment.kind != SegmentKind::Dynamic) {
      continue;
    }
    const ByteReader section = bytes.part(segment.offset, segment.sizeInFile);
    for (std::uint64_t at = 0; at + dynamicEntrySize <= segment.sizeInFile;
         at += dynamicEntrySize) {
      const auto tag = section.number<std::uint64_t>(at);
      if (tag == 0) {
        break;
      }
      entries.push_back({static_cast<Tag>(tag), section.number<std::uint64_t>(at + 8)});
    }
  }
  return entries;
}

void addDirectories(std::vector<std::string>& directories, const std::string& list) {
  for (std::size_t start = 0; start <= list.size();) {
    const std::size_t end = std::min(list.find(':', start), list.size());
    directories.push_back(list.substr(start, end - start));
    start = end + 1;
  }
}

void readDynamicEntries(const ByteReader& bytes, const std::vector<Segment>& segments,
                        LibraryFile& file) {
  const std::vector<DynamicEntry> entries = dynamicEntries(bytes, segments);
  const auto strings = std::find_if(entries.begin(), entries.end(), [](const DynamicEntry& each) {
    return each.tag == Tag::Strings;
  });
  if (strings == entries.end()) {
    throw BeyondTheEnd();  // no library lacks a name for what it exports
  }
  for (const DynamicEntry& entry : entries) {
    const auto text = [&] { return bytes.text(offsetOf(segments, strings->value) + entry.value); };
    if (entry.tag == Tag::Needed) {
      file.imports.push_back(text());
    } else if (entry.tag == Tag::Soname) {
      file.soname = text();
    } else if (entry.tag == Tag::SearchPath || entry.tag == Tag::SearchPathOfItsOwn) {
      addDirectories(file.searchDirectories, text());
    }
  }
}

}  // namespace

void readLinuxLibrary(const ByteReader& bytes, LibraryFile& file) {
  file.format = LibraryFormat::Linux;
  const bool is64Bit = bytes.number<std::uint8_t>(4) == 2;
  const bool isLowByteFirst = bytes.number<std::uint8_t>(5) == 1;
  if (!isLowByteFirst) {
    file.processor = "another processor";
    file.bits = is64Bit ? 64 : 32;
    return;
  }
  file.isLibrary = bytes.number<std::uint16_t>(16) == sharedObject;
  describeProcessor(processors, bytes.number<std::uint16_t>(18), is64Bit ? 64 : 32, file);
  file.isForThisMachine = file.isForThisMachine && is64Bit;
  if (!file.isForThisMachine) {
    return;
  }
  const std::vector<Segment> segments = segmentsOf(bytes);
  for (const Segment& segment : segments) {
    if (segment.kind == SegmentKind::Loaded) {
      static_cast<void>(bytes.part(segment.offset, segment.sizeInFile));
    }
  }
  readDynamicEntries(bytes, segments, file);
}

}  // namespace orvane::host
