// "oc_capture doctor", run as a program on SDK directories in good and in bad states.
#include <fstream>
#include <nlohmann/json.hpp>
#include <regex>
#include <span>

#include "oc_capture_test.hpp"
#include "session/causes.hpp"

namespace orvane::testing {

namespace {

using nlohmann::ordered_json;

#ifdef _WIN32
constexpr const char* nameLabel = "File version  ";
constexpr const char* dependencyFile = "sdk_dependency.dll";
constexpr bool hasErrorCodes = true;
const std::string thisSystem = "Windows";
const std::string otherSystem = "Linux";
#else
constexpr const char* nameLabel = "Soname        ";
constexpr const char* dependencyFile = "libsdk_dependency.so";
constexpr bool hasErrorCodes = false;
const std::string thisSystem = "Linux";
const std::string otherSystem = "Windows";
#endif

constexpr const char* copyAgain = "Copy it again from the maker's package, or download that again.";
constexpr const char* getForX64 =
    "Replace it by the one for x64 (64 bits), often in another folder of the maker's package.";
const std::string sdkTotal = std::to_string(sdkCount);

const std::string notAsked =
    "The library itself\n"
    "                not asked: it loads the SDKs in a scan only, and a scan opens every\n"
    "                camera for a moment; oc_libraries and oc_error know nothing before.\n"
    "                Add --scan when no other program is using a camera.\n"
    "\n";

class OcCaptureDoctor : public OcCaptureTest {
 protected:
  ProgramResult doctor(int status, const char* more = "", const std::string& simulator = "") const {
    ProgramResult result = runWithSdks("doctor", {more}, simulator);
    EXPECT_EQ(result.status, status);
    EXPECT_EQ(result.err, "");
    return result;
  }

  ordered_json doctorJson(int status, const char* more = "--json") const {
    return ordered_json::parse(doctor(status, more).out);
  }

  std::string pathOf(const std::string& baseName) const { return utf8(sdks.file(baseName)); }

  // The report about an SDK that is not there.
  std::string notThere(const std::string& maker, const std::string& baseName) const {
    return maker + ": not there\n  File          " + pathOf(baseName) + "\n\n";
  }

  std::string othersNotThere() const {
    std::string text;
    for (const SdkFamily& family : std::span(sdkFamilies).subspan(1)) {
      text += notThere(family.maker, family.baseName);
    }
    return text;
  }

  // Only the problem is known of the file in ZWO's place. The system's message may be any.
  void expectUseless(const std::string& problem, const std::string& cure) const {
    const ProgramResult result = doctor(1);
    const std::regex loadLine(R"(  Loads         no: (.+)\n)");
    std::smatch words;
    ASSERT_TRUE(std::regex_search(result.out, words, loadLine)) << result.out;
    EXPECT_EQ(std::regex_match(words[1].str(), std::regex(R"(.+ \(\d+\))")), hasErrorCodes)
        << words[1];
    EXPECT_EQ(result.out, "ZWO ASI: NOT HEALTHY\n  File          " + pathOf("ASICamera2") +
                              "\n  Kind          " + problem + "\n  " + nameLabel +
                              "none\n  Loads         no: " + words[1].str() +
                              "\n  Functions     not known\n  Needs         not known\n" +
                              "  Cure          " + cure + "\n\n" + othersNotThere() + notAsked +
                              "Found 1 of " + sdkTotal + " SDKs, 0 healthy.\n");
    expectMembers(doctorJson(1)["sdks"][0], {{"problem", problem}, {"cure", cure}});
  }

  // The simulated SDK, relabelled for another processor.
  std::string sdkForMachine(int bits, unsigned windowsNumber, unsigned linuxNumber) const {
    sdks.add("ASICamera2");
    std::string image = contentOf(sdks.file("ASICamera2"));
    const auto put16 = [&](std::size_t at, unsigned value) {
      image.at(at) = static_cast<char>(value & 0xFFU);
      image.at(at + 1) = static_cast<char>(value >> 8U);
    };
    if (image.starts_with("MZ")) {
      const auto byteAt = [&](std::size_t at) { return static_cast<unsigned char>(image.at(at)); };
      const std::size_t header = byteAt(0x3c) + 256U * byteAt(0x3d);
      put16(header + 4, windowsNumber);
      if (bits == 32) {
        // A 32-bit header's image base (16 MiB), and no data directories: Wine's loader crashes on
        // what it would read there otherwise.
        put16(header + 24, 0x10b);
        put16(header + 24 + 28, 0);
        put16(header + 24 + 30, 0x100);
        std::fill_n(image.begin() + static_cast<std::ptrdiff_t>(header + 24 + 92), 132, '\0');
      }
    } else {
      image.at(4) = bits == 64 ? 2 : 1;
      put16(18, linuxNumber);
    }
    return image;
  }

