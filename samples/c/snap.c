/* Takes one frame of the first camera and writes it as a greyscale picture (PGM).
 *   snap SDK-DIRECTORY FILE.pgm */
#include "sample.h"

static int writePgm(const char* name, const uint8_t* pixels, int width, int height) {
  FILE* file = fopen(name, "wb");
  int written;
  if (file == NULL) {
    return 0;
  }
  written = fprintf(file, "P5\n%d %d\n255\n", width, height) > 0 &&
            fwrite(pixels, (size_t)width, (size_t)height, file) == (size_t)height;
  return fclose(file) == 0 && written;
}

int main(int argc, char** argv) {
  const int64_t exposureUs = 20000;
  uint8_t* frame;
  int result = 1;
  if (argc != 3) {
    fprintf(stderr, "usage: snap SDK-DIRECTORY FILE.pgm\n");
    return 2;
  }
  frame = openFirstCamera(argv[1], exposureUs);
  if (frame == NULL) {
    return 1;
  }
  if (waitForFrame(frame, exposureUs) > 0) {
    /* The camera may have rounded the size: ask for it. */
    if (writePgm(argv[2], frame, oc_width(), oc_height())) {
      printf("%s: %d x %d\n", argv[2], oc_width(), oc_height());
      result = 0;
    } else {
      fprintf(stderr, "Cannot write %s\n", argv[2]);
    }
  }
  oc_close();
  free(frame);
  return result;
}
