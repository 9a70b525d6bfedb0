// The library on which the stand-in SDK depends.
#include "doubles/sdk_dependency.hpp"

int numberOfTheDependency() {
  return 4711;
}
