// The lower bound of the cost of recording: a plain loop that copies frames into a buffer and
// writes them to a file.
//
//     copy_and_write FILE FRAME_BYTES FRAMES
//
// Prints MB/s.
#include <fcntl.h>
#include <unistd.h>

#include <chrono>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <vector>

int main(int count, char** arguments) {
  if (count != 4) {
    std::fprintf(stderr, "copy_and_write FILE FRAME_BYTES FRAMES\n");
    return 2;
  }
  const std::size_t frameBytes = std::strtoull(arguments[2], nullptr, 10);
  const long frames = std::strtol(arguments[3], nullptr, 10);
  const std::vector<std::vector<std::uint8_t>> prepared(
      4, std::vector<std::uint8_t>(frameBytes, 0x5A));
  std::vector<std::uint8_t> buffer(frameBytes);

  const auto start = std::chrono::steady_clock::now();
  const int file = open(arguments[1], O_CREAT | O_TRUNC | O_WRONLY, 0644);
  for (long i = 0; i < frames; ++i) {
    std::memcpy(buffer.data(), prepared[static_cast<std::size_t>(i) % 4].data(), frameBytes);
    for (std::size_t written = 0; written < frameBytes;) {
      const ssize_t done = write(file, buffer.data() + written, frameBytes - written);
      if (done <= 0) {
        std::perror(arguments[1]);
        return 1;
      }
      written += static_cast<std::size_t>(done);
    }
  }
  if (close(file) != 0) {
    std::perror(arguments[1]);
    return 1;
  }
  const std::chrono::duration<double> seconds = std::chrono::steady_clock::now() - start;
  std::printf("%.1f\n", static_cast<double>(frameBytes) * static_cast<double>(frames) /
                            seconds.count() / 1e6);
  return 0;
}
