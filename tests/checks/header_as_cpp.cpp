// The public header compiles as C++, and its declarations have exactly the signatures that hosts
// use when they look the functions up by name.
#include "orvane_desktop_camera.h"

#include <cstdint>
#include <type_traits>

static_assert(std::is_same_v<decltype(oc_library_dir), void(const char*)>);
static_assert(std::is_same_v<decltype(oc_scan), int()>);
static_assert(std::is_same_v<decltype(oc_libraries), const char*()>);
static_assert(std::is_same_v<decltype(oc_info), const char*(int)>);
static_assert(
    std::is_same_v<decltype(oc_open), int(int, int, int, int, int, std::int64_t, int, int)>);
static_assert(OC_FORMAT_RAW8 == 0 && OC_FORMAT_RAW16 == 1 && OC_FORMAT_RGB24 == 2 &&
              OC_FORMAT_MONO8 == 3);
static_assert(OC_BAYER_NONE == 0 && OC_BAYER_RGGB == 8 && OC_BAYER_GRBG == 9 &&
              OC_BAYER_GBRG == 10 && OC_BAYER_BGGR == 11);
static_assert(std::is_same_v<decltype(oc_width), int()>);
static_assert(std::is_same_v<decltype(oc_height), int()>);
static_assert(std::is_same_v<decltype(oc_buffer_size), int()>);
static_assert(std::is_same_v<decltype(oc_read), int(std::uint8_t*, int, int)>);
static_assert(std::is_same_v<decltype(oc_apply), int(std::int64_t, int, int)>);
static_assert(std::is_same_v<decltype(oc_temperature), double()>);
static_assert(std::is_same_v<decltype(oc_close), void()>);
static_assert(std::is_same_v<decltype(oc_error), const char*()>);
