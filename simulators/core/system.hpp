// What the simulators need from the operating system: files by their names in UTF-8, and the
// present environment.
#pragma once

#include <cstdint>
#include <cstdio>
#include <memory>
#include <string>

namespace orvane::sim {

struct FileCloser {
  void operator()(std::FILE* file) const { static_cast<void>(std::fclose(file)); }
};
using File = std::unique_ptr<std::FILE, FileCloser>;

// Opens a file; the mode is that of fopen(). Returns null on failure.
File openFile(const std::string& path, const char* mode);

// The size of a file; -1 if it is unknown, as for a pipe.
std::int64_t sizeOf(std::FILE* file);

// Moves to a position, which may lie beyond 4 GiB.
bool seek(std::FILE* file, std::int64_t position);

// An environment variable, in UTF-8; empty if there is none. On Windows it is read from the
// process, because the C library's copy may be out of date.
std::string environmentVariable(const char* name);

}  // namespace orvane::sim
