// "oc_capture watch": a camera's temperature and the brightness of its frames.
#pragma once

#include "oc_capture/command.hpp"

namespace orvane::host {

extern const Command watchCommand;

}  // namespace orvane::host
