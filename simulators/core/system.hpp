// What the simulators ask of the operating system: files by their names in UTF-8, and the
// environment as it is now.
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

// Opens a file; the mode is that of fopen(). Null where that fails.
File openFile(const std::string& path, const char* mode);

// The size of a file; -1 where that cannot be told, as of a pipe.
std::int64_t sizeOf(std::FILE* file);

// Moves to a position, which may lie beyond 4 GiB.
bool seek(std::FILE* file, std::int64_t position);

// An environment variable, in UTF-8; empty where there is none. Windows: what the process has now,
// not what the C library once copied.
std::string environmentVariable(const char* name);

}  // namespace orvane::sim
