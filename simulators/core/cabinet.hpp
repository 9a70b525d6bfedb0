// The models of all simulated SDKs, which are the lines of simulators/cameras.csv.
#pragma once

#include <cstddef>
#include <optional>
#include <span>
#include <string>
#include <string_view>

#include "simulator_control.h"

namespace orvane::sim {

// The lines of the table, without its comments and its head. In the file that is made from it.
extern const std::span<const std::string_view> cabinetLines;

// The model of this SDK with this name.
std::optional<SimCamera> modelNamed(std::string_view name);

// Whether any SDK has a model with this name.
bool isModel(std::string_view name);

// Sets the id and the key of an SDK's camera, for which no other camera has this number.
void setIdentity(SimCamera& camera, std::size_t number);

// The models of this SDK, as sim_cabinet() returns them.
std::string cabinetText();

}  // namespace orvane::sim
