// Files that are written at any position.
#include "system/file.hpp"

#include <gtest/gtest.h>

#include <vector>

#include "failure.hpp"
#include "scratch_directory.hpp"

namespace orvane::host {

namespace {

using orvane::testing::contentOf;
using orvane::testing::ScratchDirectory;
using Bytes = std::vector<std::uint8_t>;

TEST(OutputFile, IsWrittenAtAnyPosition) {
  const ScratchDirectory scratch;
  const auto path = scratch.file("file");
  OutputFile file(path);
  file.writeAt(2, Bytes{'c', 'd', 'e'});
  file.writeAt(0, Bytes{'a', 'b'});
  file.writeAt(3, Bytes{'D'});
  file.writeAt(5, Bytes{});
  file.publish();
  EXPECT_EQ(contentOf(path), "abcDe");  // nothing is buffered
  file.truncate(4);
  file.close();
  EXPECT_EQ(contentOf(path), "abcD");
}

TEST(OutputFile, ReplacesAFileThatExists) {
  const ScratchDirectory scratch;
  const auto path = scratch.file("file");
  {
    OutputFile file(path);
    file.writeAt(0, Bytes{1, 2, 3});
    file.close();
  }
  OutputFile(path, Existing::Replace).close();
  EXPECT_EQ(contentOf(path), "");
}

TEST(OutputFile, GrowsBeyondFourGibibytes) {
  constexpr std::int64_t position = (std::int64_t{1} << 32) + 10;
  const ScratchDirectory scratch;
  const auto path = scratch.file("large");
  OutputFile file(path);
  file.writeAt(0, Bytes{'a'});
  file.publish();
  file.writeAt(position, Bytes{'b'});  // the hole takes no space
  EXPECT_EQ(std::filesystem::file_size(path), static_cast<std::uintmax_t>(position + 1));
  file.truncate(position - 1);
  EXPECT_EQ(std::filesystem::file_size(path), static_cast<std::uintmax_t>(position - 1));
  file.truncate(1);
  file.close();
  EXPECT_EQ(contentOf(path), "a");
}

TEST(OutputFile, NamesTheFileThatItCannotCreateAndTheReason) {
  const ScratchDirectory scratch;
  const auto path = scratch.file("missing/caf\u00e9");
  EXPECT_EQ(testing::failureOf<std::runtime_error>([&] { OutputFile{path}; }),
            "Cannot create \"" + testing::utf8(path) + "\": No such file or directory");
}

}  // namespace

}  // namespace orvane::host
