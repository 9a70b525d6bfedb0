// "oc_capture bench": how fast cameras deliver.
#pragma once

#include "oc_capture/bench_options.hpp"

namespace orvane::host {

/// Measures one camera after another and tells about it on standard output. A camera that fails is
/// told about, and the others are measured all the same. Returns the exit status: 1 when one has
/// failed.
///
/// Throws UsageError when a camera cannot do what is asked, CameraError when there is none, and
/// std::runtime_error when the chart cannot be written.
int bench(const BenchCommand& command);

}  // namespace orvane::host
