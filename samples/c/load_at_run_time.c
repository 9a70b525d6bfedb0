/* Loads the library at run time, so that the program starts even if the library is missing.
 *   load_at_run_time LIBRARY-FILE SDK-DIRECTORY */
#include <stdio.h>

#include "orvane_desktop_camera_loader.h"
#include "utf8_argument.h"

int main(int argc, char** argv) {
  OrvaneDesktopCamera camera;
  char text[3072];
  char message[4096];
  int i;
  int count;
  if (argc != 3) {
    fprintf(stderr, "usage: load_at_run_time LIBRARY-FILE SDK-DIRECTORY\n");
    return 2;
  }

  /* On Windows this must be a full path. */
  if (!orvane_desktop_camera_load(&camera, utf8Argument(argv[1], text, sizeof text), message,
                                  sizeof message)) {
    fprintf(stderr, "%s\nGoing on without cameras.\n", message);
    return 1;
  }

  camera.library_dir(utf8Argument(argv[2], text, sizeof text));
  count = camera.scan();
  printf("SDKs: %s\n", camera.libraries());
  for (i = 0; i < count; ++i) {
    printf("%s\n", camera.info(i));
  }

  /* Close before unloading: unloading closes no camera. */
  camera.close();
  orvane_desktop_camera_unload(&camera);
  return 0;
}
