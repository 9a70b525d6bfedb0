// The library that the stand-in SDK needs.
#include "doubles/sdk_dependency.hpp"

int numberOfTheDependency() {
  return 4711;
}
