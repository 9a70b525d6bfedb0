// Compares the message tables in docs/messages.md with the library. Each message is provoked from
// each export that its row names, and must equal the row. A row that no case provokes is a failure,
// and so is a message without a row.
#include <cmath>
#include <functional>
#include <string_view>
#include <utility>

#include "library/family_test.hpp"
#include "support/message_table.hpp"

namespace orvane::testing {
namespace {

// How to provoke one message from one export.
struct Provocation {
  std::string row;
  std::string from;
  std::function<void()> act;   // ends with the call that fails
  std::string expected = row;  // the row with its placeholders filled in
};

std::string filled(std::string text, std::string_view placeholder, std::string_view value) {
  const std::size_t start = text.find(placeholder);
  return start == std::string::npos ? text : text.replace(start, placeholder.size(), value);
}

class Messages : public LibraryTest {
 protected:
  // Installs the SDK with one camera. `mosaic` is the maker's code of its Bayer pattern.
  SimulatedSdk installWithCamera(const std::string& baseName, std::int32_t mosaic,
                                 const std::vector<std::string>& missing = {}) {
    SimulatedSdk sdk = install(baseName, missing);
    camera_.bayerPattern = mosaic;
    camera_.gainMax = 1000;
    sdk.setCameras({camera_});
    return sdk;
  }

  void scan() { EXPECT_EQ(oc.scan(), 1) << error(); }

  int tryOpen(int width = 320, int height = 202, std::int64_t exposureUs = 20000, int bin = 1) {
    return oc.open(0, width, height, bin, 0, exposureUs, 100, 5);
  }

  void open() {
    scan();
    EXPECT_EQ(tryOpen(), 1) << error();
  }

  int apply(int gain = 100) { return oc.apply(20000, gain, 5); }

  // Provokes every message under one heading.
  void expectTableHolds(const std::string& heading, const std::vector<Provocation>& provocations,
                        const std::function<void()>& prepare) {
    std::vector<std::pair<std::string, std::string>> listed;
    for (const MessageRow& row : messageRows(heading)) {
      for (const std::string& from : row.exports) {
        listed.emplace_back(row.text, from);
      }
    }
    EXPECT_FALSE(listed.empty());
    for (const auto& [row, from, act, expected] : provocations) {
      prepare();
      act();
      EXPECT_EQ(error(), expected) << from;
      const auto entry = std::find(listed.begin(), listed.end(), std::pair(row, from));
      if (entry == listed.end()) {
        ADD_FAILURE() << "not in the table: " << row << " from " << from;
      } else {
        listed.erase(entry);
      }
    }
    for (const auto& [row, from] : listed) {
      ADD_FAILURE() << "in the table, but nothing provokes it: " << row << " from " << from;
    }
  }

