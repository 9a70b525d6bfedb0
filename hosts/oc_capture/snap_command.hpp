// "oc_capture snap": one frame of a camera, written into a PNG or FITS file.
#pragma once

#include "oc_capture/command.hpp"

namespace orvane::host {

extern const Command snapCommand;

}  // namespace orvane::host
