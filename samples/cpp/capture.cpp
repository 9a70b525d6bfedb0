// Reads frames of the first camera for a number of seconds, and counts them on a second thread.
//   capture SDK-DIRECTORY SECONDS
#include <chrono>
#include <cstdio>
#include <string>
#include <thread>

#include "../c/utf8_argument.h"
#include "orvane_desktop_camera.hpp"

using namespace std::chrono_literals;

int main(int argc, char** argv) try {
  if (argc != 3) {
    std::fprintf(stderr, "usage: capture SDK-DIRECTORY SECONDS\n");
    return 2;
  }
  char utf8[3072];
  const oc::Scan found = oc::scan(utf8Argument(argv[1], utf8, sizeof utf8));
  if (found.cameras.empty()) {
    std::fprintf(stderr, "No camera found. %s\n", found.error.c_str());
    return 1;
  }
  oc::Settings settings;  // default: the whole sensor, the lowest gain
  settings.exposureUs = 10000;
  oc::CaptureThread capture(found.cameras[0], settings);  // opens, streams, reads

  // A queue that gets every frame, for example to write a file. It holds up to 20 and copies none.
  oc::FrameQueue every = capture.frames(oc::Delivery::Every, 20);
  long frames = 0;
  std::thread writer([&] {
    try {
      while (const oc::Frame frame = every.next()) {
        ++frames;  // write frame.pixels() and frame.arrivalTime() here
      }
    } catch (const oc::Error&) {  // the camera was lost; the main thread reports it
    }
  });
  int status = 0;
  const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(std::stoi(argv[2]));
  try {
    do {
      const oc::Frame newest = capture.next(500ms);  // show the newest frame here
    } while (std::chrono::steady_clock::now() < end);
  } catch (const oc::Error& lost) {
    std::fprintf(stderr, "The camera is lost: %s\n", lost.what());
    status = 1;
  }
  every.close();
  writer.join();
  const oc::CaptureState state = capture.state();
  std::printf("%ld frames of %d x %d, %.1f a second, %llu dropped\n", frames, state.layout.width,
              state.layout.height, state.framesPerSecond,
              static_cast<unsigned long long>(every.dropped()));
  return status;
} catch (const std::exception& failure) {
  std::fprintf(stderr, "%s\n", failure.what());
  return 1;
}
