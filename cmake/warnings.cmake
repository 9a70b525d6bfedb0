# orvane_warnings: an interface target with the warnings, which are errors, and with the sanitizers, for
# every target of this project.

add_library(orvane_warnings INTERFACE)

if(MSVC)
  target_compile_options(orvane_warnings INTERFACE /W4 /WX /permissive- /utf-8
    # Exceptions may leave our extern "C" functions, for example oc_scan().
    $<$<COMPILE_LANGUAGE:CXX>:/EHs> /Zc:__cplusplus)
  target_compile_definitions(orvane_warnings INTERFACE _CRT_SECURE_NO_WARNINGS NOMINMAX)
else()
  target_compile_options(orvane_warnings INTERFACE
    -Wall -Wextra -Wpedantic -Wconversion -Wshadow -Werror
    # GCC 12 wrongly reports an overlap when a std::string is built from a literal and a string.
    $<$<AND:$<CXX_COMPILER_ID:GNU>,$<VERSION_LESS:$<CXX_COMPILER_VERSION>,13>>:-Wno-restrict>)
endif()

if(MINGW)
  target_compile_definitions(orvane_warnings INTERFACE
    UNICODE _UNICODE NOMINMAX WIN32_LEAN_AND_MEAN _WIN32_WINNT=0x0602)
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
