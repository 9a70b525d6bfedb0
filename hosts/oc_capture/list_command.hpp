// "oc_capture list": the cameras that are there, and what each can do.
#pragma once

#include "oc_capture/command.hpp"

namespace orvane::host {

extern const Command listCommand;

}  // namespace orvane::host
