#include "core/sdk.hpp"

#include <algorithm>
#include <string>
#include <utility>

#include "core/cabinet.hpp"
#include "core/camera_model.hpp"
#include "core/sdk_exception.hpp"

namespace orvane::sim {

Control* Device::find(int id) {
  const auto found = std::find_if(controls.begin(), controls.end(),
                                  [id](const Control& control) { return control.id == id; });
  return found == controls.end() ? nullptr : &*found;
}

double Device::value(int id) const {
  for (const Control& control : controls) {
    if (control.id == id) {
      return control.value;
    }
  }
  return 0;
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
  settings.isUsb3 = model.isUsb3Camera != 0 && model.isUsb3Host != 0;
  settings.exposureUs = device.value(controls.exposure);
  settings.gain = gainInDecibelSteps(model, device.value(controls.gain));
  settings.pedestal = device.value(controls.offset) / 4096;
  return settings;
}

Sdk& sdk() {
  static Sdk instance;
  // Not by a static object: the lists of functions, which the commands need, are static objects of
  // another file, and may not be complete while this one is initialised.
  static bool isEnvironmentRun = false;
  if (!std::exchange(isEnvironmentRun, true) && !runEnvironment()) {
    instance.isMisconfigured = true;
    instance.setCameras({});
  }
  return instance;
}

void Sdk::reset() {
  clock = Clock();
  faults.clear();
  log.enable(false);
  log.clear();
  seed = 1;
  recording_.close();
  counts = {};
  isSdkInitialised = false;
  isDark = false;
  isTimingReal = false;
  kept_.clear();
  setCameras({});
  for (const char* name : maker.defaultModels) {
    addCamera(modelNamed(name).value());
  }
  hasDefaultCameras_ = true;
}

void Sdk::setCameras(std::span<const SimCamera> models) {
  forgottenHandles_ = handles_.size();
  renderer_.forget();
  enumerated_.clear();
  cameras_.clear();
  hasDefaultCameras_ = false;
  for (const SimCamera& model : models) {
    cameras_.push_back({.index = cameras_.size(), .model = model});
  }
}

void Sdk::addCamera(SimCamera model) {
  if (hasDefaultCameras_) {
    setCameras({});
  }
  setIdentity(model, cameras_.size());
  cameras_.push_back({.index = cameras_.size(), .model = model});
}

Camera* Sdk::camera(std::int64_t index) {
  const bool isThere = index >= 0 && index < static_cast<std::int64_t>(cameras_.size());
  return isThere ? &cameras_[static_cast<std::size_t>(index)] : nullptr;
}

void Sdk::setPlugged(std::int64_t index, Plug plug) {
  if (Camera* found = camera(index)) {
    Device& device = found->device;
    found->isPlugged = plug == Plug::In;
    device.isLost = device.isLost || (device.isOpen && plug == Plug::Out);
    device.isSilent = !device.isLost && device.isOpen && (device.isSilent || plug != Plug::In);
  }
}

std::map<int, double>& Sdk::keptSettings(const SimCamera& model) {
  return kept_[std::string(textOf(model.name))];
}

void Sdk::spend(std::int64_t microseconds) {
  if (isTimingReal) {
    clock.waitUntil(clock.now() + microseconds);
  }
}

std::size_t Sdk::enumerate() {
  enumerated_.clear();
  for (Camera& camera : cameras_) {
    if (camera.isPlugged) {
      enumerated_.push_back(&camera);
    }
  }
  return enumerated_.size();
}

Camera* Sdk::enumerated(std::int64_t position) {
  const bool isThere = position >= 0 && position < static_cast<std::int64_t>(enumerated_.size());
  return isThere ? enumerated_[static_cast<std::size_t>(position)] : nullptr;
}

template <class IsWanted>
Camera* Sdk::firstEnumerated(const IsWanted& isWanted) {
  const auto found = std::find_if(enumerated_.begin(), enumerated_.end(),
                                  [&](const Camera* camera) { return isWanted(camera->model); });
  return found == enumerated_.end() ? nullptr : *found;
}

Camera* Sdk::enumeratedByKey(std::string_view key) {
  return firstEnumerated([&](const SimCamera& model) { return textOf(model.key) == key; });
}

Camera* Sdk::find(std::int32_t id) {
  return firstEnumerated([&](const SimCamera& model) { return model.id == id; });
}

int Sdk::openById(std::int32_t id) {
  Camera* camera = find(id);
  if (camera == nullptr) {
    return static_cast<int>(maker.failures.noCamera);
  }
  if (!camera->isReachable()) {
    return static_cast<int>(maker.failures.unplugged);
  }
  if (camera->model.isBusy != 0) {
    return static_cast<int>(maker.failures.refused);
  }
  if (!camera->device.isOpen) {
    open(*camera);
  }
  return 0;
}

int Sdk::closeById(std::int32_t id) {
  Camera* camera = find(id);
  if (camera == nullptr) {
    return static_cast<int>(maker.failures.noCamera);
  }
  close(*camera);
  return 0;
}

void Sdk::open(Camera& camera) {
  Device& device = camera.device;
  device = {};
  device.isOpen = true;
  maker.setUp(camera);
  std::erase_if(device.controls, [](const Control& control) { return !control.isThere; });
  for (Control& control : device.controls) {
    control.value = control.initial;
  }
  device.cooler.start(clock.now());
  showWholeSensor(camera, 1);
}

void Sdk::close(Camera& camera) {
  camera.device = {};
  renderer_.forget();
}

void Sdk::showWholeSensor(Camera& camera, std::int32_t bin) {
  const auto rounded = [](std::int32_t length, std::int32_t step) {
    return length - length % step;
  };
  camera.device.bin = bin;
  camera.device.region = {0, 0, rounded(binnedWidth(camera.model, bin), maker.widthStep),
                          rounded(binnedHeight(camera.model, bin), maker.heightStep)};
}

void* Sdk::openHandle(Camera& camera) {
  open(camera);
  return &handles_.emplace_back(&camera);
}

bool Sdk::closeHandle(const void* handle) {
  Camera* camera = find(handle);
  if (camera == nullptr) {
    return false;
  }
  close(*camera);
  handles_[forgottenHandles_ + numberOf(handle) - 1] = nullptr;
  return true;
}

Camera* Sdk::find(const void* handle) {
  const std::size_t number = numberOf(handle);
  return number == 0 ? nullptr : handles_[forgottenHandles_ + number - 1];
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

void Sdk::startStream(Camera& camera, bool isSingleFrame) {
  camera.device.stream.start(clock.now(), maker.queue, isSingleFrame, maker.frameSettings(camera));
}

void Sdk::stopStream(Camera& camera) {
  if (!camera.device.stream.isRunning()) {
    ++counts.stopsWithoutStart;
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
  if (camera.device.isSilent) {
    clock.waitUntil(now + std::int64_t{std::max(milliseconds, 0)} * 1000);
    return false;
  }
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
  const Frame* frame = camera.device.isSilent ? nullptr : camera.device.stream.waiting(clock.now());
  return frame == nullptr ? nullptr : &frame->settings;
}

void Sdk::takeFrame(Camera& camera, std::uint8_t* buffer, std::int64_t rowPitch) {
  const std::int64_t now = clock.now();
  const Frame* frame = camera.device.stream.waiting(now);
  render(frame->settings, frame->number, buffer, rowPitch);
  camera.device.stream.take(now);
}

void Sdk::dropFrame(Camera& camera) {
  camera.device.stream.take(clock.now());
}

void Sdk::render(const FrameSettings& settings, std::int64_t frameNumber, std::uint8_t* buffer,
                 std::int64_t rowPitch) {
  const std::int64_t packed = std::int64_t{settings.region.width} * bytesPerPixel(settings.layout);
  const std::int64_t pitch = rowPitch == 0 ? packed : rowPitch;
  if (isDark) {
    renderDark(settings, buffer, pitch);
  } else if (recording_.isOpen()) {
    recording_.render(settings, frameNumber, buffer, pitch);
  } else {
    renderer_.render(seed, settings, frameNumber, buffer, pitch);
  }
}

std::string Sdk::playRecording(const char* path) {
  renderer_.forget();
  if (path == nullptr) {
    recording_.close();
    return "";
  }
  return recording_.open(path);
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
  SimInvariants now = counts;
  now.exceptionsAlive = exceptionsAlive();
  for (const Camera& camera : cameras_) {
    now.devicesOpen += camera.device.isOpen ? 1 : 0;
    now.streamsRunning += camera.device.stream.isRunning() ? 1 : 0;
  }
  return now;
}

}  // namespace orvane::sim
