/* The public header compiles as C11, on its own and twice. */
#include "orvane_desktop_camera.h"

/* The guard holds. */
#include "orvane_desktop_camera.h"

typedef int (*ReadFunction)(uint8_t*, int, int);

ReadFunction readFunction(void);

ReadFunction readFunction(void) {
  return oc_read;
}
