// The library that the stand-in SDK needs: it knows the one number that shows that it was called.
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
