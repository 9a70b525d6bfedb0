// Random calls with random arguments to the library with all SDKs, while cameras are unplugged and
// plugged in, calls of the SDKs fail, and SDK directories change. Every step is compared with the
// contract. ORVANE_RANDOM_STEPS and ORVANE_RANDOM_SEED choose another length and other sessions. A
// failure prints its seed.
#include <algorithm>
#include <array>
#include <cmath>
#include <iostream>
#include <map>
#include <numeric>
#include <random>
#include <set>

#include "doubles/sdk_families.hpp"
#include "library/library_test.hpp"
#include "torture/checked_library.hpp"
#include "torture/run_length.hpp"

namespace orvane::testing {
namespace {

#if defined(__SANITIZE_ADDRESS__)
constexpr long usualSteps = 5000;
#elif defined(_WIN32)
constexpr long usualSteps = 4000;  // slower, through Wine
#else
constexpr long usualSteps = 25000;
#endif

constexpr int bareNames = -1;  // no directory

// Whether a name without a directory finds a library that the process has loaded from another path.
// On Windows this is not guaranteed, so the test never scans without a directory there.
#ifdef _WIN32
constexpr bool bareNamesAreFound = false;
#else
constexpr bool bareNamesAreFound = true;
#endif

class RandomSessions : public ::testing::TestWithParam<int> {
 protected:
  RandomSessions() {
    // Each SDK is in only one of two directories. A scan of the other one does not find it.
    for (std::size_t family = 0; family < sdkCount; ++family) {
      const SdkDirectory& directory = family % 2 == 0 ? even_ : odd_;
      directory.add(sdkNames[family]);
      sdks_.emplace_back(directory.file(sdkNames[family]));
      world_[family] = camerasOf(family);
      sdks_[family].setCameras(world_[family]);
    }
    directories_ = {even_.utf8(), odd_.utf8(), even_.utf8() + "/nowhere"};
  }

  // Three cameras: one with every feature, a plain one, and one of unusual sizes.
  std::vector<SimCamera> camerasOf(std::size_t family) const {
    const auto named = [&](SimCamera camera, const char* kind, int id) {
      setText(camera.name, std::string(kind) + " of " + sdkNames[family]);
      setText(camera.key, std::string(sdkNames[family]) + "-" + kind);
      camera.id = id;
      return camera;
    };
    const SimCamera rich = torturedCamera(sdkFamilies[family]);
    SimCamera plain = rich;
    plain.width = 48;
    plain.height = 32;
    plain.isColor = 0;
    plain.bitDepth = 8;
    plain.bins[1] = 0;
    plain.formats[1] = -1;
    plain.offsetMax = -1;
    plain.hasTemperature = 0;
    SimCamera odd = rich;
    odd.width = 37;
    odd.height = 23;
    odd.isCooled = 1;
    odd.pixelSizeUm = 2.900001;
    return {named(rich, "rich", 12), named(plain, "plain", 3), named(odd, "odd", 40)};
  }

  // Loads the library as in a new process.
  void load() {
    if (loaded_) {
      loaded_->unload();
    }
    loaded_.emplace();
    library_.emplace(*loaded_, Contract(world_),
                     Surroundings{.takeEvents = [this] { return takeEvents(); }});
    directory_ = bareNames;
    if (!bareNamesAreFound) {
      changeDirectory();
    }
  }

  // Returns the SDKs' calls in the order in which they were made. An open first closes the camera
  // that is open, in whatever SDK; everything else is in the order of the SDKs.
  std::vector<SdkCall> takeEvents() {
    std::array<std::size_t, sdkCount> order;
    std::iota(order.begin(), order.end(), 0);
    const Contract& contract = library_->contract();
    if (contract.isOpen()) {
      std::swap(order[0], order[contract.family()]);
    }
    std::vector<SdkCall> events;
    for (const std::size_t family : order) {
      if (isScanning_ && !contract.isOpen() && !contract.isLoaded(family)) {
        const bool isThere = directory_ == bareNames || directory_ == static_cast<int>(family % 2);
        events.push_back(
            {.function = "load", .inputs = sdkNames[family], .result = isThere ? "1" : "0"});
      }
      std::ranges::move(parseLog(sdks_[family].takeLog()), std::back_inserter(events));
    }
    return events;
  }

  // A random number from `least` to `most`.
  long pick(long least, long most) {
    const auto range = static_cast<std::uint64_t>(most - least + 1);
    return least + static_cast<long>(random_() % range);
  }
  bool oneIn(long many) { return pick(1, many) == 1; }
  template <class List>
  const auto& pickOf(const List& list) {
    return list[static_cast<std::size_t>(pick(0, static_cast<long>(list.size()) - 1))];
  }

