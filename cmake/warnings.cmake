# orvane_warnings: an interface target with the warnings, all of them errors, and the sanitizers that
# every target of this project is built with.

add_library(orvane_warnings INTERFACE)

if(MSVC)
  target_compile_options(orvane_warnings INTERFACE /W4 /WX /permissive- /utf-8
    # Exceptions may pass our extern "C" functions: oc_scan() documents one.
    $<$<COMPILE_LANGUAGE:CXX>:/EHs> /Zc:__cplusplus)
  target_compile_definitions(orvane_warnings INTERFACE _CRT_SECURE_NO_WARNINGS NOMINMAX)
else()
  target_compile_options(orvane_warnings INTERFACE
    -Wall -Wextra -Wpedantic -Wconversion -Wshadow -Werror
    # GCC 12 sees an overlap in every std::string that is built from a literal and a string.
    $<$<AND:$<CXX_COMPILER_ID:GNU>,$<VERSION_LESS:$<CXX_COMPILER_VERSION>,13>>:-Wno-restrict>)
endif()

if(MINGW)
  target_compile_definitions(orvane_warnings INTERFACE
    UNICODE _UNICODE NOMINMAX WIN32_LEAN_AND_MEAN _WIN32_WINNT=0x0602)
  # One file that runs anywhere: no runtime libraries beside it, no time stamp inside it.
  target_link_options(orvane_warnings INTERFACE -static -Wl,--no-insert-timestamp)
endif()

if(ORVANE_SANITIZE)
  target_compile_options(orvane_warnings INTERFACE
    -fsanitize=address,undefined -fno-sanitize-recover=all -fno-omit-frame-pointer
    # GCC takes the sanitizers' own code for uses of what is not initialised.
    $<$<CXX_COMPILER_ID:GNU>:-Wno-maybe-uninitialized>)
  target_link_options(orvane_warnings INTERFACE -fsanitize=address,undefined)
endif()
