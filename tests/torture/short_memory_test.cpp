// A failure whose message cannot be allocated.
#include <gtest/gtest.h>

#include <string>

#include "api/failure.hpp"
#include "torture/failing_allocation.hpp"

namespace orvane::testing {
namespace {

// Keeps a message while the first allocation fails.
void keepWithoutMemory(const std::string& message) {
  countAllocations(1);
  enterLibrary();
  keepMessage(message);
  leaveLibrary();
}

TEST(ShortMemory, OrdinaryMessageNeedsNoAllocation) {
  const std::string message(511, 'x');
  keepWithoutMemory(message);
  EXPECT_FALSE(hasAllocationFailed());
  EXPECT_EQ(state.lastError, message);
  countAllocations(0);
}

TEST(ShortMemory, LongerMessageIsTruncatedToTheReservedCapacity) {
  state.lastError = "the one before";
  const std::size_t room = state.lastError.capacity();
  ASSERT_GE(room, 511U);
  const std::string message = std::string(room, 'x') + "cut off";
  keepWithoutMemory(message);
  EXPECT_TRUE(hasAllocationFailed());
  EXPECT_EQ(state.lastError, std::string(room, 'x'));
  countAllocations(0);
}

}  // namespace
}  // namespace orvane::testing
