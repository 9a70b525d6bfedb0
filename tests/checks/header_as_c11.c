/* The public header compiles as C11, on its own and twice. */
#include "orvane_desktop_camera.h"

/* A second include has no effect. */
#include "orvane_desktop_camera.h"

_Static_assert(OC_FORMAT_RAW8 == 0 && OC_FORMAT_RAW16 == 1 && OC_FORMAT_RGB24 == 2 &&
                   OC_FORMAT_MONO8 == 3,
               "the codes of the formats");
_Static_assert(OC_BAYER_NONE == 0 && OC_BAYER_RGGB == 8 && OC_BAYER_GRBG == 9 &&
                   OC_BAYER_GBRG == 10 && OC_BAYER_BGGR == 11,
               "the codes of the Bayer patterns");

typedef int (*ReadFunction)(uint8_t*, int, int);

ReadFunction readFunction(void);

ReadFunction readFunction(void) {
  return oc_read;
}
