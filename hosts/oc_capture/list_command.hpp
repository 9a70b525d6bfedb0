// "oc_capture list": what cameras there are, and what each can do.
#pragma once

#include "oc_capture/list_options.hpp"

namespace orvane::host {

/// Writes the list to standard output and what failed during the scan to standard error. Returns
/// the exit status: 1 when something failed, even though there is a list.
int listCameras(const ListCommand& command);

}  // namespace orvane::host
