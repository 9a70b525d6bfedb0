// The four operations that the library needs from an operating system. Each system has a source
// file that implements them; unit tests link a scripted implementation instead.
#pragma once

#include <string>
#include <string_view>

namespace orvane::platform {

/// The character type that the system's functions use for paths and display names.
#ifdef _WIN32
using NativeChar = wchar_t;
#else
using NativeChar = char;
#endif
using NativeString = std::basic_string<NativeChar>;

/// A loaded library, or null.
using Module = void*;

/// The address of a function. Cast it to the function's real type before the call.
using FunctionAddress = void (*)();

/// The full path of a library: the directory joined with the system's file name for the base name
/// ("sdk" becomes sdk.dll or libsdk.so). An empty directory gives the bare file name.
///
/// On Windows the directory is UTF-8; if it is not valid, throws std::system_error with the Windows
/// error code. On other systems a path is bytes, and every path is valid.
NativeString libraryPath(std::string_view directory, std::string_view baseName);

/// Loads the library, which then stays loaded until the process ends. Returns null on any failure.
/// The libraries that it depends on are searched for beside it and in the system's directories, on
/// Windows never in the current directory or on PATH.
Module loadLibrary(const NativeString& path) noexcept;

/// Looks up an exported function in a loaded library. Returns null if there is none.
FunctionAddress findFunction(Module library, const char* name) noexcept;

/// A NUL-terminated display name as UTF-8. Characters that cannot be converted become U+FFFD. Empty
/// if the conversion yields nothing.
std::string utf8FromDisplayName(const NativeChar* text);

}  // namespace orvane::platform
