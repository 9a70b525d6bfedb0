// A library with nothing in it: what loading costs at least.

int orvane_empty_library(void);

int orvane_empty_library(void) {
  return 0;
}
