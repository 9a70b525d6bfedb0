// Compares the message tables in docs/messages.md with the library. Each message is provoked from
// each export that its row names, and must equal the row. A row that no case provokes is a failure,
// and so is a message without a row.
#include <cmath>
#include <functional>
#include <set>

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

class Messages : public LibraryTest {
 protected:
  // Installs the SDK with one camera.
  SimulatedSdk installWithCamera(const std::string& baseName,
                                 const std::vector<std::string>& missing = {}) {
    SimulatedSdk sdk = install(baseName, missing);
    sdk.setCameras({smallCamera(familyNamed(baseName))});
    return sdk;
  }

  int open(int index = 0) { return oc.open(index, 320, 202, 1, 0, 20000, gain, 5); }

  // Provokes every message under one heading.
  void expectTableHolds(const std::string& heading, const std::vector<Provocation>& provocations,
                        const std::function<void()>& prepare) {
    std::set<std::pair<std::string, std::string>> listed;
    for (const MessageRow& row : messageRows(heading)) {
      for (const std::string& from : row.exports) {
        EXPECT_TRUE(listed.emplace(row.text, from).second) << "twice: " << row.text;
      }
    }
    EXPECT_FALSE(listed.empty());
    std::set<std::pair<std::string, std::string>> provoked;
    for (const auto& [row, from, act, expected] : provocations) {
      SCOPED_TRACE(::testing::Message() << expected << " from " << from);
      prepare();
      act();
      EXPECT_EQ(error(), expected);
      EXPECT_TRUE(listed.contains({row, from})) << "not in the table";
      provoked.emplace(row, from);
    }
    for (const auto& [row, from] : listed) {
      EXPECT_TRUE(provoked.contains({row, from})) << "nothing provokes " << row << " from " << from;
    }
  }

  int gain = 150;  // of every open and apply
};

TEST_F(Messages, OfEveryMaker) {
  const SimulatedSdk sdk = installWithCamera("ASICamera2");
  const auto failOpen = [&](int width, std::int64_t exposureUs = 20000, int bin = 1,
                            int index = 0) {
    EXPECT_EQ(oc.scan(), 1) << error();
    EXPECT_EQ(oc.open(index, width, 202, bin, 0, exposureUs, 150, 5), 0);
  };
  const auto openCamera = [&] {
    EXPECT_EQ(oc.scan(), 1) << error();
    EXPECT_EQ(open(), 1) << error();
  };
  expectTableHolds(
      "Every maker",
      {
          {"Stop the preview before rescanning", "oc_scan",
           [&] {
             openCamera();
             EXPECT_EQ(oc.scan(), -1);
           }},
          {"Camera not found; rescan", "oc_open", [&] { failOpen(320, 20000, 1, 1); }},
          {"Unsupported bin or format", "oc_open", [&] { failOpen(320, 20000, 3); }},
          {"Invalid capture dimensions", "oc_open", [&] { failOpen(321); }},
          {"ROI is too small for binning", "oc_open", [&] { failOpen(7); }},
          {"Invalid frame buffer size", "oc_open",
           [&] {
             sdk.forceOutput("ASIGetROIFormat", "width", 0);
             failOpen(320);
           }},
          {"Exposure out of range", "oc_open", [&] { failOpen(320, 0); }},
          {"Exposure out of range", "oc_apply",
           [&] {
             openCamera();
             EXPECT_EQ(oc.apply(std::int64_t{1} << 31, 150, 5), 0);
           }},
          {"Camera closed", "oc_apply", [&] { EXPECT_EQ(oc.apply(20000, 150, 5), 0); }},
          {"Camera closed or buffer too small", "oc_read",
           [&] {
             openCamera();
             EXPECT_EQ(oc.read(frame.data(), oc.buffer_size() - 1, 0), -1);
           }},
      },
      [&] {
        oc.close();
        sdk.clear_faults();
        frame.assign(320 * 202, 0);
      });
}

TEST_F(Messages, OfMissingFunctions) {
  // One SDK per export. It lacks a function that no earlier export needs.
  const SimulatedSdk asi = installWithCamera("ASICamera2", {"ASIGetControlCaps"});
  const SimulatedSdk playerOne = installWithCamera("PlayerOneCamera", {"POAGetImageData"});
  const SimulatedSdk qhy = installWithCamera("qhyccd", {"ScanQHYCCD"});
  const SimulatedSdk toupTek = installWithCamera("toupcam", {"Toupcam_get_FinalSize"});
  const auto missing = [](const char* from, const std::string& message,
                          const std::function<void()>& act) {
    return Provocation{"<library>: missing <function>", from, act, message};
  };
  const auto openCamera = [&](int index) {
    EXPECT_EQ(oc.scan(), 3);
    return open(index);
  };
  expectTableHolds(
      "Functions that an SDK lacks",
      {missing("oc_scan", "qhyccd: missing ScanQHYCCD", [&] { EXPECT_EQ(oc.scan(), 3); }),
       missing("oc_open", "toupcam: missing Toupcam_get_FinalSize",
               [&] { EXPECT_EQ(openCamera(2), 0); }),
       missing("oc_read", "PlayerOneCamera: missing POAGetImageData",
               [&] {
                 EXPECT_EQ(openCamera(1), 1) << error();
                 playerOne.advance_clock(100000);
                 EXPECT_EQ(readFrame(), -1);
               }),
       missing("oc_apply", "ASICamera2: missing ASIGetControlCaps",
               [&] {
                 // If the camera had controls, the open would make this call and fail first.
                 asi.forceOutput("ASIGetNumOfControls", "count", 0);
                 EXPECT_EQ(openCamera(0), 1) << error();
                 asi.clear_faults();
                 EXPECT_EQ(oc.apply(20000, 150, 5), 0);
               })},
      [&] { oc.close(); });
  expectClean(qhy);
  expectClean(toupTek);
}

