// "oc_capture play": what a recording holds.
#pragma once

#include "oc_capture/command.hpp"

namespace orvane::host {

extern const Command playCommand;

}  // namespace orvane::host
