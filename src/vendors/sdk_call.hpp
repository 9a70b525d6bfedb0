// Calling an SDK's function, whichever compiler built the SDK, and letting its exceptions leave the
// library as they came.
#pragma once

// The makers build their SDKs for Windows with Microsoft's compiler. GCC's code does not see the
// exceptions of that compiler's.
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

/// Calls an SDK's function and returns what it returns. An exception of the SDK's arrives as a C++
/// exception: one that derives from std::exception as such, any other as one that does not.
template <class Result, class... Arguments>
Result callSdk(Result (*function)(Arguments...), Arguments... arguments) {
  return function(arguments...);
}

/// Runs the body of an export. An SDK's exception that leaves it leaves as the SDK threw it.
template <class Body>
auto passingSdkExceptions(Body body) {
  return body();
}

}  // namespace orvane

#endif
