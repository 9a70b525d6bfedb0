# orvane_warnings: an interface target with the warnings, which are errors, and with the sanitizers, for
# every target of this project; and how the runtime libraries are linked.

add_library(orvane_warnings INTERFACE)
option(ORVANE_WARNINGS_ARE_ERRORS "Fail on a compiler's warning" ON)

if(MSVC)
  # A program that ships the library needs no installer of Microsoft's runtime.
  set(CMAKE_MSVC_RUNTIME_LIBRARY "MultiThreaded$<$<CONFIG:Debug>:Debug>")
  target_compile_options(orvane_warnings INTERFACE /W4 /permissive- /utf-8
    # Exceptions may leave our extern "C" functions, for example oc_scan(). CMake's own /EHsc denies it.
    $<$<COMPILE_LANGUAGE:CXX>:/EHs> $<$<COMPILE_LANGUAGE:CXX>:/EHc-> /Zc:__cplusplus
    $<$<BOOL:${ORVANE_WARNINGS_ARE_ERRORS}>:/WX>)
  target_compile_definitions(orvane_warnings INTERFACE
    _CRT_SECURE_NO_WARNINGS _CRT_NONSTDC_NO_WARNINGS)
else()
  target_compile_options(orvane_warnings INTERFACE
    -Wall -Wextra -Wpedantic -Wconversion -Wshadow
    $<$<BOOL:${ORVANE_WARNINGS_ARE_ERRORS}>:-Werror>
    # GCC 12 wrongly reports an overlap when a std::string is built from a literal and a string.
    $<$<AND:$<CXX_COMPILER_ID:GNU>,$<VERSION_LESS:$<CXX_COMPILER_VERSION>,13>>:-Wno-restrict>)
endif()

if(WIN32)
  target_compile_definitions(orvane_warnings INTERFACE
    UNICODE _UNICODE NOMINMAX WIN32_LEAN_AND_MEAN _WIN32_WINNT=0x0602)
endif()
if(MINGW)
  # Link the runtime libraries statically, and write no time stamp, for reproducible builds.
  target_link_options(orvane_warnings INTERFACE -static -Wl,--no-insert-timestamp)
endif()

if(ORVANE_SANITIZE)
  target_compile_options(orvane_warnings INTERFACE
    -fsanitize=address,undefined -fno-sanitize-recover=all -fno-omit-frame-pointer
    # With sanitizers GCC wrongly reports uninitialised variables.
    $<$<CXX_COMPILER_ID:GNU>:-Wno-maybe-uninitialized>)
  target_link_options(orvane_warnings INTERFACE -fsanitize=address,undefined)
endif()
