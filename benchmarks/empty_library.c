// An empty library: the lower bound of the cost of loading.

int orvane_empty_library(void);

int orvane_empty_library(void) {
  return 0;
}
