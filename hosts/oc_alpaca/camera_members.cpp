// The members of the protocol's camera interface, in one table.
#include "oc_alpaca/camera_members.hpp"

#include <algorithm>
#include <cmath>

#include "session/camera_catalogue.hpp"
#include "system/text.hpp"

namespace orvane::host {

namespace {

constexpr std::size_t longestDescription = 64;
constexpr int interfaceVersion = 4;

Json notImplemented(const MemberCall&) {
  throw AlpacaError(ErrorNumber::NotImplemented, "This camera driver does not implement this.");
}

[[noreturn]] void refuseValue(const std::string& text) {
  throw AlpacaError(ErrorNumber::InvalidValue, text);
}

void requireRange(int value, int smallest, int largest) {
  if (value < smallest || value > largest) {
    refuseValue(std::to_string(value) + " is not possible: " + std::to_string(smallest) + " to " +
                std::to_string(largest) + " is.");
  }
}

// Constant answers.
template <auto value>
Json always(const MemberCall&) {
  return value;
}

Json emptyList(const MemberCall&) {
  return Json::array();
}

Json emptyText(const MemberCall&) {
  return "";
}

// One number of the setup.
template <int CaptureSetup::*member>
Json get(const MemberCall& call) {
  return call.camera.setup().*member;
}

template <int CaptureSetup::*member>
Json put(const MemberCall& call) {
  call.camera.setSetup(member, std::get<int>(call.values.front()));
  return {};
}

// The connection.

Json putConnected(const MemberCall& call) {
  if (std::get<bool>(call.values.front())) {
    call.camera.connect();
  } else {
    call.camera.disconnect();
  }
  return {};
}

Json connect(const MemberCall& call) {
  CameraDevice& camera = call.camera;
  if (camera.beginConnect()) {
    call.later([&camera] { camera.finishConnect(); });
  }
  return {};
}

Json disconnect(const MemberCall& call) {
  CameraDevice& camera = call.camera;
  if (camera.beginDisconnect()) {
    call.later([&camera] { camera.finishDisconnect(); });
  }
  return {};
}

Json isConnecting(const MemberCall& call) {
  return call.camera.isConnecting();
}

Json isConnected(const MemberCall& call) {
  return call.camera.isConnected();
}

// What the camera is.

std::string nameOf(const CameraDevice& camera) {
  return std::string(utf8Beginning(camera.camera().name, longestDescription));
}

Json name(const MemberCall& call) {
  return nameOf(call.camera);
}

Json description(const MemberCall& call) {
  const oc::CameraInfo& camera = call.camera.camera();
  const std::string whole =
      camera.name + ", " + dimensionsText(camera.maxWidth, camera.maxHeight) + " pixels";
  return std::string(utf8Beginning(whole, longestDescription));
}

Json driverInfo(const MemberCall&) {
  return "oc_alpaca " ORVANE_VERSION ", for cameras of ZWO, Player One, QHYCCD and ToupTek";
}

Json driverVersion(const MemberCall&) {
  const std::string version = ORVANE_VERSION;
  return version.substr(0, version.rfind('.'));  // two numbers
}

oc::Format formatOf(const MemberCall& call) {
  return call.camera.readoutModes().at(static_cast<std::size_t>(call.camera.setup().readoutMode));
}

enum SensorType { Monochrome = 0, ColourPlanes = 1, BayerPattern2x2 = 2 };

SensorType sensorTypeOf(const MemberCall& call) {
  const oc::Format format = formatOf(call);
  if (format == oc::Format::Rgb24) {
    return ColourPlanes;
  }
  const oc::CameraInfo& camera = call.camera.camera();
  const bool hasPattern = camera.isColor && camera.bayer != oc::Bayer::None;
  return format != oc::Format::Mono8 && hasPattern ? BayerPattern2x2 : Monochrome;
}

Json sensorType(const MemberCall& call) {
  return static_cast<int>(sensorTypeOf(call));
}

template <int RedPixel::*member>
Json bayerOffset(const MemberCall& call) {
  if (sensorTypeOf(call) == Monochrome) {
    throw AlpacaError(ErrorNumber::NotImplemented, "The pictures have no Bayer pattern.");
  }
  return redPixelOf(call.camera.camera().bayer).*member;
}

template <int SensorSize::*member>
Json size(const MemberCall& call) {
  return call.camera.size().*member;
}

Json pixelSize(const MemberCall& call) {
  const double size = call.camera.camera().pixelSizeUm;
  if (!std::isfinite(size)) {
    throw AlpacaError(ErrorNumber::ValueNotSet, "The camera's SDK does not state its pixel size.");
  }
  return size;
}

Json maxAdu(const MemberCall& call) {
  return formatOf(call) == oc::Format::Raw16 ? call.camera.largestSample() : largest8BitSample;
}

// Settings.

int largestBin(const CameraDevice& camera) {
  const std::vector<int>& bins = camera.camera().bins;
  return bins.empty() ? 1 : *std::ranges::max_element(bins);
}

Json maxBin(const MemberCall& call) {
  return largestBin(call.camera);
}

Json putBin(const MemberCall& call) {
  const int bin = std::get<int>(call.values.front());
  const std::vector<int>& bins = call.camera.camera().bins;
  if (std::ranges::find(bins, bin) == bins.end()) {
    refuseValue("The camera has no bin " + std::to_string(bin) + ".");
  }
  return put<&CaptureSetup::bin>(call);
}

// The protocol's gains are numbers of 16 bits.
int as16Bits(int value) {
  return std::clamp(value, -32768, 32767);
}

void requireGains(const CameraDevice& camera) {
  if (!hasGainRange(camera.camera())) {
    throw AlpacaError(ErrorNumber::NotImplemented, "The camera states no range of gains.");
  }
}

template <int oc::CameraInfo::*member>
Json gainLimit(const MemberCall& call) {
  requireGains(call.camera);
  return as16Bits(call.camera.camera().*member);
}

Json gain(const MemberCall& call) {
  requireGains(call.camera);
  return as16Bits(call.camera.setup().gain);
}

Json putGain(const MemberCall& call) {
  const oc::CameraInfo& camera = call.camera.camera();
  requireGains(call.camera);
  requireRange(std::get<int>(call.values.front()), as16Bits(camera.minGain),
               as16Bits(camera.maxGain));
  return put<&CaptureSetup::gain>(call);
}

const OffsetRange& offsetsOf(const CameraDevice& camera) {
  if (!camera.offsets()) {
    throw AlpacaError(ErrorNumber::NotImplemented,
                      "The range of offsets is not known; --offset-range states one.");
  }
  return *camera.offsets();
}

template <int OffsetRange::*member>
Json offsetLimit(const MemberCall& call) {
  return offsetsOf(call.camera).*member;
}

Json offset(const MemberCall& call) {
  offsetsOf(call.camera);
  return call.camera.setup().offset;
}

Json putOffset(const MemberCall& call) {
  const OffsetRange& range = offsetsOf(call.camera);
  requireRange(std::get<int>(call.values.front()), range.smallest, range.largest);
  return put<&CaptureSetup::offset>(call);
}

Json readoutModes(const MemberCall& call) {
  Json names = Json::array();
  for (const oc::Format format : call.camera.readoutModes()) {
    names.push_back(format == oc::Format::Raw16   ? "Raw 16 bit"
                    : format == oc::Format::Raw8  ? "Raw 8 bit"
                    : format == oc::Format::Rgb24 ? "RGB 24 bit"
                                                  : "Mono 8 bit");
  }
  return names;
}

Json putReadoutMode(const MemberCall& call) {
  requireRange(std::get<int>(call.values.front()), 0,
               static_cast<int>(call.camera.readoutModes().size()) - 1);
  return put<&CaptureSetup::readoutMode>(call);
}

// Exposures.

Json exposureMin(const MemberCall& call) {
  return call.camera.shortestExposure();
}

Json exposureMax(const MemberCall& call) {
  return call.camera.longestExposure();
}

Json exposureResolution(const MemberCall&) {
  return 1e-6;
}

Json startExposure(const MemberCall& call) {
  call.camera.startExposure(std::get<double>(call.values.at(0)), std::get<bool>(call.values.at(1)));
  return {};
}

Json abortExposure(const MemberCall& call) {
  call.camera.abortExposure();
  return {};
}

Json cameraState(const MemberCall& call) {
  return static_cast<int>(call.camera.state());
}

Json imageReady(const MemberCall& call) {
  return call.camera.isImageReady();
}

Json percentCompleted(const MemberCall& call) {
  return call.camera.percentCompleted();
}

Json lastExposureDuration(const MemberCall& call) {
  return call.camera.lastExposure().seconds;
}

Json lastExposureStart(const MemberCall& call) {
  return call.camera.lastExposure().start;
}

Json temperature(const MemberCall& call) {
  const std::optional<double> celsius = call.camera.temperature();
  if (!celsius) {
    throw AlpacaError(ErrorNumber::NotImplemented, "The camera states no temperature.");
  }
  return *celsius;
}

Json deviceState(const MemberCall& call) {
  CameraDevice& camera = call.camera;
  Json states = Json::array();
  const auto add = [&states](const char* name, Json value) {
    states.push_back({{"Name", name}, {"Value", std::move(value)}});
  };
  const auto addIfKnown = [&](const char* name, auto value) {
    try {
      add(name, value(call));
    } catch (const AlpacaError&) {
      // What is not known is left out.
    }
  };
  if (camera.isConnected()) {
    addIfKnown("CameraState", cameraState);
    addIfKnown("CCDTemperature", temperature);
    addIfKnown("ImageReady", imageReady);
    add("IsPulseGuiding", false);
    addIfKnown("PercentCompleted", percentCompleted);
  }
  add("TimeStamp", utcText(std::chrono::system_clock::now()).substr(0, 23) + "Z");
  return states;
}

using enum ValueKind;
constexpr auto Get = Verb::Get;
constexpr auto Put = Verb::Put;
constexpr auto Nothing = Needs::Nothing;
constexpr auto Connected = Needs::Connection;
constexpr auto Exposing = Needs::Exposure;
const Json list = Json::array();
const Json none;

const std::vector<Member> table{
    // Members that every kind of device has.
    {"action", Put, Nothing, "", {{"Action", Text}, {"Parameters", Text}}, notImplemented},
    {"commandblind", Put, Nothing, none, {{"Command", Text}, {"Raw", Boolean}}, notImplemented},
    {"commandbool", Put, Nothing, false, {{"Command", Text}, {"Raw", Boolean}}, notImplemented},
    {"commandstring", Put, Nothing, "", {{"Command", Text}, {"Raw", Boolean}}, notImplemented},
    {"connect", Put, Nothing, none, {}, connect},
    {"disconnect", Put, Nothing, none, {}, disconnect},
    {"connecting", Get, Nothing, false, {}, isConnecting},
    {"connected", Get, Nothing, false, {}, isConnected},
    {"connected", Put, Nothing, none, {{"Connected", Boolean}}, putConnected},
    {"description", Get, Nothing, "", {}, description},
    {"devicestate", Get, Nothing, list, {}, deviceState},
    {"driverinfo", Get, Nothing, "", {}, driverInfo},
    {"driverversion", Get, Nothing, "", {}, driverVersion},
    {"interfaceversion", Get, Nothing, 0, {}, always<interfaceVersion>},
    {"name", Get, Nothing, "", {}, name},
    {"supportedactions", Get, Nothing, list, {}, emptyList},
    // What the camera is and can do.
    {"bayeroffsetx", Get, Connected, 0, {}, bayerOffset<&RedPixel::column>},
    {"bayeroffsety", Get, Connected, 0, {}, bayerOffset<&RedPixel::row>},
    {"canabortexposure", Get, Connected, false, {}, always<true>},
    {"canasymmetricbin", Get, Connected, false, {}, always<false>},
    {"canfastreadout", Get, Connected, false, {}, always<false>},
    {"cangetcoolerpower", Get, Connected, false, {}, always<false>},
    {"canpulseguide", Get, Connected, false, {}, always<false>},
    {"cansetccdtemperature", Get, Connected, false, {}, always<false>},
    {"canstopexposure", Get, Connected, false, {}, always<false>},
    {"hasshutter", Get, Connected, false, {}, always<false>},
    {"cameraxsize", Get, Connected, 0, {}, size<&SensorSize::width>},
    {"cameraysize", Get, Connected, 0, {}, size<&SensorSize::height>},
    {"electronsperadu", Get, Connected, 0.0, {}, notImplemented},
    {"exposuremax", Get, Connected, 0.0, {}, exposureMax},
    {"exposuremin", Get, Connected, 0.0, {}, exposureMin},
    {"exposureresolution", Get, Connected, 0.0, {}, exposureResolution},
    {"fullwellcapacity", Get, Connected, 0.0, {}, notImplemented},
    {"maxadu", Get, Connected, 0, {}, maxAdu},
    {"maxbinx", Get, Connected, 0, {}, maxBin},
    {"maxbiny", Get, Connected, 0, {}, maxBin},
    {"pixelsizex", Get, Connected, 0.0, {}, pixelSize},
    {"pixelsizey", Get, Connected, 0.0, {}, pixelSize},
    {"sensorname", Get, Connected, "", {}, emptyText},
    {"sensortype", Get, Connected, 0, {}, sensorType},
    // Cooling, which the library does not control.
    {"ccdtemperature", Get, Connected, 0.0, {}, temperature},
    {"cooleron", Get, Connected, false, {}, notImplemented},
    {"cooleron", Put, Connected, none, {{"CoolerOn", Boolean}}, notImplemented},
    {"coolerpower", Get, Connected, 0.0, {}, notImplemented},
    {"heatsinktemperature", Get, Connected, 0.0, {}, notImplemented},
    {"setccdtemperature", Get, Connected, 0.0, {}, notImplemented},
    {"setccdtemperature", Put, Connected, none, {{"SetCCDTemperature", Real}}, notImplemented},
    // Settings.
    {"binx", Get, Connected, 0, {}, get<&CaptureSetup::bin>},
    {"binx", Put, Connected, none, {{"BinX", Integer}}, putBin},
    {"biny", Get, Connected, 0, {}, get<&CaptureSetup::bin>},
    {"biny", Put, Connected, none, {{"BinY", Integer}}, putBin},
    {"fastreadout", Get, Connected, false, {}, notImplemented},
    {"fastreadout", Put, Connected, none, {{"FastReadout", Boolean}}, notImplemented},
    {"gain", Get, Connected, 0, {}, gain},
    {"gain", Put, Connected, none, {{"Gain", Integer}}, putGain},
    {"gainmax", Get, Connected, 0, {}, gainLimit<&oc::CameraInfo::maxGain>},
    {"gainmin", Get, Connected, 0, {}, gainLimit<&oc::CameraInfo::minGain>},
    {"gains", Get, Connected, list, {}, notImplemented},
    {"numx", Get, Connected, 0, {}, get<&CaptureSetup::width>},
    {"numx", Put, Connected, none, {{"NumX", Integer}}, put<&CaptureSetup::width>},
    {"numy", Get, Connected, 0, {}, get<&CaptureSetup::height>},
    {"numy", Put, Connected, none, {{"NumY", Integer}}, put<&CaptureSetup::height>},
    {"offset", Get, Connected, 0, {}, offset},
    {"offset", Put, Connected, none, {{"Offset", Integer}}, putOffset},
    {"offsetmax", Get, Connected, 0, {}, offsetLimit<&OffsetRange::largest>},
    {"offsetmin", Get, Connected, 0, {}, offsetLimit<&OffsetRange::smallest>},
    {"offsets", Get, Connected, list, {}, notImplemented},
    {"readoutmode", Get, Connected, 0, {}, get<&CaptureSetup::readoutMode>},
    {"readoutmode", Put, Connected, none, {{"ReadoutMode", Integer}}, putReadoutMode},
    {"readoutmodes", Get, Connected, list, {}, readoutModes},
    {"startx", Get, Connected, 0, {}, get<&CaptureSetup::left>},
    {"startx", Put, Connected, none, {{"StartX", Integer}}, put<&CaptureSetup::left>},
    {"starty", Get, Connected, 0, {}, get<&CaptureSetup::top>},
    {"starty", Put, Connected, none, {{"StartY", Integer}}, put<&CaptureSetup::top>},
    {"subexposureduration", Get, Connected, 0.0, {}, notImplemented},
    {"subexposureduration", Put, Connected, none, {{"SubExposureDuration", Real}}, notImplemented},
    // Exposures.
    {"abortexposure", Put, Exposing, none, {}, abortExposure},
    {"camerastate", Get, Nothing, 0, {}, cameraState},
    {"imagearrayvariant", Get, Exposing, list, {}, notImplemented},
    {"imageready", Get, Exposing, false, {}, imageReady},
    {"ispulseguiding", Get, Connected, false, {}, always<false>},
    {"lastexposureduration", Get, Connected, 0.0, {}, lastExposureDuration},
    {"lastexposurestarttime", Get, Connected, "", {}, lastExposureStart},
    {"percentcompleted", Get, Exposing, 0, {}, percentCompleted},
    {"pulseguide",
     Put,
     Connected,
     none,
     {{"Direction", Integer}, {"Duration", Integer}},
     notImplemented},
    {"startexposure", Put, Exposing, none, {{"Duration", Real}, {"Light", Boolean}}, startExposure},
    {"stopexposure", Put, Exposing, none, {}, notImplemented},
};

}  // namespace

std::span<const Member> cameraMembers() {
  return table;
}

const Member* findMember(std::string_view name, Verb verb) {
  const std::span<const Member> members = cameraMembers();
  const auto found = std::ranges::find_if(
      members, [&](const Member& member) { return member.name == name && member.verb == verb; });
  return found == members.end() ? nullptr : &*found;
}

}  // namespace orvane::host