  SimCamera camera_ = smallCamera();
};

TEST_F(Messages, OfEveryMaker) {
  const SimulatedSdk sdk = installWithCamera("ASICamera2", 0);
  expectTableHolds("Every maker",
                   {
                       {"Stop the preview before rescanning", "oc_scan",
                        [&] {
                          open();
                          EXPECT_EQ(oc.scan(), -1);
                        }},
                       {"Camera not found; rescan", "oc_open",
                        [&] {
                          scan();
                          EXPECT_EQ(oc.open(1, 320, 202, 1, 0, 20000, 100, 5), 0);
                        }},
                       {"Unsupported bin or format", "oc_open",
                        [&] {
                          scan();
                          EXPECT_EQ(tryOpen(320, 202, 20000, 3), 0);
                        }},
                       {"Invalid capture dimensions", "oc_open",
                        [&] {
                          scan();
                          EXPECT_EQ(tryOpen(321), 0);
                        }},
                       {"ROI is too small for binning", "oc_open",
                        [&] {
                          scan();
                          EXPECT_EQ(tryOpen(7), 0);
                        }},
                       {"Invalid frame buffer size", "oc_open",
                        [&] {
                          scan();
                          sdk.forceOutput("ASIGetROIFormat", "width", 0);
                          EXPECT_EQ(tryOpen(), 0);
                        }},
                       {"Exposure out of range", "oc_open",
                        [&] {
                          scan();
                          EXPECT_EQ(tryOpen(320, 202, 0), 0);
                        }},
                       {"Exposure out of range", "oc_apply",
                        [&] {
                          open();
                          EXPECT_EQ(oc.apply(std::int64_t{1} << 31, 100, 5), 0);
                        }},
                       {"Camera closed", "oc_apply", [&] { EXPECT_EQ(apply(), 0); }},
                       {"Camera closed or buffer too small", "oc_read",
                        [&] {
                          open();
                          EXPECT_EQ(oc.read(frame.data(), oc.buffer_size() - 1, 0), -1);
                        }},
                   },
                   [&] {
                     oc.close();
                     sdk.clear_faults();
                     frame.assign(64 * 1024, 0);
                   });
}

TEST_F(Messages, OfMissingFunctions) {
  // One SDK per export. It lacks a function that no earlier export needs.
  const SimulatedSdk asi = installWithCamera("ASICamera2", 0, {"ASIGetControlCaps"});
  const SimulatedSdk playerOne = installWithCamera("PlayerOneCamera", 0, {"POAGetImageData"});
  const SimulatedSdk qhy = installWithCamera("qhyccd", 4, {"ScanQHYCCD"});
  const SimulatedSdk toupTek = installWithCamera("toupcam", 0x42474752, {"Toupcam_get_FinalSize"});
  const auto missing = [](const char* from, const char* library, const char* function,
                          const std::function<void()>& act) {
    const std::string row = "<library>: missing <function>";
    return Provocation{row, from, act,
                       filled(filled(row, "<library>", library), "<function>", function)};
  };
  const auto openCamera = [&](int index) {
    EXPECT_EQ(oc.scan(), 3);
    return oc.open(index, 320, 202, 1, 0, 20000, 100, 5);
  };
  expectTableHolds(
      "Functions that an SDK lacks",
      {missing("oc_scan", "qhyccd", "ScanQHYCCD", [&] { EXPECT_EQ(oc.scan(), 3); }),
       missing("oc_open", "toupcam", "Toupcam_get_FinalSize", [&] { EXPECT_EQ(openCamera(2), 0); }),
       missing("oc_read", "PlayerOneCamera", "POAGetImageData",
               [&] {
                 EXPECT_EQ(openCamera(1), 1) << error();
                 playerOne.advance_clock(100000);
                 EXPECT_EQ(readFrame(), -1);
               }),
       missing("oc_apply", "ASICamera2", "ASIGetControlCaps",
               [&] {
                 // If the camera had controls, the open would make this call and fail first.
                 asi.forceOutput("ASIGetNumOfControls", "count", 0);
                 EXPECT_EQ(openCamera(0), 1) << error();
                 asi.clear_faults();
                 EXPECT_EQ(apply(), 0);
               })},
      [&] { oc.close(); });
  expectClean(qhy);
  expectClean(toupTek);
}

// A call to fail, and the exports that make it.
struct SpoiltCall {
  const char* label;  // nullptr: the name of the function
  const char* function;
  std::vector<const char*> from;
  int nth = 1;  // which call of the function fails
};

// A message that only one family has.
struct Sentence {
  const char* text;
  const char* from;
  std::function<void(const SimulatedSdk&)> spoil;
};

struct Family {
  const char* heading;
  const char* baseName;
  std::int32_t mosaic;
  std::int64_t code;
  const char* printedCode;
  std::vector<SpoiltCall> calls;
  std::vector<Sentence> sentences;
};

std::ostream& operator<<(std::ostream& stream, const Family& family) {
  return stream << family.heading;
}

class MessagesOf : public Messages, public ::testing::WithParamInterface<Family> {
 protected:
  // Makes the export fail: calls `spoil` right before it.
  void fail(const std::string& from, const std::function<void()>& spoil) {
    if (from == "oc_scan") {
      spoil();
      EXPECT_EQ(oc.scan(), 0);
    } else if (from == "oc_open") {
      scan();
      spoil();
      EXPECT_EQ(tryOpen(), 0);
    } else if (from == "oc_read") {
      open();
      spoil();
      sdk().advance_clock(100000);
      EXPECT_EQ(readFrame(), -1);
    } else {
      open();
      spoil();
      EXPECT_EQ(apply(), 0);
    }
  }