  std::int64_t exposure() {
    static const std::vector<std::int64_t> odd{
        0, -1, 1, 2147483647, 2147483648, -2147483648, 9223372036854775807, 31, 32, 1000000000};
    return oneIn(25) ? pickOf(odd) : pick(100, 50000);
  }
  int gain() {
    static const std::vector<int> odd{-1, 0, 65535, 65536, 2147483647, -2147483647 - 1, 1001};
    return oneIn(30) ? pickOf(odd) : static_cast<int>(pick(100, 1000));
  }
  int offset() {
    static const std::vector<int> odd{-1, 21, 2147483647, -2147483647 - 1};
    return oneIn(30) ? pickOf(odd) : static_cast<int>(pick(0, 20));
  }

  // Mostly even, because one of the SDKs refuses odd sizes.
  int evenly(long size) { return static_cast<int>(oneIn(5) ? size : size / 2 * 2); }

  void open() {
    const std::vector<ContractCamera>& catalogue = library_->contract().catalogue();
    const auto count = static_cast<long>(catalogue.size());
    OpenArguments arguments;
    const bool isKnown = count > 0 && !oneIn(20);
    arguments.index = static_cast<int>(isKnown ? pick(0, count - 1) : pick(-2, count + 1));
    if (arguments.index >= 0 && arguments.index < count) {
      const ContractCamera& camera = catalogue[static_cast<std::size_t>(arguments.index)];
      arguments.bin = oneIn(25) ? static_cast<int>(pick(-1, 6)) : pickOf(camera.bins);
      arguments.format = oneIn(25) ? static_cast<int>(pick(-1, 6)) : pickOf(camera.formats);
      arguments.width = oneIn(3) ? evenly(pick(-1, camera.maxWidth + 2)) : camera.maxWidth;
      arguments.height = oneIn(3) ? evenly(pick(-1, camera.maxHeight + 2)) : camera.maxHeight;
    }
    arguments.exposureUs = exposure();
    arguments.gain = gain();
    arguments.offset = offset();
    const auto opened = library_->open(arguments);
    ++counts_[opened == 1 ? "opened" : "not opened"];
    if (opened != 1) {
      expectNothingOpen();
    }
  }

  void read() {
    for (const SimulatedSdk& sdk : sdks_) {
      sdk.advance_clock(pick(0, 100000));
    }
    const int size = library_->contract().bufferSize();
    const long kind = pick(1, 50);
    const int length = kind == 1   ? size - 1
                       : kind == 2 ? static_cast<int>(pick(-1, size))
                       : kind <= 5 ? size + static_cast<int>(pick(1, 1000))
                                   : size;
    const auto bytes = library_->read(length, static_cast<int>(pick(-1, 600)), kind != 6);
    ++counts_[*bytes > 0 ? "frames" : *bytes == 0 ? "no frame yet" : "reads failed"];
  }

  // Forces a coming call to fail, one or more times.
  void force() {
    const auto family = static_cast<std::size_t>(pick(0, sdkCount - 1));
    const std::string function = pickOf(functionsOf(sdkNames[family]));
    const bool isHandle =
        sdkFamilies[family].givesHandle && function == sdkFamilies[family].openCall;
    const std::int64_t code = isHandle ? 0 : pickOf(sdkFamilies[family].codes);
    sdks_[family].forceResult(function.c_str(), code, static_cast<int>(pick(1, 6)),
                              static_cast<int>(pick(1, 3)));
    mayHaveLeftOpen_ = mayHaveLeftOpen_ || function == sdkFamilies[family].closeCall;
    ++counts_["faults"];
  }

  // Makes the discovery of several SDKs fail in the next scan, each at one of its cameras.
  void failDiscoveries() {
    for (std::size_t family = 0; family < sdkCount; ++family) {
      if (oneIn(2)) {
        sdks_[family].forceResult(sdkFamilies[family].examineCall,
                                  pickOf(sdkFamilies[family].codes), static_cast<int>(pick(1, 3)),
                                  1);
      }
    }
  }

  // Removes all faults. Plugs the cameras in again that a forced failure has kept open.
  void repair() {
    for (std::size_t family = 0; family < sdkCount; ++family) {
      sdks_[family].clear_faults();
      if (mayHaveLeftOpen_ && !library_->contract().isOpen()) {
        sdks_[family].setCameras(world_[family]);
      }
    }
    mayHaveLeftOpen_ = mayHaveLeftOpen_ && library_->contract().isOpen();
  }

  void plug() {
    const auto family = static_cast<std::size_t>(pick(0, sdkCount - 1));
    const int camera = static_cast<int>(pick(0, 2));
    sdks_[family].set_plugged(camera, oneIn(3) ? 0 : 1);
  }

  void changeDirectory(int first = bareNames) {
    directory_ = static_cast<int>(pick(first, 2));
    const bool isBare = directory_ == bareNames;
    library_->libraryDir(isBare ? nullptr
                                : directories_[static_cast<std::size_t>(directory_)].c_str());
    if (isBare && !bareNamesAreFound) {
      changeDirectory(0);
    }
  }

