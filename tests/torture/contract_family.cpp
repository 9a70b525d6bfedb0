// Shared by the families' contracts.
#include "torture/contract_family.hpp"

#include <algorithm>
#include <stdexcept>

namespace orvane::testing {

const SdkCall& SdkCalls::ask(const std::string& function, Inputs inputs) {
  return did_.call(family_.sdk.baseName, function, inputs);
}

const SdkCall& SdkCalls::askFreely(const std::string& function, Inputs inputs) {
  allocate();
  return ask(function, inputs);
}

const SdkCall& SdkCalls::open(const std::string& cameraId) {
  return askFreely(family_.sdk.openCall, {cameraId});
}

const SdkCall& SdkCalls::demandAs(const std::string& label, const std::string& function,
                                  Inputs inputs) {
  return checked(ask(function, inputs), label);
}

bool SdkCalls::hasFailed(const SdkCall& call) const {
  return family_.isFailure(call.code());
}

const SdkCall& SdkCalls::checked(const SdkCall& call, const std::string& label) const {
  if (hasFailed(call)) {
    throw std::runtime_error(label + ": " + std::to_string(call.code()));
  }
  return call;
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

void SdkCalls::whileOpen(const std::string& cameraId,
                         const std::function<void(const std::string& handle)>& body) {
  const std::string handle = open(cameraId).result;
  if (handle == "null") {
    return;
  }
  try {
    body(handle);
  } catch (const std::exception&) {
    close(handle);
    throw;
  }
  close(handle);
}

void SdkCalls::close(const std::string& device) {
  ask(family_.sdk.closeCall, {device});
}

void Discovery::discoverById(SdkCalls& calls, const char* countCall, const char* propertyCall,
                             const std::function<void(const SimCamera&, ContractCamera&)>& complete,
                             const std::function<void(ContractCamera&)>& examine) const {
  const std::int64_t count = calls.ask(countCall, {}).code();
  for (std::int64_t i = 0; i < count; ++i) {
    const SdkCall& property =
        calls.checked(calls.askFreely(propertyCall, {logged(i)}), propertyCall);
    const SimCamera& model = modelNamed(property.texts.at(0));
    ContractCamera camera = cameraNamed(property.texts.at(0));
    constexpr int bayers[] = {hostRggb, hostBggr, hostGrbg, hostGbrg};
    const bool hasBayer = camera.isColor && model.bayerPattern >= 0 && model.bayerPattern < 4;
    camera.bayer = hasBayer ? bayers[model.bayerPattern] : hostNoBayer;
    complete(model, camera);
    if (!calls.hasFailed(calls.open(camera.id))) {
      swallowing([&] { examine(camera); });
      calls.close(camera.id);
    }
    add(calls, camera);
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
  camera.id = logged(std::int64_t{model.id});
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
