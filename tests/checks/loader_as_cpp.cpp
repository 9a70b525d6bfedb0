// The loader header compiles as C++, and its members have the types of the functions.
#include "orvane_desktop_camera_loader.h"

#include <type_traits>

static_assert(
    std::is_same_v<decltype(OrvaneDesktopCamera::library_dir), decltype(&oc_library_dir)>);
static_assert(std::is_same_v<decltype(OrvaneDesktopCamera::scan), decltype(&oc_scan)>);
static_assert(std::is_same_v<decltype(OrvaneDesktopCamera::libraries), decltype(&oc_libraries)>);
static_assert(std::is_same_v<decltype(OrvaneDesktopCamera::info), decltype(&oc_info)>);
static_assert(std::is_same_v<decltype(OrvaneDesktopCamera::open), decltype(&oc_open)>);
static_assert(std::is_same_v<decltype(OrvaneDesktopCamera::width), decltype(&oc_width)>);
static_assert(std::is_same_v<decltype(OrvaneDesktopCamera::height), decltype(&oc_height)>);
static_assert(
    std::is_same_v<decltype(OrvaneDesktopCamera::buffer_size), decltype(&oc_buffer_size)>);
static_assert(std::is_same_v<decltype(OrvaneDesktopCamera::read), decltype(&oc_read)>);
static_assert(std::is_same_v<decltype(OrvaneDesktopCamera::apply), decltype(&oc_apply)>);
static_assert(
    std::is_same_v<decltype(OrvaneDesktopCamera::temperature), decltype(&oc_temperature)>);
static_assert(std::is_same_v<decltype(OrvaneDesktopCamera::close), decltype(&oc_close)>);
static_assert(std::is_same_v<decltype(OrvaneDesktopCamera::error), decltype(&oc_error)>);
