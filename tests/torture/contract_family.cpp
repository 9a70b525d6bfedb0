// Shared by the families' contracts.
#include "torture/contract_family.hpp"

#include <algorithm>
#include <stdexcept>

namespace orvane::testing {

const SdkCall& SdkCalls::require(const std::string& function, const std::string& inputs) {
  return did_.call(family_.sdk.baseName, function, inputs);
}

bool SdkCalls::hasFailed(const SdkCall& call) const {
  const bool isHandle = family_.sdk.givesHandle && call.function == family_.sdk.openCall;
  return isHandle ? call.result == "null" : family_.isFailure(call.code());
}

const SdkCall& SdkCalls::checked(const SdkCall& call, const std::string& label) const {
  if (hasFailed(call)) {
    throw std::runtime_error(label + (call.result == "null" ? " failed" : ": " + call.result));
  }
  return call;
}

bool SdkCalls::hasFrame(const SdkCall& call, std::int64_t noFrame, const std::string& label) const {
  if (call.code() == noFrame) {
    return false;
  }
  checked(call, label);
  return true;
}

void SdkCalls::takeGain(const SdkCall& range, ContractCamera& camera, std::size_t position) const {
  if (!hasFailed(range)) {
    camera.minGain = static_cast<int>(range.number(position));
    camera.maxGain = static_cast<int>(range.number(position + 1));
  }
}

void SdkCalls::takeMaxExposure(const SdkCall& range, ContractCamera& camera,
                               std::size_t position) const {
  if (!hasFailed(range)) {
    camera.maxExposureUs = static_cast<std::int64_t>(range.number(position + 1));
  }
}

const SdkCall& SdkCalls::open(const std::string& cameraId) {
  return askFreely(family_.sdk.openCall, cameraId);
}

std::string SdkCalls::deviceOf(const SdkCall& opening) const {
  return family_.sdk.givesHandle ? opening.result : opening.inputs;
}

void SdkCalls::whileOpen(const std::string& cameraId,
                         const std::function<void(SdkCalls& device)>& body) {
  const SdkCall& opening = open(cameraId);
  if (hasFailed(opening)) {
    return;
  }
  SdkCalls device(family_, did_, deviceOf(opening));
  try {
    body(device);
  } catch (const std::exception&) {
    device.close();
    throw;
  }
  device.close();
}

void SdkCalls::close() {
  ask(family_.sdk.closeCall);
}

void Discovery::discoverById(
    SdkCalls& sdk, const char* countCall, const char* propertyCall,
    const std::function<void(const SimCamera&, ContractCamera&)>& complete,
    const std::function<void(SdkCalls& device, ContractCamera&)>& examine) const {
  const std::int64_t count = sdk.ask(countCall).code();
  for (std::int64_t i = 0; i < count; ++i) {
    const std::string name = sdk.checked(sdk.askFreely(propertyCall, i), propertyCall).texts.at(0);
    const SimCamera& model = modelNamed(name);
    ContractCamera camera = cameraNamed(name);
    constexpr int bayers[] = {hostRggb, hostBggr, hostGrbg, hostGbrg};
    const bool hasBayer = camera.isColor && model.bayerPattern >= 0 && model.bayerPattern < 4;
    camera.bayer = hasBayer ? bayers[model.bayerPattern] : hostNoBayer;
    complete(model, camera);
    sdk.whileOpen(camera.id,
                  [&](SdkCalls& device) { swallowing([&] { examine(device, camera); }); });
    add(sdk, camera);
  }
}

const SimCamera& Discovery::modelNamed(const std::string& name) const {
  for (const SimCamera& model : models) {
    if (textOf(model.name) == name) {
      return model;
    }
  }
  throw Violation{"no camera is named " + name};
}

ContractCamera Discovery::cameraNamed(const std::string& name) const {
  const SimCamera& model = modelNamed(name);
  ContractCamera camera;
  camera.id = logged(model.id);
  camera.name = textOf(model.name);
  camera.maxWidth = model.width;
  camera.maxHeight = model.height;
  camera.bitDepth = model.bitDepth;
  camera.pixelSizeUm = model.pixelSizeUm;
  camera.isColor = model.isColor != 0;
  camera.isCooled = model.isCooled != 0;
  camera.isUsb3Camera = model.isUsb3Camera != 0;
  camera.isUsb3Host = model.isUsb3Host != 0;
  return camera;
}

void Discovery::add(SdkCalls& calls, const ContractCamera& camera) const {
  calls.allocate();
  catalogue.push_back(camera);
  catalogue.back().family = family;
}

std::string textOf(const char (&field)[256]) {
  return {field, std::find(field, field + sizeof field, '\0')};
}

}  // namespace orvane::testing
