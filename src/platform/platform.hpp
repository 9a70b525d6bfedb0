// The four operations that are asked of an operating system, and nothing else. One source file per
// system implements them; tests put a scripted one in its place at link time.
#pragma once

#include <string>
#include <string_view>

namespace orvane::platform {

/// The unit of a path and of a wide display name as the system's own functions take them.
#ifdef _WIN32
using NativeChar = wchar_t;
#else
using NativeChar = char;
#endif
using NativeString = std::basic_string<NativeChar>;

/// A loaded library; null is none.
using Module = void*;

/// The address of a function of unknown type: cast it to the function's own type before the call.
using FunctionAddress = void (*)();

/// The full path of the library with the given base name: the directory joined with the name that
/// the system gives to such a library ("sdk" is sdk.dll or libsdk.so). An empty directory gives the
/// bare file name.
///
/// Windows reads the directory as UTF-8 and throws std::system_error with the Windows error code
/// where it is not valid. Elsewhere a path is bytes, and every path is valid.
NativeString libraryPath(std::string_view directory, std::string_view baseName);

/// Loads the library, which then stays loaded until the process ends. Null where that fails, for
/// whatever reason. What the library itself needs is looked for beside it and in the system's own
/// directories, on Windows never in the current directory or on PATH.
Module loadLibrary(const NativeString& path) noexcept;

/// The exported function of this name in a loaded library, or null.
FunctionAddress findFunction(Module library, const char* name) noexcept;

/// A NUL-terminated display name as UTF-8; what cannot be converted becomes U+FFFD. Empty where the
/// conversion yields nothing.
std::string utf8FromDisplayName(const NativeChar* text);

}  // namespace orvane::platform
