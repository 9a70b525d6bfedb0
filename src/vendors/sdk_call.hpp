// Calls SDK functions, whichever compiler built the SDK, and lets an SDK's exceptions leave the
// library unchanged.
#pragma once

// The makers build their Windows SDKs with Microsoft's compiler. Code that GCC built cannot catch
// the exceptions of that compiler.
#if defined(__MINGW32__) && !defined(__clang__)
#  include "windows_dll/microsoft_exceptions.hpp"

namespace orvane {

template <class Result, class... Arguments>
Result callSdk(Result (*function)(Arguments...), Arguments... arguments) {
  return callGuarded(function, arguments...);
}

template <class Body>
auto passingSdkExceptions(Body body) {
  return raisingAsItCame(body);
}

}  // namespace orvane

#else

namespace orvane {

/// Calls an SDK's function and returns its result. The SDK's exceptions become C++ exceptions that
/// our code can catch; they derive from std::exception if the original does.
template <class Result, class... Arguments>
Result callSdk(Result (*function)(Arguments...), Arguments... arguments) {
  return function(arguments...);
}

/// Runs the body of an export. An SDK's exception leaves it as the SDK threw it.
template <class Body>
auto passingSdkExceptions(Body body) {
  return body();
}

}  // namespace orvane

#endif
