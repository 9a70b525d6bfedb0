// The C++ header compiles by itself, and its constants equal those of the C header.
#include "orvane_desktop_camera.hpp"

#include <type_traits>

static_assert(static_cast<int>(oc::Format::Raw8) == OC_FORMAT_RAW8);
static_assert(static_cast<int>(oc::Bayer::Bggr) == OC_BAYER_BGGR);
static_assert(!std::is_copy_constructible_v<oc::Camera>);
static_assert(std::is_copy_constructible_v<oc::Frame>);
static_assert(!std::is_copy_constructible_v<oc::FrameQueue>);
static_assert(std::is_nothrow_move_constructible_v<oc::FrameQueue>);
static_assert(!std::is_copy_constructible_v<oc::CaptureThread>);
