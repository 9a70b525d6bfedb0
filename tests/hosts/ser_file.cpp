// Reads SER files, written from the format's description and without the writer's code.
#include "ser_file.hpp"

#include <cstring>
#include <stdexcept>

#include "scratch_directory.hpp"

namespace orvane::testing {

namespace {

// Reads values one after the other from a file's content.
class Reader {
 public:
  explicit Reader(std::string content) : content_(std::move(content)) {}

  std::size_t left() const { return content_.size() - at_; }

  std::string bytes(std::size_t count) {
    if (left() < count) {
      throw std::runtime_error("the SER file is cut off");
    }
    at_ += count;
    return content_.substr(at_ - count, count);
  }

  std::string text(std::size_t count) {
    const std::string field = bytes(count);
    return field.substr(0, field.find('\0'));
  }

  template <class Integer>
  Integer integer() {
    Integer value = 0;  // both systems are little-endian, as the file is
    std::memcpy(&value, bytes(sizeof value).data(), sizeof value);
    return value;
  }

 private:
  std::string content_;
  std::size_t at_ = 0;
};

}  // namespace

SerFile::SerFile(const std::filesystem::path& file) {
  Reader reader(contentOf(file));
  fileId = reader.bytes(14);
  luId = reader.integer<std::int32_t>();
  colorId = reader.integer<std::int32_t>();
  littleEndian = reader.integer<std::int32_t>();
  width = reader.integer<std::int32_t>();
  height = reader.integer<std::int32_t>();
  depth = reader.integer<std::int32_t>();
  frameCount = reader.integer<std::int32_t>();
  observer = reader.text(40);
  instrument = reader.text(40);
  telescope = reader.text(40);
  startLocal = reader.integer<std::int64_t>();
  startUtc = reader.integer<std::int64_t>();
  const std::size_t planes = colorId >= 100 ? 3 : 1;
  const std::size_t size = static_cast<std::size_t>(width) * static_cast<std::size_t>(height) *
                           planes * (depth > 8 ? 2 : 1);
  for (std::int32_t frame = 0; frame < frameCount; ++frame) {
    const std::string content = reader.bytes(size);
    frames.emplace_back(content.begin(), content.end());
  }
  if (reader.left() >= frames.size() * sizeof(std::int64_t)) {
    for (std::int32_t frame = 0; frame < frameCount; ++frame) {
      timeStamps.push_back(reader.integer<std::int64_t>());
    }
  }
  unreadBytes = static_cast<std::int64_t>(reader.left());
}

}  // namespace orvane::testing
