/* Code that the samples share: pauses, opens the first camera, waits for a frame. */
#ifndef SAMPLE_H
#define SAMPLE_H

#include <stdio.h>
#include <stdlib.h>
#include <time.h>

#include "orvane_desktop_camera.h"
#include "utf8_argument.h"

#if defined(_WIN32)
#  include <windows.h>
#endif

/* Only ZWO's SDK waits for a frame, so a program must pause after a 0. */
static inline void pauseOneMillisecond(void) {
#if defined(_WIN32)
  Sleep(1);
#else
  const struct timespec millisecond = {0, 1000000};
  nanosleep(&millisecond, NULL);
#endif
}

/* Scans the SDKs in this directory and opens the first camera at 640 x 480, bin 1, raw 8 bits,
 * gain 100, offset 10. Returns a buffer for its frames, or NULL after printing why not. */
static inline uint8_t* openFirstCamera(const char* sdkDirectory, int64_t exposureUs) {
  char directory[3072];
  uint8_t* frame;
  oc_library_dir(utf8Argument(sdkDirectory, directory, sizeof directory));
  if (oc_scan() < 1) {
    fprintf(stderr, "No camera found. %s\n", oc_error());
    return NULL;
  }
  if (!oc_open(0, 640, 480, 1, OC_FORMAT_RAW8, exposureUs, 100, 10)) {
    fprintf(stderr, "Cannot open the camera: %s\n", oc_error());
    return NULL;
  }
  /* The buffer may have to be larger than a frame, so ask the library. */
  frame = malloc((size_t)oc_buffer_size());
  if (frame == NULL) {
    fprintf(stderr, "Out of memory.\n");
    oc_close();
  }
  return frame;
}

/* Waits for a frame of this exposure, with two seconds to spare. Returns the number of its bytes,
 * or 0 after printing what went wrong. */
static inline int waitForFrame(uint8_t* buffer, int64_t exposureUs) {
  const int timeoutMs = (int)(2 * exposureUs / 1000) + 500;
  const time_t end = time(NULL) + 2 + timeoutMs / 1000;
  while (time(NULL) <= end) {
    const int bytes = oc_read(buffer, oc_buffer_size(), timeoutMs);
    if (bytes > 0) {
      return bytes;
    }
    if (bytes < 0) {
      fprintf(stderr, "Reading failed: %s\n", oc_error());
      return 0;
    }
    pauseOneMillisecond();
  }
  fprintf(stderr, "No frame came in time.\n");
  return 0;
}

#endif
