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

/// Makes a console show text as UTF-8.
void useUtf8Console();

/// True when this stream is a terminal, on which a line can be overwritten.
bool isTerminal(std::FILE* stream);

/// From now on Ctrl-C, or any other request to end the program, only sets stopRequested(). A second
/// request ends the program. Writing to a closed pipe, or beyond a limit on file sizes, becomes an
/// ordinary failure.
void catchStopRequests();

/// True once the user or the system has asked the program to stop.
bool stopRequested();

/// From now on, sleeping for a millisecond takes about that long.
void useFineSleep();

/// Whether Windows must not put the computer to sleep because nobody touches it. Counts for this
/// thread and as long as it runs. Does nothing on Linux.
void stayAwake(bool isWanted);

/// Keeps the computer awake as long as it exists. It ends on the thread on which it began.
class StaysAwake {
 public:
  StaysAwake() { stayAwake(true); }
  StaysAwake(const StaysAwake&) = delete;
  StaysAwake& operator=(const StaysAwake&) = delete;
  ~StaysAwake() { stayAwake(false); }
};

/// The peak memory use of this process in bytes; 0 when the system does not tell.
std::int64_t peakMemory();

/// Calendar time in this computer's time zone.
std::tm localTime(std::time_t time);

/// std::fopen(); null with errno set on failure.
std::FILE* openFile(const std::filesystem::path& path, const std::string& mode);

/// Opens a file for reading and writing, and creates it if it is missing. Nobody else can open it
/// in this way until it is closed. Null with errno set on failure, EBUSY if somebody else has it
/// open.
std::FILE* openFileToWrite(const std::filesystem::path& path);

/// True while somebody has the file open by openFileToWrite(), under this name or an earlier one.
bool isBeingWritten(const std::filesystem::path& path);

/// Renames a file, which may be open. False with errno set on failure: EEXIST if the new name is
/// taken and must not be replaced, EBUSY if a file of this name is being written.
bool renameFile(const std::filesystem::path& from, const std::filesystem::path& to,
                bool mayReplace);

/// Moves to a position, also beyond 4 GiB; false with errno set on failure.
bool seekFile(std::FILE* file, std::int64_t position);

/// Truncates the file; false with errno set on failure.
bool truncateFile(std::FILE* file, std::int64_t size);

/// Waits until the disk has all that was written to the file; false with errno set on failure.
bool flushToDisk(std::FILE* file);

/// An environment variable in UTF-8; empty if there is none.
std::string environmentVariable(const char* name);

/// A file of this name where this project's programs keep what is this user's; empty if the user
/// has no profile. Its directory may have to be made.
std::filesystem::path userDataFile(const char* name);

/// Sets an environment variable of this process, for libraries that are loaded later.
void setEnvironmentVariable(const char* name, const std::string& value);

}  // namespace orvane::host
