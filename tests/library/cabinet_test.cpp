// The models of the simulated SDKs, held against a second account of what the makers' own SDKs say
// of them: one line of models.jsonl for each.
#include <fstream>
#include <map>
#include <tuple>

#include "library/library_test.hpp"

namespace orvane::testing {
namespace {

// The text of a line from one mark to another; empty if the first is missing.
std::string between(const std::string& line, const std::string& from, const std::string& to) {
  const std::size_t start = line.find(from);
  if (start == std::string::npos) {
    return "";
  }
  const std::size_t first = start + from.size();
  return line.substr(first, line.find(to, first) - first);
}

// A model as the maker's own SDK describes it.
struct Described {
  std::string info;                  // as oc_info() returns it, without the index
  std::map<int, std::string> fails;  // by bin, what oc_error() says after oc_open()

  std::string name() const { return between(info, "\"name\":\"", "\""); }
  int number(const std::string& key) const {
    return std::stoi(between(info, "\"" + key + "\":", ","));
  }
  std::vector<int> list(const std::string& key) const {
    std::istringstream text(between(info, "\"" + key + "\":[", "]"));
    std::vector<int> numbers;
    for (std::string each; std::getline(text, each, ',');) {
      numbers.push_back(std::stoi(each));
    }
    return numbers;
  }
};

std::vector<Described> describedModels(const std::string& maker) {
  std::ifstream file(ORVANE_MODELS_FILE);
  std::vector<Described> models;
  for (std::string line; std::getline(file, line);) {
    if (!line.starts_with("{\"maker\":\"" + maker + "\"")) {
      continue;
    }
    Described model{"{" + between(line, "\"info\":{", "}") + "}", {}};
    std::istringstream fails(between(line, "\"open_fails\":{", "}"));
    for (std::string each; std::getline(fails, each, ',');) {
      model.fails[each.at(1) - '0'] = between(each, ":\"", "\"");
    }
    models.push_back(model);
  }
  return models;
}

class Cabinet : public LibraryTest, public ::testing::WithParamInterface<SdkFamily> {
 protected:
  Cabinet() : sdk(install(GetParam().baseName)), models(describedModels(GetParam().maker)) {}

  // The size to which the SDK, or the library for it, rounds a binned sensor.
  static std::pair<int, int> roundedSize(int width, int height) {
    const std::string maker = GetParam().maker;
    const int widthStep = maker == "ZWO ASI" ? 8 : maker == "Player One" ? 4 : 1;
    const int heightStep = widthStep == 1 ? 1 : 2;
    return {width / widthStep * widthStep, height / heightStep * heightStep};
  }

  // Opens the only camera, and expects two frames of the right size, or the right message.
  void expectFrames(const Described& model, int bin, int format) {
    const int width = model.number("maxWidth") / bin;
    const int height = model.number("maxHeight") / bin;
    const int result = oc.open(0, width, height, bin, format, 10000, model.number("minGain"), 0);
    const auto fails = model.fails.find(bin);
    if (fails != model.fails.end()) {
      EXPECT_EQ(result, 0);
      EXPECT_EQ(error(), fails->second);
      return;
    }
    ASSERT_EQ(result, 1) << error();
    const auto [roundedWidth, roundedHeight] = roundedSize(width, height);
    EXPECT_EQ(oc.width(), roundedWidth);
    EXPECT_EQ(oc.height(), roundedHeight);
    constexpr int bytes[] = {1, 2, 3, 1};
    if (memory.size() < static_cast<std::size_t>(oc.buffer_size())) {
      memory.resize(static_cast<std::size_t>(oc.buffer_size()));
    }
    for (int frames = 0; frames < 2; ++frames) {
      sdk.advance_clock(1'000'000'000);
      EXPECT_EQ(oc.read(memory.data(), oc.buffer_size(), 10000),
                roundedWidth * roundedHeight * bytes[format])
          << error();
    }
    oc.close();
  }

  SimulatedSdk sdk;
  std::vector<Described> models;
  std::vector<std::uint8_t> memory;
};

TEST_P(Cabinet, HasTheDescribedModelsInTheirOrder) {
  std::vector<std::string> described;
  for (const Described& model : models) {
    described.push_back(model.name());
  }
  std::vector<std::string> names;
  std::istringstream cabinet(sdk.cabinet());
  for (std::string line; std::getline(cabinet, line);) {
    names.push_back(line.substr(0, line.find('\t')));
  }
  EXPECT_FALSE(names.empty());
  EXPECT_EQ(names, described);
}

TEST_P(Cabinet, EveryModelIsAndOpensAsDescribed) {
  sdk.log_enable(0);
  ASSERT_EQ(sdk.command("light off"), 1);
  ASSERT_FALSE(models.empty());
  for (const Described& model : models) {
    SCOPED_TRACE(model.name());
    SimCamera camera{};
    ASSERT_EQ(sdk.camera_by_name(model.name().c_str(), &camera), 1);
    sdk.setCameras({camera});
    ASSERT_EQ(oc.scan(), 1) << error();
    EXPECT_EQ(info(0), "{\"id\":0," + model.info.substr(1));
    for (const int bin : model.list("bins")) {
      for (const int format : model.list("formats")) {
        SCOPED_TRACE("bin " + std::to_string(bin) + ", format " + std::to_string(format));
        expectFrames(model, bin, format);
      }
    }
    expectClean(sdk);
  }
}

INSTANTIATE_TEST_SUITE_P(Makers, Cabinet, ::testing::ValuesIn(sdkFamilies),
                         [](const auto& test) { return test.param.baseName; });

}  // namespace
}  // namespace orvane::testing
