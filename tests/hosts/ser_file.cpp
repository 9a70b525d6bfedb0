// Reads and makes SER files, written from the format's description and without the programs' code.
#include "ser_file.hpp"

#include <algorithm>
#include <fstream>

namespace orvane::testing {

std::string SerHeader::bytes() const {
  std::string text = "LUCAM-RECORDER" + serNumber(std::int32_t{0});
  for (const std::int32_t number : {colorId, littleEndian, width, height, depth, frameCount}) {
    text += serNumber(number);
  }
  for (const std::string& name : {observer, instrument, telescope}) {
    text += name + std::string(40 - name.size(), '\0');
  }
  return text + serNumber(startLocal) + serNumber(startUtc);
}

SerFile::SerFile(const std::filesystem::path& file) {
  std::ifstream stream(file, std::ios::binary);
  stream.exceptions(std::ios::failbit | std::ios::badbit | std::ios::eofbit);
  const auto read = [&](void* bytes, std::size_t size) {
    stream.read(static_cast<char*>(bytes), static_cast<std::streamsize>(size));
  };
  fileId.resize(14);
  read(fileId.data(), fileId.size());
  for (std::int32_t* number :
       {&luId, &colorId, &littleEndian, &width, &height, &depth, &frameCount}) {
    read(number, sizeof *number);
  }
  for (std::string* name : {&observer, &instrument, &telescope}) {
    name->resize(40);
    read(name->data(), name->size());
    name->resize(std::min(name->find('\0'), name->size()));
  }
  read(&startLocal, sizeof startLocal);
  read(&startUtc, sizeof startUtc);
  const std::size_t planes = colorId >= 100 ? 3 : 1;
  const std::size_t size = static_cast<std::size_t>(width) * static_cast<std::size_t>(height) *
                           planes * (depth > 8 ? 2 : 1);
  for (std::int32_t frame = 0; frame < frameCount; ++frame) {
    frames.emplace_back(size);
    read(frames.back().data(), size);
  }
  unreadBytes = static_cast<std::int64_t>(std::filesystem::file_size(file)) - stream.tellg();
  const auto stampBytes = static_cast<std::int64_t>(frames.size() * sizeof(std::int64_t));
  if (unreadBytes >= stampBytes) {
    timeStamps.resize(frames.size());
    read(timeStamps.data(), static_cast<std::size_t>(stampBytes));
    unreadBytes -= stampBytes;
  }
}

}  // namespace orvane::testing
