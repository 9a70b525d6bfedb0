/* The loader header compiles as C11, on its own and twice. */
#include "orvane_desktop_camera_loader.h"

/* A second include has no effect. */
#include "orvane_desktop_camera_loader.h"

int loadAndScan(const char* file);

int loadAndScan(const char* file) {
  OrvaneDesktopCamera camera;
  int count;
  if (!orvane_desktop_camera_load(&camera, file, NULL, 0)) {
    return -1;
  }
  count = camera.scan();
  orvane_desktop_camera_unload(&camera);
  return count;
}
