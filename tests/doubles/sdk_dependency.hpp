// The library on which the stand-in SDK depends. It returns a number that proves that it was
// called.
#pragma once

#if defined(_WIN32)
#  if defined(stand_in_dependency_EXPORTS)
#    define ORVANE_STAND_IN_API extern "C" __declspec(dllexport)
#  else
#    define ORVANE_STAND_IN_API extern "C" __declspec(dllimport)
#  endif
#else
#  define ORVANE_STAND_IN_API extern "C" __attribute__((visibility("default")))
#endif

/// Always 4711.
ORVANE_STAND_IN_API int numberOfTheDependency();
