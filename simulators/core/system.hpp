// What the simulators need from the operating system: the names of files, the present environment,
// the process, and two ways not to return.
#pragma once

#include <filesystem>
#include <string>

namespace orvane::sim {

// A file's name from its text in UTF-8.
std::filesystem::path pathFromUtf8(const std::string& text);

// An environment variable, in UTF-8; empty if there is none. On Windows it is read from the
// process, because the C library's copy may be out of date.
std::string environmentVariable(const char* name);
void setEnvironmentVariable(const char* name, const std::string& value);

std::string processId();

[[noreturn]] void neverReturn();

// Ends the process as a wild pointer does.
[[noreturn]] void violateAccess();

}  // namespace orvane::sim
