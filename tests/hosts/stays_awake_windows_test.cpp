// That the computer does not go to sleep in a recording.
#include <gtest/gtest.h>
#include <windows.h>

#include "system/system.hpp"

namespace orvane::host {

namespace {

// What this thread has asked for. The call that tells also ends it.
EXECUTION_STATE requested() {
  return SetThreadExecutionState(ES_CONTINUOUS);
}

TEST(StaysAwake, AsLongAsItExists) {
  {
    const StaysAwake awake;
    EXPECT_TRUE((requested() & ES_SYSTEM_REQUIRED) != 0);
  }
  { const StaysAwake awake; }
  EXPECT_FALSE((requested() & ES_SYSTEM_REQUIRED) != 0);
}

}  // namespace

}  // namespace orvane::host
