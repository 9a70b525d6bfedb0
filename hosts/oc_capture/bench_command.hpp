// "oc_capture bench": how fast cameras deliver.
#pragma once

#include "oc_capture/command.hpp"

namespace orvane::host {

extern const Command benchCommand;

}  // namespace orvane::host
