/* Doubles the exposure of the first camera while it streams, and prints how bright the frames are.
 *   change_settings SDK-DIRECTORY */
#include "sample.h"

static double meanOf(const uint8_t* pixels, int count) {
  double sum = 0;
  int i;
  for (i = 0; i < count; ++i) {
    sum += pixels[i];
  }
  return sum / count;
}

int main(int argc, char** argv) {
  int64_t exposureUs;
  uint8_t* frame;
  int bytes = 0;
  if (argc != 2) {
    fprintf(stderr, "usage: change_settings SDK-DIRECTORY\n");
    return 2;
  }
  frame = openFirstCamera(argv[1], 5000);
  if (frame == NULL) {
    return 1;
  }
  for (exposureUs = 5000; exposureUs <= 80000; exposureUs *= 2) {
    int stale;
    /* Sets exposure, gain and offset. The camera still streams. */
    if (!oc_apply(exposureUs, 100, 10)) {
      fprintf(stderr, "Cannot change the settings: %s\n", oc_error());
      bytes = 0;
      break;
    }
    /* The next one or two frames may still have the previous settings. */
    for (stale = 0; stale < 3; ++stale) {
      bytes = waitForFrame(frame, exposureUs);
    }
    if (bytes == 0) {
      break;
    }
    printf("%6.1f ms: mean %.1f\n", (double)exposureUs / 1000, meanOf(frame, bytes));
  }
  oc_close();
  free(frame);
  return bytes == 0;
}
