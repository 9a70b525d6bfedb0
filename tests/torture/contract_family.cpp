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

void SdkCalls::refuse(const char* message) {
  allocate();
  throw std::runtime_error(message);
}

void SdkCalls::close(const std::string& device) {
  ask(family_.sdk.closeCall, {device});
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

int bayerOfNumber(int number) {
  constexpr int codes[] = {hostRggb, hostBggr, hostGrbg, hostGbrg};
  return number >= 0 && number < 4 ? codes[number] : hostNoBayer;
}

}  // namespace orvane::testing
