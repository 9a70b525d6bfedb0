/* Reads frames of the first camera for a number of seconds and counts them.
 *   live SDK-DIRECTORY SECONDS */
#include "sample.h"

int main(int argc, char** argv) {
  const int64_t exposureUs = 10000;
  const int timeoutMs = (int)(2 * exposureUs / 1000) + 500;
  uint8_t* frame;
  time_t end;
  long frames = 0;
  int bytes = 0;
  if (argc != 3) {
    fprintf(stderr, "usage: live SDK-DIRECTORY SECONDS\n");
    return 2;
  }
  frame = openFirstCamera(argv[1], exposureUs);
  if (frame == NULL) {
    return 1;
  }

  end = time(NULL) + atoi(argv[2]);
  while (time(NULL) <= end) {
    bytes = oc_read(frame, oc_buffer_size(), timeoutMs);
    if (bytes < 0) { /* a camera that was unplugged may also give 0 forever */
      fprintf(stderr, "Reading failed: %s\n", oc_error());
      break;
    }
    if (bytes > 0) {
      ++frames; /* show or store the frame here */
    } else {
      pauseOneMillisecond();
    }
  }
  printf("%ld frames of %d x %d, sensor at %.1f degrees Celsius\n", frames, oc_width(), oc_height(),
         oc_temperature());
  oc_close();
  free(frame);
  return bytes < 0 || frames == 0;
}
