// PNG files.
#include "formats/png_writer.hpp"

#include <gtest/gtest.h>

#include <string>

#include "failure.hpp"
#include "scratch_directory.hpp"

namespace orvane::host {

namespace {

using orvane::testing::contentOf;
using orvane::testing::ScratchDirectory;

TEST(PngWriter, WritesSizeAndColourTypeIntoTheHeader) {
  const ScratchDirectory scratch;
  const auto grey = scratch.file("grey.png");
  const auto colour = scratch.file("caf\u00e9 \U0001F52D.png");
  writePng(grey, {3, 2, 1, std::vector<std::uint8_t>(6, 100)});
  writePng(colour, {2, 1, 3, {255, 0, 0, 0, 0, 255}});

  const auto startOf = [](char width, char height, char colourType) {
    return std::string("\x89PNG\r\n\x1a\n\0\0\0\x0dIHDR\0\0\0", 19) + width +
           std::string("\0\0\0", 3) + height + '\x08' + colourType + std::string("\0\0\0", 3);
  };
  EXPECT_EQ(contentOf(grey).substr(0, 29), startOf(3, 2, 0));
  EXPECT_EQ(contentOf(colour).substr(0, 29), startOf(2, 1, 2));
  for (const auto& file : {grey, colour}) {
    const std::string content = contentOf(file);
    EXPECT_EQ(content.substr(content.size() - 8), "IEND\xae\x42\x60\x82");
  }
}

TEST(PngWriter, NamesTheFileThatItCannotWrite) {
  const ScratchDirectory scratch;
  const auto write = [&] { writePng(scratch.file("missing") / "grey.png", {1, 1, 1, {0}}); };
  EXPECT_PRED_FORMAT2(::testing::IsSubstring, "grey.png",
                      testing::failureOf<std::runtime_error>(write));
}

}  // namespace

}  // namespace orvane::host
