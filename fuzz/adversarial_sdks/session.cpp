// One run of the library against adversarial SDKs: calls that a host may make, in any order, with
// checks after each.
#include <cstring>
#include <iterator>
#include <memory>
#include <tuple>

#include "adversarial_sdks/adversary.hpp"
#include "api/state.hpp"
#include "checks.hpp"
#include "orvane_desktop_camera.h"

namespace orvane::fuzz {

namespace {

// Larger frames are not read: writing them takes long and finds nothing more.
constexpr int largestFrame = 1 << 20;
constexpr int maxSteps = 100;

void require(bool holds, const char* rule) {
  adversary().require(holds, rule);
}

void checkText(const char* text, const char* function) {
  adversary().require(text != nullptr, "null text", function);
  if (text != nullptr) {
    // If the text has no terminator, strlen() reads past its end, which the sanitizers report.
    adversary().require(std::strlen(text) < (std::size_t{1} << 24U), "text without an end",
                        function);
  }
}

void checkDescription(int index) {
  const char* const text = oc_info(index);
  checkText(text, "oc_info");
  const std::string description = text;
  const bool exists = index >= 0 && index < static_cast<int>(state.catalogue.size());
  require((description == "{}") != exists, "description of a camera that is not there");
  require(description.front() == '{' && description.back() == '}', "description that is no object");
  for (const char byte : description) {
    require(static_cast<unsigned char>(byte) >= 0x20, "description with control characters");
  }
}

// Checks what must hold after every call.
void checkState() {
  const ActiveCamera& camera = state.active;
  checkText(oc_error(), "oc_error");
  checkText(oc_libraries(), "oc_libraries");
  require(oc_width() == camera.width && oc_height() == camera.height, "sizes are the state's");
  const int size = oc_buffer_size();
  if (camera.openIndex < 0) {
    require(!camera.streaming && camera.handle == nullptr && size == 0, "closed is not closed");
    require(adversary().openDevices() == 0, "a device stays open");
  } else {
    require(camera.streaming, "open and not streaming");
    require(size >= 1 && size <= 1 << 30, "buffer size out of range");
    require(adversary().openDevices() <= 1, "two devices are open");
  }
  require(adversary().runningStreams() <= 1, "two streams run");
}

void checkFailed(const char* rule) {
  require(oc_error()[0] != '\0', rule);
}

void scan() {
  const bool wasOpen = state.active.openIndex >= 0;
  const int count = oc_scan();
  if (wasOpen) {
    require(count == -1, "scan while a camera is open");
    checkFailed("refused scan without a message");
    return;
  }
  require(count == static_cast<int>(state.catalogue.size()), "count is not the catalogue's size");
  checkDescription(-1);
  checkDescription(count);
  for (int i = 0; i < std::min(count, 16); ++i) {
    checkDescription(i);
  }
}

// In the order of oc_open().
using OpenArguments = std::tuple<int, int, int, int, int, std::int64_t, int, int>;

void open(const OpenArguments& arguments) {
  const int opened = std::apply(oc_open, arguments);
  require(opened == 0 || opened == 1, "result of oc_open");
  require((opened == 1) == (state.active.openIndex >= 0), "open against its result");
  if (opened == 0) {
    checkFailed("failed open without a message");
  } else {
    require(state.active.openIndex == std::get<0>(arguments), "another camera was opened");
  }
}

std::int64_t anyExposure() {
  Input& input = adversary().input;
  return adversary().isSound() ? 1 + input.byte() * 1000
                               : static_cast<std::int64_t>(input.longWord());
}

void openAnything() {
  Input& input = adversary().input;
  // Braces evaluate their contents in order, so a run is the same with every compiler.
  open({input.number(), input.number(), input.number(), input.number(), input.number(),
        anyExposure(), input.number(), input.number()});
}

// Opens with arguments that the camera supports.
void openOffered() {
  Input& input = adversary().input;
  if (state.catalogue.empty()) {
    open({0, 1, 1, 1, 0, 1, 0, 0});
    return;
  }
  const auto index = input.byte() % state.catalogue.size();
  const CameraInfo& camera = state.catalogue[index];
  const auto pick = [&](const std::vector<std::int32_t>& list) {
    return list.empty() ? 0 : list[input.byte() % list.size()];
  };
  const int bin = pick(camera.bins);
  const int format = pick(camera.formats);
  const int width = adversary().isSound() ? camera.maxWidth : input.number();
  const int height = adversary().isSound() ? camera.maxHeight : input.number();
  open({static_cast<int>(index), width, height, bin, format, anyExposure(), input.number(),
        input.number()});
}

void read() {
  Input& input = adversary().input;
  const int size = oc_buffer_size();
  if (size > largestFrame) {
    return;
  }
  // Usually exactly the required size, sometimes a little larger.
  const int length = size + (adversary().isSound() ? 0 : input.byte());
  const auto buffer = std::make_unique<std::uint8_t[]>(static_cast<std::size_t>(length));
  const int result = oc_read(buffer.get(), length, input.number());
  require(result >= -1 && result <= size, "result of oc_read");
  if (result < 0) {
    checkFailed("failed read without a message");
  }
  require(size > 0 || result == -1, "frame of no camera");
}

void readWithABadBuffer() {
  const int size = oc_buffer_size();
  std::uint8_t byte = 0;
  require(oc_read(nullptr, size, 0) == -1, "read into nowhere");
  if (size > 0) {
    require(oc_read(&byte, size - 1, 0) == -1, "read into a short buffer");
  }
  require(oc_read(&byte, -1, 0) == -1, "read into a buffer of negative length");
  require(byte == 0, "refused read wrote");
}

void apply() {
  Input& input = adversary().input;
  const bool isOpen = state.active.streaming;
  const std::int64_t exposureUs = anyExposure();
  const int gain = input.number();
  const int applied = oc_apply(exposureUs, gain, input.number());
  require(applied == 0 || (applied == 1 && isOpen), "result of oc_apply");
  if (applied == 0) {
    checkFailed("failed apply without a message");
  }
}

void readTemperature() {
  static_cast<void>(oc_temperature());
}

void describeAnything() {
  checkDescription(adversary().input.number());
}

void setDirectory() {
  constexpr const char* directories[] = {"sdk", "", "\xff\xfe", "C:", nullptr};
  oc_library_dir(directories[adversary().input.byte() % std::size(directories)]);
}

// Removes a function from an SDK, or restores all of its functions.
void changeFunctions() {
  Input& input = adversary().input;
  Sdk& sdk = adversary().sdks[input.byte() % vendorCount];
  const std::uint8_t choice = input.byte();
  if (choice % 4 == 0) {
    sdk.script->missing.clear();
    return;
  }
  const auto& functions = sdk.script->functions;
  const auto offset = static_cast<std::ptrdiff_t>(choice % functions.size());
  sdk.script->missing.insert(std::next(functions.begin(), offset)->first);
}

void loadOrNot() {
  adversary().sdks[adversary().input.byte() % vendorCount].script->canLoad ^= true;
}

// A step that stands here more often is taken more often.
constexpr void (*steps[])() = {scan,
                               scan,
                               openOffered,
                               openOffered,
                               openOffered,
                               openOffered,
                               openOffered,
                               openAnything,
                               read,
                               read,
                               read,
                               read,
                               readWithABadBuffer,
                               apply,
                               apply,
                               readTemperature,
                               readTemperature,
                               oc_close,
                               oc_close,
                               describeAnything,
                               setDirectory,
                               changeFunctions,
                               changeFunctions,
                               loadOrNot};

}  // namespace

std::vector<std::string> runSession(std::span<const std::uint8_t> bytes) {
  adversary().begin(bytes);
  state = LibraryState{};
  const std::uint8_t setting = adversary().input.byte();
  for (std::size_t i = 0; i < vendorCount; ++i) {
    adversary().sdks[i].script->canLoad = (setting >> i & 1U) == 0;
  }
  adversary().qhyResourceResult = (setting & 0x10U) != 0 ? 0xFFFFFFFF : 0;

  scan();
  checkState();
  for (int i = 0; i < maxSteps && !adversary().input.empty(); ++i) {
    steps[adversary().input.byte() % std::size(steps)]();
    checkState();
  }
  oc_close();
  checkState();
  require(state.active.openIndex == -1, "close left the camera open");
  return adversary().violations;
}

}  // namespace orvane::fuzz
