// What the tests of oc_capture share: starting it, and the frames that it should have recorded.
#include "oc_capture_test.hpp"

#include <algorithm>
#include <iomanip>
#include <iterator>
#include <nlohmann/json.hpp>
#include <regex>
#include <sstream>
#include <stdexcept>
#include <utility>

#include "session/causes.hpp"
#include "system/text.hpp"

namespace orvane::testing {

namespace {

constexpr int rgb24 = 2;

}  // namespace

Part::Part(const char* literal) {
  std::istringstream stream(literal);
  for (std::string word; stream >> std::quoted(word);) {
    words.push_back(word);
  }
}

Part::Part(const std::vector<Part>& parts) {
  for (const Part& part : parts) {
    words.insert(words.end(), part.words.begin(), part.words.end());
  }
}

std::string cureOfNoSdk(const SdkDirectory& sdks) {
  std::vector<std::string> files;
  std::ranges::transform(sdkFamilies, std::back_inserter(files), [&](const SdkFamily& family) {
    return utf8(sdks.file(family.baseName).filename()) + " (" + family.maker + ")";
  });
  return "Copy the library of your camera's maker into it: " + host::alternatives(files) + ".";
}

ProgramResult expectSuccess(const ProgramResult& result) {
  EXPECT_EQ(result.status, 0) << result.err;
  return result;
}

std::string errorText(const std::string& message) {
  return std::regex_replace("\n" + host::explained(message), std::regex("\n"), "\noc_capture: ")
             .substr(1) +
         "\n";
}

void expectFailure(const ProgramResult& result, int status, const std::string& message) {
  EXPECT_EQ(result.status, status);
  EXPECT_EQ(result.out, "");
  EXPECT_EQ(result.err, errorText(message));
}

void expectMatch(const std::string& text, const std::string& pattern) {
  EXPECT_TRUE(std::regex_match(text, std::regex(pattern))) << text;
}

void expectMembers(const nlohmann::ordered_json& document, const nlohmann::ordered_json& expected) {
  for (const auto& member : expected.items()) {
    EXPECT_EQ(document.value(member.key(), nlohmann::ordered_json("missing")), member.value())
        << member.key();
  }
}

bool isPng(const std::filesystem::path& file) {
  return contentOf(file).starts_with("\x89PNG\r\n\x1a\n");
}

ReferenceCamera::ReferenceCamera(const SdkDirectory& sdks, const std::string& baseName, int width,
                                 int height, int bin, int format, std::int64_t exposureUs, int gain,
                                 int offset)
    : sdk_(sdks.file(baseName)), swapsRedAndBlue_(baseName == "ASICamera2" && format == rgb24) {
  sdk_.set_seed(5);
  oc_.library_dir(sdks.utf8().c_str());
  oc_.scan();
  if (oc_.open(0, width, height, bin, format, exposureUs, gain, offset) != 1) {
    throw std::runtime_error(oc_.error());
  }
  const std::size_t pixels =
      static_cast<std::size_t>(oc_.width()) * static_cast<std::size_t>(oc_.height());
  frameSize_ = pixels * (format == 1 ? 2 : format == rgb24 ? 3 : 1);
}

ReferenceCamera::~ReferenceCamera() {
  oc_.close();
}

Bytes ReferenceCamera::frame(int number) const {
  Bytes frame(frameSize_);
  if (sdk_.render_frame(number, frame.data(), static_cast<std::int32_t>(frame.size())) !=
      static_cast<std::int32_t>(frame.size())) {
    throw std::runtime_error("the simulator renders a frame of another size");
  }
  for (std::size_t pixel = 0; swapsRedAndBlue_ && pixel < frame.size(); pixel += 3) {
    std::swap(frame[pixel], frame[pixel + 2]);
  }
  return frame;
}

void expectFrames(const SerFile& file, const ReferenceCamera& camera, int count, int first) {
  ASSERT_EQ(file.frames.size(), static_cast<std::size_t>(count));
  for (int number = 0; number < count; ++number) {
    EXPECT_TRUE(file.frames[static_cast<std::size_t>(number)] == camera.frame(first + number))
        << "frame " << number;
  }
}

}  // namespace orvane::testing
