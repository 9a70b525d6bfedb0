#include "core/sdk.hpp"

#include <algorithm>
#include <cstdio>
#include <string>
#include <utility>

#include "core/camera_model.hpp"
#include "core/sdk_exception.hpp"

namespace orvane::sim {

Control* Device::find(int id) {
  const auto found = std::find_if(controls.begin(), controls.end(),
                                  [id](const Control& control) { return control.id == id; });
  return found == controls.end() ? nullptr : &*found;
}

double Device::value(int id, double otherwise) const {
  const auto found = std::find_if(controls.begin(), controls.end(),
                                  [id](const Control& control) { return control.id == id; });
  return found == controls.end() ? otherwise : found->value;
}

FrameSettings commonSettings(const Camera& camera, BayerPattern ofColorCamera,
                             const PictureControls& controls) {
  const SimCamera& model = camera.model;
  const Device& device = camera.device;
  FrameSettings settings;
  settings.camera = camera.index;
  settings.sensorWidth = model.width;
  settings.sensorHeight = model.height;
  settings.bayerPattern = model.isColor != 0 ? ofColorCamera : BayerPattern::None;
  settings.bin = device.bin;
  settings.region = device.region;
  settings.bitDepth = std::clamp(model.bitDepth, 8, 16);
  settings.isUsb3 = model.isUsb3Host != 0;
  settings.exposureUs = device.value(controls.exposure, 0);
  settings.gain = gainInDecibelSteps(model, device.value(controls.gain, 0));
  settings.pedestal = device.value(controls.offset, 0) / 4096;
  return settings;
}

Sdk& sdk() {
  static Sdk instance;
  return instance;
}

void Sdk::reset() {
  clock = Clock();
  faults.clear();
  log.enable(false);
  log.clear();
  seed_ = 1;
  recording_.close();
  counts_ = {};
  isSdkInitialised = false;
  setCameras(maker.cameras);
}

void Sdk::setCameras(std::span<const SimCamera> models) {
  forgetDevices();
  enumerated_.clear();
  cameras_.clear();
  for (const SimCamera& model : models) {
    Camera camera;
    camera.index = cameras_.size();
    camera.model = model;
    cameras_.push_back(std::move(camera));
  }
}

Camera* Sdk::camera(std::int64_t index) {
  const bool isThere = index >= 0 && index < static_cast<std::int64_t>(cameras_.size());
  return isThere ? &cameras_[static_cast<std::size_t>(index)] : nullptr;
}

void Sdk::setPlugged(std::int64_t index, bool plugged) {
  if (Camera* found = camera(index)) {
    found->isPlugged = plugged;
    found->device.isLost = found->device.isLost || (found->device.isOpen && !plugged);
  }
}

void Sdk::enumerate() {
  enumerated_.clear();
  for (const Camera& camera : cameras_) {
    if (camera.isPlugged) {
      enumerated_.push_back(camera.index);
    }
  }
}

Camera* Sdk::enumerated(std::int64_t position) {
  const bool isThere = position >= 0 && position < static_cast<std::int64_t>(enumerated_.size());
  return isThere ? &cameras_[enumerated_[static_cast<std::size_t>(position)]] : nullptr;
}

Camera* Sdk::enumeratedById(std::int32_t cameraId) {
  const auto found = std::find_if(enumerated_.begin(), enumerated_.end(), [&](std::size_t index) {
    return cameras_[index].model.id == cameraId;
  });
  return found == enumerated_.end() ? nullptr : &cameras_[*found];
}

Camera* Sdk::enumeratedByKey(std::string_view key) {
  const auto found = std::find_if(enumerated_.begin(), enumerated_.end(), [&](std::size_t index) {
    return textOf(cameras_[index].model.key) == key;
  });
  return found == enumerated_.end() ? nullptr : &cameras_[*found];
}

void Sdk::open(Camera& camera, std::vector<Control> controls) {
  camera.device = {};
  camera.device.isOpen = true;
  for (Control& control : controls) {
    control.value = control.initial;
  }
  camera.device.controls = std::move(controls);
  camera.device.cooler.start(clock.now());
}

void Sdk::close(Camera& camera) {
  camera.device = {};
  renderer_.forget();
}

void* Sdk::makeHandle(const Camera& camera) {
  return &handles_.emplace_back(Handle{camera.index, true});
}

void Sdk::endHandle(void* handle) {
  if (Handle* found = find(handle)) {
    found->isOpen = false;
  }
}

Camera* Sdk::cameraOf(const void* handle) {
  const Handle* found = find(handle);
  return found != nullptr && found->isOpen ? &cameras_[found->camera] : nullptr;
}

Sdk::Handle* Sdk::find(const void* handle) {
  const std::size_t number = numberOf(handle);
  return number == 0 ? nullptr : &handles_[forgottenHandles_ + number - 1];
}

std::size_t Sdk::numberOf(const void* handle) const {
  // Backwards, because the handle is nearly always the last one.
  for (std::size_t i = handles_.size(); i > forgottenHandles_; --i) {
    if (&handles_[i - 1] == handle) {
      return i - forgottenHandles_;
    }
  }
  return 0;
}

void Sdk::forgetDevices() {
  forgottenHandles_ = handles_.size();
  renderer_.forget();
}

void Sdk::startStream(Camera& camera, bool isSingleFrame) {
  camera.device.stream.start(clock.now(), maker.queue, isSingleFrame, maker.frameSettings(camera));
}

void Sdk::stopStream(Camera& camera) {
  if (!camera.device.stream.isRunning()) {
    ++counts_.stopsWithoutStart;
  }
  camera.device.stream.stop();
}

void Sdk::changed(Camera& camera) {
  camera.device.stream.change(clock.now(), maker.frameSettings(camera));
}

void Sdk::restartFrame(Camera& camera) {
  camera.device.stream.restartFrame(clock.now(), maker.frameSettings(camera));
}

bool Sdk::waitForFrame(Camera& camera, std::int32_t milliseconds) {
  FrameStream& stream = camera.device.stream;
  const std::int64_t now = clock.now();
  if (stream.waiting(now) != nullptr) {
    return true;
  }
  const std::optional<std::int64_t> completion = stream.nextCompletion();
  if (!completion) {
    return false;
  }
  const std::int64_t deadline = now + std::int64_t{milliseconds} * 1000;
  const bool isInTime = milliseconds < 0 || *completion <= deadline;
  clock.waitUntil(isInTime ? *completion : deadline);
  return stream.waiting(clock.now()) != nullptr;
}

const FrameSettings* Sdk::waitingFrame(Camera& camera) {
  const Frame* frame = camera.device.stream.waiting(clock.now());
  return frame == nullptr ? nullptr : &frame->settings;
}

void Sdk::takeFrame(Camera& camera, std::uint8_t* buffer, std::int64_t rowPitch) {
  const std::int64_t now = clock.now();
  const Frame* frame = camera.device.stream.waiting(now);
  render(frame->settings, frame->number, buffer, rowPitch);
  camera.device.stream.take(now);
}

void Sdk::render(const FrameSettings& settings, std::int64_t frameNumber, std::uint8_t* buffer,
                 std::int64_t rowPitch) {
  const std::int64_t packed = std::int64_t{settings.region.width} * bytesPerPixel(settings.layout);
  const std::int64_t pitch = rowPitch == 0 ? packed : rowPitch;
  if (recording_.isOpen()) {
    recording_.render(settings, frameNumber, buffer, pitch);
  } else {
    renderer_.render(seed_, settings, frameNumber, buffer, pitch);
  }
}

bool Sdk::playRecording(const char* path) {
  renderer_.forget();
  if (path == nullptr) {
    recording_.close();
    return true;
  }
  const std::string problem = recording_.open(path);
  if (!problem.empty()) {
    static_cast<void>(std::fprintf(stderr, "%s: \"%s\" cannot be played: %s\n", maker.sdkName, path,
                                   problem.c_str()));
  }
  return problem.empty();
}

std::int32_t Sdk::renderFrame(std::int32_t frame, std::uint8_t* buffer, std::int32_t bufferLength) {
  const auto streaming = std::find_if(cameras_.begin(), cameras_.end(), [](const Camera& camera) {
    return camera.device.stream.isRunning();
  });
  if (streaming == cameras_.end() || buffer == nullptr) {
    return 0;
  }
  const FrameSettings settings = maker.frameSettings(*streaming);
  const std::int64_t length = frameBytes(settings);
  if (length > bufferLength) {
    return 0;
  }
  render(settings, frame, buffer, 0);
  return static_cast<std::int32_t>(length);
}

SimInvariants Sdk::invariants() const {
  SimInvariants now = counts_;
  now.exceptionsAlive = exceptionsAlive();
  for (const Camera& camera : cameras_) {
    now.devicesOpen += camera.device.isOpen ? 1 : 0;
    now.streamsRunning += camera.device.stream.isRunning() ? 1 : 0;
  }
  return now;
}

}  // namespace orvane::sim