TEST_F(Messages, OfTheTemperatureNeverReachTheHost) {
  installWithCamera("ASICamera2").forceResult("ASIGetControlValue", 3);
  installWithCamera("PlayerOneCamera").forceResult("POAGetConfig", 3);
  installWithCamera("toupcam").forceResult("Toupcam_get_Temperature", -2147467263);
  const int count = oc.scan();
  EXPECT_EQ(messageRows("Never seen").size(), static_cast<std::size_t>(count));
  for (int camera = 0; camera < count; ++camera) {
    ASSERT_EQ(open(camera), 1) << error();
    EXPECT_TRUE(std::isnan(oc.temperature())) << camera;
    EXPECT_EQ(error(), "") << camera;
  }
}

// A call to fail, and the exports that make it.
struct SpoiltCall {
  const char* label;  // nullptr: the name of the function
  const char* function;
  std::vector<std::string> from;
  int nth = 1;  // which call of the function fails
};

// A message that only one family has, and how its SDK causes it.
struct Sentence {
  const char* text;
  const char* from;
  std::function<void(const SimulatedSdk&)> spoil;
};

struct Family {
  const char* baseName;
  std::vector<SpoiltCall> calls;
  std::vector<Sentence> sentences;
};

std::ostream& operator<<(std::ostream& stream, const Family& family) {
  return stream << family.baseName;
}

class MessagesOf : public Messages, public ::testing::WithParamInterface<Family> {
 protected:
  // Makes the export fail: calls `spoil` right before it.
  void fail(const std::string& from, const std::function<void()>& spoil) {
    if (from != "oc_scan") {
      EXPECT_EQ(oc.scan(), 1) << error();
    }
    if (from == "oc_read" || from == "oc_apply") {
      EXPECT_EQ(open(), 1) << error();
      sdk.advance_clock(100000);
    }
    spoil();
    if (from == "oc_scan") {
      EXPECT_EQ(oc.scan(), 0);
    } else if (from == "oc_open") {
      EXPECT_EQ(open(), 0);
    } else if (from == "oc_read") {
      EXPECT_EQ(readFrame(), -1);
    } else {
      EXPECT_EQ(oc.apply(20000, gain, 5), 0);
    }
  }

  const SdkFamily& family = familyNamed(GetParam().baseName);
  const SimulatedSdk sdk = installWithCamera(GetParam().baseName);
};

TEST_P(MessagesOf, EqualTheTable) {
  const std::int64_t code = family.codes.back();
  std::vector<Provocation> all;
  for (const SpoiltCall& call : GetParam().calls) {
    const std::string label =
        std::string(call.label != nullptr ? call.label : call.function) + ": ";
    for (const std::string& from : call.from) {
      all.push_back(
          {label + "<code>", from,
           [=, this] { fail(from, [&] { sdk.forceResult(call.function, code, call.nth, 1); }); },
           label + std::to_string(code)});
    }
  }
  for (const Sentence& sentence : GetParam().sentences) {
    all.push_back({sentence.text, sentence.from,
                   [=, this] { fail(sentence.from, [&] { sentence.spoil(sdk); }); }});
  }
  if (family.baseName == std::string("toupcam")) {
    for (const char* from : {"oc_open", "oc_apply"}) {
      all.push_back(
          {"ToupTek gain out of range", from, [=, this] { fail(from, [&] { gain = 65536; }); }});
    }
  }
  expectTableHolds(family.maker, all, [&] {
    oc.close();
    sdk.clear_faults();
    gain = 150;
  });
}

const std::vector<std::string> inScan{"oc_scan"};
const std::vector<std::string> inOpen{"oc_open"};
const std::vector<std::string> inRead{"oc_read"};
const std::vector<std::string> inSettings{"oc_open", "oc_apply"};

const Family families[sdkCount] = {
    {"ASICamera2",
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
    {"PlayerOneCamera",
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
    {"qhyccd",
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
       [](const SimulatedSdk& sdk) { sdk.forceOutput("GetQHYCCDLiveFrame", "channels", 3); }}}},
    {"toupcam",
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
       [](const SimulatedSdk& sdk) { sdk.forceOutput("Toupcam_get_RawFormat", "fourCc", 0); }},
      {"Toupcam_Open failed", "oc_open",
       [](const SimulatedSdk& sdk) { sdk.forceResult("Toupcam_Open", 0); }},
      {"ToupTek frame geometry changed", "oc_read",
       [](const SimulatedSdk& sdk) {
         sdk.forceOutput("Toupcam_PullImageWithRowPitch", "width", 8);
       }}}},
};

INSTANTIATE_TEST_SUITE_P(Families, MessagesOf, ::testing::ValuesIn(families),
                         [](const auto& instance) { return std::string(instance.param.baseName); });

}  // namespace
}  // namespace orvane::testing
