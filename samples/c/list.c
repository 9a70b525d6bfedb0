/* Lists the SDKs that were found and the cameras with their limits.
 *   list SDK-DIRECTORY */
#include "sample.h"

int main(int argc, char** argv) {
  char directory[3072];
  int count;
  int i;
  if (argc != 2) {
    fprintf(stderr, "usage: list SDK-DIRECTORY\n");
    return 2;
  }

  /* Where ASICamera2.dll, PlayerOneCamera.dll, qhyccd.dll and toupcam.dll are, any of them. */
  oc_library_dir(utf8Argument(argv[1], directory, sizeof directory));
  count = oc_scan();
  printf("SDKs: %s\n", oc_libraries()[0] != '\0' ? oc_libraries() : "none");

  /* If a maker's cameras could not all be read, the error text says why, whatever the count. A
   * camera that another program has open gives no message: it is missing, or listed with limits
   * of 0. */
  if (oc_error()[0] != '\0') {
    printf("Some cameras are missing: %s\n", oc_error());
  }

  /* One line of JSON per camera. The text is valid until the next oc_info(). */
  printf("Cameras: %d\n", count);
  for (i = 0; i < count; ++i) {
    printf("%s\n", oc_info(i));
  }
  return count > 0 ? 0 : 1;
}
