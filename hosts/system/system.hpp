// What the host programs ask of the operating system, and nothing else. One source file per system.
#pragma once

#include <cstdint>
#include <cstdio>
#include <ctime>
#include <filesystem>
#include <string>
#include <vector>

namespace orvane::host {

/// The program's arguments after its own name, in UTF-8.
std::vector<std::string> commandLineArguments(int argc, char** argv);

/// Lets text that is written in UTF-8 appear as such on a console.
void useUtf8Console();

/// True when this stream is a terminal, on which a line can be written over.
bool isTerminal(std::FILE* stream);

/// From here on Ctrl-C, and being asked to end in any other way, sets stopRequested() in place of
/// ending the program; a second request ends it. Writing to a closed pipe or past a limit on file
/// sizes then fails like any other writing.
void catchStopRequests();

/// True once the user or the system has asked the program to stop.
bool stopRequested();

/// From here on, sleeping for a millisecond takes about that long.
void useFineSleep();

/// The most memory that this process has had in use, in bytes; 0 when the system does not tell.
std::int64_t peakMemory();

/// Calendar time where this computer stands.
std::tm localTime(std::time_t time);

/// Opens a file for reading and writing, emptied if it exists; null with errno set where that
/// fails.
std::FILE* openEmptyFile(const std::filesystem::path& path);

/// Opens a file for reading; null with errno set where that fails.
std::FILE* openExistingFile(const std::filesystem::path& path);

/// Moves to a position that may lie beyond 4 GiB; false with errno set where that fails.
bool seekFile(std::FILE* file, std::int64_t position);

/// Cuts the file off; false with errno set where that fails.
bool truncateFile(std::FILE* file, std::int64_t size);

/// An environment variable in UTF-8; empty where there is none.
std::string environmentVariable(const char* name);

/// Sets an environment variable of this process, for libraries that are loaded later on.
void setEnvironmentVariable(const char* name, const std::string& value);

}  // namespace orvane::host
