// "oc_capture doctor": whether the makers' SDKs are there, load, and have all that is needed.
#pragma once

#include "oc_capture/command.hpp"

namespace orvane::host {

extern const Command doctorCommand;

}  // namespace orvane::host