  std::vector<Provocation> provocations() {
    std::vector<Provocation> all;
    for (const SpoiltCall& call : GetParam().calls) {
      const std::string label = call.label != nullptr ? call.label : call.function;
      for (const std::string from : call.from) {
        const auto spoil = [this, call] {
          sdk().forceResult(call.function, GetParam().code, call.nth);
        };
        const std::string row = label + ": <code>";
        all.push_back({row, from, [this, from, spoil] { fail(from, spoil); },
                       filled(row, "<code>", GetParam().printedCode)});
      }
    }
    for (const Sentence& sentence : GetParam().sentences) {
      const std::string from = sentence.from;
      const auto spoil = [this, sentence] { sentence.spoil(sdk()); };
      all.push_back({sentence.text, from, [this, from, spoil] { fail(from, spoil); }});
    }
    return all;
  }

  const SimulatedSdk& sdk() const { return sdk_; }

 private:
  const SimulatedSdk sdk_ = installWithCamera(GetParam().baseName, GetParam().mosaic);
};

TEST_P(MessagesOf, EqualTheTable) {
  std::vector<Provocation> all = provocations();
  if (std::string_view(GetParam().baseName) == "toupcam") {
    // The SDK does not cause this failure, so no call is forced to fail.
    all.push_back({"ToupTek gain out of range", "oc_open", [&] {
                     scan();
                     EXPECT_EQ(oc.open(0, 320, 202, 1, 0, 20000, 65536, 5), 0);
                   }});
    all.push_back({"ToupTek gain out of range", "oc_apply", [&] {
                     open();
                     EXPECT_EQ(apply(-1), 0);
                   }});
  }
  expectTableHolds(GetParam().heading, all, [&] {
    oc.close();
    sdk().clear_faults();
  });
}

TEST_F(Messages, OfTheTemperatureNeverReachTheHost) {
  const SimulatedSdk asi = installWithCamera("ASICamera2", 0);
  const SimulatedSdk playerOne = installWithCamera("PlayerOneCamera", 0);
  const SimulatedSdk toupTek = installWithCamera("toupcam", 0x42474752);
  asi.forceResult("ASIGetControlValue", 3);
  playerOne.forceResult("POAGetConfig", 3);
  toupTek.forceResult("Toupcam_get_Temperature", -2147467263);
  const int count = oc.scan();
  EXPECT_EQ(messageRows("Never seen").size(), static_cast<std::size_t>(count));
  for (int camera = 0; camera < count; ++camera) {
    ASSERT_EQ(oc.open(camera, 320, 202, 1, 0, 20000, 100, 5), 1) << error();
    EXPECT_TRUE(std::isnan(oc.temperature())) << camera;
    EXPECT_EQ(error(), "") << camera;
  }
}

const std::vector<const char*> inScan{"oc_scan"};
const std::vector<const char*> inOpen{"oc_open"};
const std::vector<const char*> inRead{"oc_read"};
const std::vector<const char*> inSettings{"oc_open", "oc_apply"};

INSTANTIATE_TEST_SUITE_P(
    Families, MessagesOf,
    ::testing::Values(
        Family{"ZWO ASI",
               "ASICamera2",
               0,
               16,
               "16",
               {{nullptr, "ASIGetCameraProperty", inScan},
                {nullptr, "ASIOpenCamera", inOpen},
                {nullptr, "ASIInitCamera", inOpen},
                {nullptr, "ASISetROIFormat", inOpen},
                {nullptr, "ASISetStartPos", inOpen},
                {nullptr, "ASIGetROIFormat", inOpen},
                {"ASI exposure", "ASISetControlValue", inSettings, 1},
                {"ASI gain", "ASISetControlValue", inSettings, 2},
                {"ASI controls", "ASIGetNumOfControls", inSettings},
                {"ASI control caps", "ASIGetControlCaps", inSettings},
                {"ASI offset", "ASISetControlValue", inSettings, 3},
                {nullptr, "ASIStartVideoCapture", inOpen},
                {nullptr, "ASIGetVideoData", inRead}},
               {}},
        Family{"Player One",
               "PlayerOneCamera",
               0,
               16,
               "16",
               {{nullptr, "POAGetCameraProperties", inScan},
                {nullptr, "POAOpenCamera", inOpen},
                {nullptr, "POAInitCamera", inOpen},
                {nullptr, "POASetImageBin", inOpen},
                {nullptr, "POASetImageFormat", inOpen},
                {nullptr, "POASetImageSize", inOpen},
                {nullptr, "POASetImageStartPos", inOpen},
                {nullptr, "POAGetImageSize", inOpen},
                {"POA exposure", "POASetConfig", inSettings, 1},
                {"POA gain", "POASetConfig", inSettings, 2},
                {"POA offset", "POASetConfig", inSettings, 3},
                {nullptr, "POAStartExposure", inOpen},
                {nullptr, "POAImageReady", inRead},
                {nullptr, "POAGetImageData", inRead}},
               {}},
        Family{"QHYCCD",
               "qhyccd",
               4,
               4294967295,
               "4294967295",
               {{nullptr, "InitQHYCCDResource", inScan},  // first: only called once per process
                {nullptr, "GetQHYCCDId", inScan},
                {nullptr, "SetQHYCCDStreamMode", inScan},
                {nullptr, "InitQHYCCD", {"oc_scan", "oc_open"}},
                {nullptr, "GetQHYCCDChipInfo", inScan},
                {"QHY stream mode", "SetQHYCCDStreamMode", inOpen},
                {"QHY binning", "SetQHYCCDBinMode", inOpen},
                {"QHY bit depth", "SetQHYCCDBitsMode", inOpen},
                {"QHY ROI", "SetQHYCCDResolution", inOpen},
                {"QHY exposure", "SetQHYCCDParam", inSettings, 1},
                {"QHY gain", "SetQHYCCDParam", inSettings, 2},
                {"QHY offset", "SetQHYCCDParam", inSettings, 3},
                {nullptr, "BeginQHYCCDLive", inOpen}},
               {{"QHY scan failed", "oc_scan",
                 [](const SimulatedSdk& sdk) { sdk.forceResult("ScanQHYCCD", 4294967295); }},
                {"OpenQHYCCD failed", "oc_open",
                 [](const SimulatedSdk& sdk) { sdk.forceResult("OpenQHYCCD", 0); }},
                {"QHY frame geometry changed", "oc_read",
                 [](const SimulatedSdk& sdk) {
                   sdk.forceOutput("GetQHYCCDLiveFrame", "channels", 3);
                 }}}},
        Family{"ToupTek",
               "toupcam",
               0x42474752,
               -2147467259,
               "-2147467259",
               {{nullptr, "Toupcam_get_RawFormat", inScan},
                {"ToupTek RAW", "Toupcam_put_Option", inOpen, 1},
                {"ToupTek depth", "Toupcam_put_Option", inOpen, 2},
                {"ToupTek ROI", "Toupcam_put_Roi", inOpen},
                {"ToupTek size", "Toupcam_get_FinalSize", inOpen},
                {"ToupTek manual exposure", "Toupcam_put_AutoExpoEnable", inSettings},
                {"ToupTek exposure", "Toupcam_put_ExpoTime", inSettings},
                {"ToupTek gain", "Toupcam_put_ExpoAGain", inSettings},
                {"ToupTek black level", "Toupcam_put_Option", inOpen, 3},
                {"ToupTek black level", "Toupcam_put_Option", {"oc_apply"}, 1},
                {"ToupTek start", "Toupcam_StartPullModeWithCallback", inOpen},
                {"ToupTek pull frame", "Toupcam_PullImageWithRowPitch", inRead}},
               {{"Unsupported ToupTek raw mosaic", "oc_scan",
                 [](const SimulatedSdk& sdk) {
                   sdk.forceOutput("Toupcam_get_RawFormat", "fourCc", 0);
                 }},
                {"Toupcam_Open failed", "oc_open",
                 [](const SimulatedSdk& sdk) { sdk.forceResult("Toupcam_Open", 0); }},
                {"ToupTek frame geometry changed", "oc_read",
                 [](const SimulatedSdk& sdk) {
                   sdk.forceOutput("Toupcam_PullImageWithRowPitch", "width", 8);
                 }}}}),
    [](const auto& instance) { return std::string(instance.param.baseName); });

}  // namespace
}  // namespace orvane::testing