  void step() {
    const Contract& contract = library_->contract();
    // Without an open camera most calls do little, so this mostly opens one or changes the
    // surroundings.
    const bool opens = !contract.isOpen() && !contract.catalogue().empty() && oneIn(2);
    const long kind = opens ? 700 : contract.isOpen() || oneIn(3) ? pick(1, 1000) : pick(751, 1000);
    if (kind <= 520) {
      read();
    } else if (kind <= 620) {
      const auto applied = library_->apply(exposure(), gain(), offset());
      ++counts_[applied == 1 ? "applied" : "not applied"];
    } else if (kind <= 690) {
      const auto celsius = library_->temperature();
      ++counts_[std::isnan(*celsius) ? "no temperature" : "temperatures"];
    } else if (kind <= 720) {
      open();
    } else if (kind <= 750) {
      library_->close();
      expectNothingOpen();
    } else if (kind <= 800) {
      if (oneIn(3)) {
        failDiscoveries();
      }
      isScanning_ = true;
      const auto cameras = library_->scan();
      isScanning_ = false;
      ++counts_[*cameras > 0 ? "scans" : *cameras == 0 ? "scans without cameras" : "scans refused"];
    } else if (kind <= 860) {
      library_->info(static_cast<int>(pick(-1, static_cast<long>(contract.catalogue().size()))));
    } else if (kind <= 885) {
      force();
    } else if (kind <= 925) {
      repair();
    } else if (kind <= 950) {
      plug();
    } else if (kind <= 985) {
      changeDirectory();
    } else if (!contract.isOpen()) {
      load();
      ++counts_["processes"];
    }
    messages_.insert(library_->contract().error());
  }

  void expectNothingOpen() {
    for (const SimulatedSdk& sdk : sdks_) {
      const SimInvariants now = sdk.invariants();
      if ((now.devicesOpen > 0 && !mayHaveLeftOpen_) || now.streamsRunning > now.devicesOpen ||
          (now.streamsRunning > 0 && !mayHaveLeftOpen_)) {
        throw Violation{"left open: devices " + std::to_string(now.devicesOpen) + ", streams " +
                        std::to_string(now.streamsRunning)};
      }
    }
  }

  void expectNothingWentWrong() {
    for (const SimulatedSdk& sdk : sdks_) {
      const SimInvariants now = sdk.invariants();
      EXPECT_EQ(now.callsOnClosed, 0);
      EXPECT_EQ(now.stopsWithoutStart, 0);
      EXPECT_EQ(now.shortBuffers, 0);
      EXPECT_EQ(now.writesPastBuffer, 0);
    }
  }

  SdkDirectory even_{"even"};
  SdkDirectory odd_{"odd"};
  std::vector<std::string> directories_;
  World world_;
  std::vector<SimulatedSdk> sdks_;
  std::optional<LibraryUnderTest> loaded_;
  std::optional<CheckedLibrary> library_;
  int directory_ = bareNames;  // 0: of the even SDKs, 1: of the odd ones, 2: does not exist
  bool isScanning_ = false;
  bool mayHaveLeftOpen_ = false;
  std::mt19937_64 random_;
  std::map<std::string, long> counts_;
  std::set<std::string> messages_;
};

TEST_P(RandomSessions, KeepTheContract) {
  const long seed = chosen("ORVANE_RANDOM_SEED", 0) * 1000 + GetParam();
  const long steps = chosen("ORVANE_RANDOM_STEPS", usualSteps);
  random_.seed(static_cast<std::uint64_t>(seed));
  load();
  for (long i = 0; i < steps; ++i) {
    try {
      step();
    } catch (const Violation& violation) {
      FAIL() << "step " << i << " with seed " << seed << " (ORVANE_RANDOM_SEED=" << seed / 1000
             << "): " << violation.text;
    }
  }
  library_->close();
  expectNothingWentWrong();

  std::cout << "random|seed " << seed << "|steps " << steps;
  for (const auto& [what, count] : counts_) {
    std::cout << "|" << what << " " << count;
  }
  std::cout << "|messages " << messages_.size() << "\n" << std::flush;
  RecordProperty("steps", static_cast<int>(steps));
  // Every kind of step must occur often enough.
  for (const char* what : {"opened", "not opened", "scans", "scans refused", "applied",
                           "not applied", "temperatures", "faults"}) {
    EXPECT_GE(counts_[what], steps / 200) << what;
  }
  EXPECT_GE(counts_["frames"], steps / 10);
  EXPECT_GE(counts_["processes"], steps / 2000);
  EXPECT_GE(messages_.size(), 25U);
  EXPECT_TRUE(std::any_of(messages_.begin(), messages_.end(), [](const std::string& message) {
    return message.find("; ") != std::string::npos;
  }));
}

INSTANTIATE_TEST_SUITE_P(Seeds, RandomSessions, ::testing::Range(1, 5));

}  // namespace
}  // namespace orvane::testing