  std::string healthy(const SdkFamily& family) const {
    const std::string baseName = family.baseName;
    const std::string functions = std::to_string(functionsOf(baseName).size());
    return std::string(family.maker) + ": healthy\n  File          " + pathOf(baseName) +
           "\n  Kind          64-bit library for x64\n  " + nameLabel +
           (hasErrorCodes ? "none" : "lib" + baseName + ".so") +
           "\n  Loads         yes\n  Functions     " + functions + " of " + functions +
           " there\n  Needs         N of N libraries found\n\n";
  }

  void addDependency(const std::string& content) const {
    std::ofstream(sdks.path() / dependencyFile, std::ios::binary) << content;
  }
};

TEST_F(OcCaptureDoctor, HealthyDirectoryIsHealthyInAllItsParts) {
  for (const char* name : sdkNames) {
    sdks.add(name);
  }
  const ProgramResult result = doctor(0);
  std::string allHealthy;
  for (const SdkFamily& family : sdkFamilies) {
    allHealthy += healthy(family);
  }
  const std::regex counts(R"((\d+) of \1 libraries found)");
  EXPECT_EQ(std::regex_replace(result.out, counts, "N of N libraries found"),
            allHealthy + notAsked + "Found " + sdkTotal + " of " + sdkTotal + " SDKs, " + sdkTotal +
                " healthy.\n");
}

TEST_F(OcCaptureDoctor, EmptyDirectoryIsAFailure) {
  const std::string cure = cureOfNoSdk(sdks);
  EXPECT_EQ(doctor(1).out, notThere("ZWO ASI", "ASICamera2") + othersNotThere() + notAsked +
                               "There is no SDK in this directory. " + cure + "\n");
  expectMembers(doctorJson(1), {{"healthy", false}, {"cure", cure}});
}

TEST_F(OcCaptureDoctor, OneSdkThatIsMissingIsNoFailure) {
  for (const char* name : {"ASICamera2", "PlayerOneCamera", "toupcam"}) {
    sdks.add(name);
  }
  const ProgramResult result = doctor(0);
  EXPECT_PRED_FORMAT2(IsSubstring, notThere("QHYCCD", "qhyccd"), result.out);
  EXPECT_PRED_FORMAT2(IsSubstring, "\nFound 3 of " + sdkTotal + " SDKs, 3 healthy.\n", result.out);
}

TEST_F(OcCaptureDoctor, FilesThatAreNoLibraryForThisComputer) {
  const std::string cannotBeUsed = ", which a 64-bit program cannot use on this computer.";
  const std::string otherMagic = thisSystem == "Windows" ? "\x7f\x45LF\x02\x01\x01" : "MZ";
  struct {
    std::string content;
    std::string problem;
    std::string cure;
  } const files[] = {
      {"this is a text file\n", "This is no library, neither for Windows nor for Linux.",
       "Replace it by the maker's library of this name; unpack the maker's archive first."},
      {"", "The file is empty.", copyAgain},
      {sdkForMachine(32, 0x014c, 3), "This is a 32-bit library for x86" + cannotBeUsed, getForX64},
      {sdkForMachine(64, 0xaa64, 183), "This is a 64-bit library for ARM64" + cannotBeUsed,
       getForX64},
      {otherMagic + std::string(500, '\0'),
       "This is a library for " + otherSystem + ", not for " + thisSystem + ".",
       "Get the one for " + thisSystem + " (64 bits) from the maker."}};
  for (const auto& [content, problem, cure] : files) {
    SCOPED_TRACE(problem);
    sdks.addFile("ASICamera2", content);
    expectUseless(problem, cure);
  }
}

TEST_F(OcCaptureDoctor, DirectoryInTheSdksPlace) {
  std::filesystem::create_directory(sdks.file("ASICamera2"));
  expectUseless("This is a directory.",
                "Remove it and copy the maker's library of this name here.");
}

TEST_F(OcCaptureDoctor, FileThatIsCutOff) {
  sdks.add("ASICamera2");
  const std::string image = contentOf(sdks.file("ASICamera2"));
  for (const std::size_t size : {50U, 300U, 9000U}) {
    sdks.addFile("ASICamera2", image.substr(0, size));
    const ProgramResult result = doctor(1, "--scan");
    EXPECT_PRED_FORMAT2(IsSubstring, "  Kind          The file is cut off or damaged.\n",
                        result.out)
        << size;
    // The loader of Linux may crash on such a file.
    EXPECT_PRED_FORMAT2(
        IsSubstring,
        hasErrorCodes ? "  Loads         no: " : "  Loads         not tried: ", result.out)
        << size;
    EXPECT_EQ(result.out.find("it is not safe to load") == std::string::npos, hasErrorCodes);
    EXPECT_PRED_FORMAT2(IsSubstring, std::string("\n  Cure          ") + copyAgain + "\n",
                        result.out);
  }
}

TEST_F(OcCaptureDoctor, FileThatIsCutOffEndsTheOtherCommandsInAnOrderlyWay) {
  sdks.add("ASICamera2");
  sdks.addFile("ASICamera2", contentOf(sdks.file("ASICamera2")).substr(0, 9000));
  const ProgramResult result = run({"list --sdk", sdks.path()});
  if (hasErrorCodes) {  // the loader reports it
    EXPECT_PRED_FORMAT2(IsSubstring, "Could not be loaded: ", result.out);
  } else {
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(result.err, "oc_capture: \"" + utf8(sdks.file("ASICamera2")) +
                              "\": The file is cut off or damaged. " + copyAgain + "\n");
  }
}

TEST_F(OcCaptureDoctor, SdkThatLacksFunctions) {
  sdks.add("qhyccd", {"GetQHYCCDLiveFrame", "SetQHYCCDParam"});
  const ProgramResult result = doctor(1);
  EXPECT_PRED_FORMAT2(IsSubstring, "QHYCCD: NOT HEALTHY\n", result.out);
  EXPECT_PRED_FORMAT2(IsSubstring,
                      "  Loads         yes\n"
                      "  Functions     18 of 20 there\n"
                      "                missing: SetQHYCCDParam\n"
                      "                missing: GetQHYCCDLiveFrame\n",
                      result.out);
  EXPECT_PRED_FORMAT2(IsSubstring, "\nFound 1 of " + sdkTotal + " SDKs, 0 healthy.\n", result.out);
  const std::string cure = utf8(sdks.file("qhyccd").filename()) +
                           " is older than this program's interface: get the current one from the "
                           "maker.";
  EXPECT_PRED_FORMAT2(IsSubstring, "\n  Cure          " + cure + "\n\n", result.out);
  expectMembers(doctorJson(1)["sdks"][2],
                {{"missingFunctions", {"SetQHYCCDParam", "GetQHYCCDLiveFrame"}}, {"cure", cure}});
}

TEST_F(OcCaptureDoctor, SdkWhoseDependencyIsMissing) {
  sdks.addFile("ASICamera2", contentOf(ORVANE_STAND_IN_SDK));
  const ProgramResult result = doctor(1);
  EXPECT_TRUE(std::regex_search(
      result.out, std::regex(R"(\n  Loads         no: .+\n  Functions     not known\n)"
                             R"(  Needs         \d+ of \d+ libraries found\n)")))
      << result.out;
  EXPECT_PRED_FORMAT2(IsSubstring,
                      std::string("                missing: ") + dependencyFile + ", needed by " +
                          utf8(sdks.file("ASICamera2").filename()) + "\n",
                      result.out);
  const std::string cure = std::string(dependencyFile) +
                           ": Look for it in the maker's SDK package and copy it into the SDK's "
                           "directory.";
  EXPECT_PRED_FORMAT2(IsSubstring, "\n  Cure          " + cure + "\n\n", result.out);
  const ordered_json sdk = doctorJson(1)["sdks"][0];
  expectMembers(sdk, {{"loadErrorCode", hasErrorCodes ? ordered_json(126) : ordered_json(nullptr)},
                      {"cure", cure}});
  for (const ordered_json& import : sdk["imports"]) {
    EXPECT_EQ(import["cure"], import["missing"] == true ? ordered_json(cure) : ordered_json());
  }
}

TEST_F(OcCaptureDoctor, SdkWhoseDependencyIsNoLibrary) {
  sdks.addFile("ASICamera2", contentOf(ORVANE_STAND_IN_SDK));
  addDependency("this is a text file\n");
  EXPECT_PRED_FORMAT2(IsSubstring,
                      std::string("                unusable: ") + dependencyFile + ", needed by " +
                          utf8(sdks.file("ASICamera2").filename()) + ": " +
                          utf8(sdks.path() / dependencyFile) +
                          ": This is no library, neither for Windows nor for Linux.\n"
                          "  Cure          " +
                          dependencyFile +
                          ": Replace it by the maker's library of this name; unpack the maker's "
                          "archive first.\n\n",
                      doctor(1).out);
}

TEST_F(OcCaptureDoctor, DependencyBesideTheSdkIsFoundThere) {
  sdks.addFile("ASICamera2", contentOf(ORVANE_STAND_IN_SDK));
  addDependency(contentOf(ORVANE_STAND_IN_DEPENDENCY));
  const ordered_json sdk = doctorJson(1)["sdks"][0];
  EXPECT_EQ(sdk["loads"], true);
  EXPECT_EQ(sdk["missingFunctions"].size(), 13U) << "the stand-in has two of 15";
  bool isListed = false;
  for (const ordered_json& import : sdk["imports"]) {
    EXPECT_EQ(import["missing"], false) << import;
    EXPECT_TRUE(import["problem"].is_null()) << import;
    if (import["name"] == dependencyFile) {
      isListed = true;
      EXPECT_EQ(import["file"], utf8(sdks.path() / dependencyFile));
    }
  }
  EXPECT_TRUE(isListed) << sdk["imports"];
}

#ifdef _WIN32
TEST_F(OcCaptureDoctor, TellsTheFileVersion) {
  sdks.addFile("toupcam", contentOf(ORVANE_LIBRARY_FILE));
  EXPECT_EQ(doctorJson(1)["sdks"][3]["fileVersion"], ORVANE_LIBRARY_VERSION ".0");
  EXPECT_PRED_FORMAT2(IsSubstring, "  File version  " ORVANE_LIBRARY_VERSION ".0\n", doctor(1).out);
}
#endif

TEST_F(OcCaptureDoctor, OpensNoCameraUnlessAsked) {
  sdks.add("ASICamera2");
  const auto log = scratch.file("calls");
  doctor(0, "", "log " + utf8(log));
  // On Linux an SDK that is not called does not even make the file.
  EXPECT_EQ(std::filesystem::exists(log) ? contentOf(log) : "", "");

  const ProgramResult scanned = doctor(0, "--scan", "log " + utf8(log));
  EXPECT_PRED_FORMAT2(IsSubstring, "ASIOpenCamera", contentOf(log));
  EXPECT_PRED_FORMAT2(IsSubstring,
                      "The library itself\n"
                      "  oc_scan       4 cameras\n"
                      "  oc_libraries  \"ASICamera2\"\n"
                      "  oc_error      \"\"\n"
                      "\n"
                      "Found 1 of " +
                          sdkTotal + " SDKs, 1 healthy.\n",
                      scanned.out);
}

TEST_F(OcCaptureDoctor, ScanThatFailsIsAFailure) {
  sdks.add("ASICamera2");
  const std::string error = "ASIGetCameraProperty: 5";
  const char* const third = "force ASIGetCameraProperty 3 1 5";
  EXPECT_PRED_FORMAT2(
      IsSubstring,
      "  oc_error      \"" + error + "\"\n  Cause         " + host::explained(error) + "\n",
      doctor(1, "--scan", third).out);
  expectMembers(ordered_json::parse(doctor(1, "--scan --json", third).out)["library"],
                {{"error", error}, {"explanation", host::explained(error)}});
}

TEST_F(OcCaptureDoctor, LibraryLoadsWhatCanBeLoadedHere) {
  sdks.addFile("ASICamera2", "this is a text file\n");
  sdks.add("PlayerOneCamera");
  sdks.add("toupcam");
  expectMembers(doctorJson(1, "--json --scan")["library"],
                {{"scanned", true}, {"libraries", "PlayerOneCamera, toupcam"}, {"error", ""}});
}

TEST_F(OcCaptureDoctor, JsonHasTheseKeysInThisOrder) {
  sdks.add("ASICamera2");
  const ordered_json json = doctorJson(0);
  const auto keysOf = [](const ordered_json& object) {
    std::string keys;
    for (const auto& item : object.items()) {
      keys += item.key() + " ";
    }
    return keys;
  };
  EXPECT_EQ(keysOf(json), "directory healthy cure sdks library ");
  expectMembers(json, {{"directory", sdks.utf8()}, {"healthy", true}});
  ASSERT_EQ(json["sdks"].size(), sdkCount);
  const std::string sdkKeys =
      "maker name file present healthy problem bits processor fileVersion soname loads loadError "
      "loadErrorCode functions missingFunctions imports cure ";
  EXPECT_EQ(keysOf(json["sdks"][0]), sdkKeys);
  expectMembers(json["sdks"][0],
                {{"bits", 64}, {"missingFunctions", ordered_json::array()}, {"cure", nullptr}});
  EXPECT_EQ(keysOf(json["sdks"][0]["imports"][0]), "name neededBy missing file problem cure ");
  EXPECT_EQ(json["library"].dump(),
            R"({"scanned":false,"cameras":null,"libraries":null,"error":null,"explanation":null})");
  // Nothing is known of an SDK that is not there.
  EXPECT_EQ(keysOf(json["sdks"][1]), sdkKeys);
  expectMembers(json["sdks"][1],
                {{"present", false}, {"loads", nullptr}, {"missingFunctions", nullptr}});
}

}  // namespace

}  // namespace orvane::testing
