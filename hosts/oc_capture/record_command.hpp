// "oc_capture record": a camera's frames, written into a SER file.
#pragma once

#include "oc_capture/command.hpp"

namespace orvane::host {

extern const Command recordCommand;

}  // namespace orvane::host
