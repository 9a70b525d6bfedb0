// The parts of oc_alpaca that need no camera: parameters, sizes, pixels, texts, ids.
#include <gtest/gtest.h>

#include <fstream>
#include <random>

#include "oc_alpaca/alpaca_error.hpp"
#include "oc_alpaca/device_ids.hpp"
#include "oc_alpaca/geometry.hpp"
#include "oc_alpaca/host_header.hpp"
#include "oc_alpaca/image_bodies.hpp"
#include "oc_alpaca/parameters.hpp"
#include "oc_alpaca/setup_page.hpp"
#include "oc_alpaca/transpose.hpp"
#include "scratch_directory.hpp"

namespace orvane::host {
namespace {

using Names = Parameters::Names;

TEST(AlpacaParameters, AreDecoded) {
  const Parameters form("a=1&b=x+y%2b%C3%A9&&c&d==&a=2", Names::ExactCase);
  EXPECT_EQ(*form.find("a"), "1");
  EXPECT_EQ(*form.find("b"), "x y+\xC3\xA9");
  EXPECT_EQ(*form.find("c"), "");
  EXPECT_EQ(*form.find("d"), "=");
  EXPECT_EQ(form.find("e"), nullptr);
  EXPECT_EQ(form.find("A"), nullptr);
  EXPECT_EQ(*Parameters("ClIeNtId=7", Names::AnyCase).find("ClientID"), "7");
  for (const char* wrong : {"a=%", "a=%1", "a=%1g", "%zz=1", "a=%-1", "a=%+1"}) {
    EXPECT_THROW(Parameters(wrong, Names::ExactCase), BadRequest) << wrong;
  }
}

TEST(AlpacaParameters, HaveTheValuesOfTheirKind) {
  const auto value = [](const std::string& text, ValueKind kind) {
    return Parameters("p=" + text, Names::ExactCase).value({"p", kind});
  };
  EXPECT_EQ(value("tRuE", ValueKind::Boolean), ParameterValue(true));
  EXPECT_EQ(value("-2147483648", ValueKind::Integer), ParameterValue(-2147483647 - 1));
  EXPECT_EQ(value("1E-05", ValueKind::Real), ParameterValue(0.00001));
  EXPECT_EQ(value("", ValueKind::Text), ParameterValue(std::string()));
  for (const auto& [text, kind] :
       std::initializer_list<std::pair<const char*, ValueKind>>{{"1", ValueKind::Boolean},
                                                                {"2147483648", ValueKind::Integer},
                                                                {"1.0", ValueKind::Integer},
                                                                {"+1", ValueKind::Integer},
                                                                {"1,5", ValueKind::Real},
                                                                {"nan", ValueKind::Real},
                                                                {"inf", ValueKind::Real},
                                                                {"1e999", ValueKind::Real},
                                                                {"1+", ValueKind::Real},
                                                                {"0x1p3", ValueKind::Real}}) {
    EXPECT_THROW(value(text, kind), BadRequest) << text;
  }
  EXPECT_EQ(Parameters("id=4294967295", Names::ExactCase).identifier("id"), 4294967295U);
  EXPECT_EQ(Parameters("", Names::ExactCase).identifier("id"), 0U);
  EXPECT_THROW(Parameters("id=4294967296", Names::ExactCase).identifier("id"), BadRequest);
}

TEST(AlpacaHostHeader, OnlyAddressesAndOwnNames) {
  for (const char* own : {"127.0.0.1", "127.0.0.1:80", "[::1]", "[fe80::1]:11111", "localhost",
                          "Astro-PC", "astro-pc.local:11111"}) {
    EXPECT_TRUE(isOwnHost(own, "astro-PC")) << own;
  }
  for (const char* other : {"", ":80", "example.org", "astro-pc.example.org", "1.2.3.4.5", "1.2.3",
                            "[example]", "::1", ".local", "127.0.0.1:80/@evil"}) {
    EXPECT_FALSE(isOwnHost(other, "astro-pc")) << other;
  }
  EXPECT_FALSE(isOwnHost(".local", ""));
}

TEST(AlpacaGeometry, EveryBinDividesTheSize) {
  oc::CameraInfo camera;
  camera.maxWidth = 4144;
  camera.maxHeight = 2822;
  camera.bins = {1, 2, 3, 4};
  EXPECT_EQ(commonSize(camera).width, 4130);
  EXPECT_EQ(commonSize(camera).height, 2819);
  camera.maxWidth = 1936;
  camera.maxHeight = 1096;
  camera.bins = {1, 2};
  EXPECT_EQ(commonSize(camera).width, 1936);
  EXPECT_EQ(commonSize(camera).height, 1096);
  for (int size = 16; size < 700; ++size) {
    camera.maxWidth = camera.maxHeight = size;
    camera.bins = {1, 2, 3, 4};
    for (const int bin : camera.bins) {
      EXPECT_LE(commonSize(camera).width / bin, size / bin / 8 * 8);
      EXPECT_LE(commonSize(camera).height / bin, size / bin / 2 * 2);
    }
  }
}

TEST(AlpacaTranspose, EveryPixelOfEveryRegion) {
  std::minstd_rand random(1);
  for (const auto& [width, height, region] :
       std::initializer_list<std::tuple<int, int, Region>>{{1, 1, {0, 0, 1, 1}},
                                                           {40, 24, {0, 0, 40, 24}},
                                                           {67, 53, {0, 0, 67, 53}},
                                                           {67, 53, {3, 5, 17, 31}},
                                                           {700, 600, {1, 1, 699, 599}},
                                                           {9, 900, {8, 0, 1, 900}},
                                                           {70, 2880, {0, 0, 70, 2880}},
                                                           {37, 3100, {2, 1, 33, 2887}}}) {
    for (const auto format : {oc::Format::Raw8, oc::Format::Raw16, oc::Format::Rgb24}) {
      const FrameLayout layout{width, height, format};
      const FrameLayout part{region.width, region.height, format};
      const std::size_t size = frameBytes({1, 1, format});
      std::vector<std::uint8_t> frame(frameBytes(layout));
      for (std::uint8_t& byte : frame) {
        byte = static_cast<std::uint8_t>(random());
      }
      std::vector<std::uint8_t> expected;
      for (int x = 0; x < region.width; ++x) {
        for (int y = 0; y < region.height; ++y) {
          const auto* const pixel =
              frame.data() + pixelIndex(width, region.left + x, region.top + y) * size;
          expected.insert(expected.end(), pixel, pixel + size);
        }
      }
      std::vector<std::uint8_t> transposed(frameBytes(part));
      transposeRegion(frame, layout, region, transposed);
      EXPECT_TRUE(transposed == expected) << width << " x " << height << ", " << formatName(format);
    }
  }
}

std::string wholeBody(Response response) {
  std::string body = std::move(response.body);
  const std::size_t before = body.size();
  const std::uint64_t stated = response.rest->size();
  while (true) {
    const auto part = response.rest->next();
    if (part.empty()) {
      break;
    }
    body.append(part.begin(), part.end());
  }
  EXPECT_EQ(body.size() - before, stated);
  return body;
}

TEST(AlpacaImage, JsonHasTheColumns) {
  auto memory = std::make_shared<SharedMemory>(64);
  const std::vector<std::uint8_t> bytes{0, 0, 9, 0, 10, 0, 99, 0, 0x10, 0x27, 0xFF, 0xFF};
  std::copy(bytes.begin(), bytes.end(), memory->bytes().begin());
  auto picture = std::make_shared<Picture>();
  picture->memory = memory;
  picture->layout = {2, 3, oc::Format::Raw16};
  const std::string end =
      ",\"ClientTransactionID\":5,\"ServerTransactionID\":6,\"ErrorNumber\":0,\"ErrorMessage\":"
      "\"\"}";
  EXPECT_EQ(wholeBody(imageJson(picture, {5, 6})),
            "{\"Type\":2,\"Rank\":2,\"Value\":[[0,9,10],[99,10000,65535]]" + end);
  picture->layout = {2, 1, oc::Format::Rgb24};
  EXPECT_EQ(wholeBody(imageJson(picture, {5, 6})),
            "{\"Type\":2,\"Rank\":3,\"Value\":[[[0,0,9]],[[0,10,0]]]" + end);
  EXPECT_EQ(wholeBody(imageBytes(picture, {5, 6})),
            std::string("\1\0\0\0\0\0\0\0\5\0\0\0\6\0\0\0\x2C\0\0\0\2\0\0\0\6\0\0\0\3\0\0\0"
                        "\2\0\0\0\1\0\0\0\3\0\0\0\0\0\x09\0\x0A\0",
                        50));
}

TEST(AlpacaSetupPage, TextsAreEscaped) {
  EXPECT_EQ(escapedHtml("<b onload='x'>&\"</b>"),
            "&lt;b onload=&#39;x&#39;&gt;&amp;&quot;&lt;/b&gt;");
}

TEST(AlpacaDeviceIds, AreKept) {
  const testing::ScratchDirectory scratch;
  const std::filesystem::path file = scratch.path() / "new" / "ids.json";
  std::vector<oc::CameraInfo> cameras(3);
  cameras[0].name = cameras[2].name = "\"Twin\"";
  cameras[2].ordinal = 1;
  cameras[1].name = "Other";
  const std::vector<std::string> ids = deviceIds(file, cameras);
  EXPECT_EQ(ids.size(), 3U);
  EXPECT_NE(ids[0], ids[2]);
  EXPECT_EQ(ids[0].size(), 36U);
  EXPECT_EQ(deviceIds(file, cameras), ids);
  std::swap(cameras[0], cameras[1]);
  EXPECT_EQ(deviceIds(file, cameras), (std::vector{ids[1], ids[0], ids[2]}));
  std::ofstream(file) << "nonsense";
  EXPECT_THROW(deviceIds(file, cameras), std::runtime_error);
}

}  // namespace
}  // namespace orvane::host
