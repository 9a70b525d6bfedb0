// Calls into an SDK that Microsoft's compiler built: arguments, results, and exceptions of every
// kind, including invalid ones.
#include "windows_dll/microsoft_exceptions.hpp"

#include <gtest/gtest.h>
#include <windows.h>

#include <cstring>
#include <stdexcept>
#include <string>

#include "core/microsoft_exception.hpp"
#include "support/guarded_memory.hpp"
#include "support/leaving_exception.hpp"

namespace orvane {
namespace {

using sim::MicrosoftStandardObject;
using sim::MicrosoftThrow;
using testing::leavingException;
using testing::LeavingException;

// The call as an export makes it.
template <class Result, class... Arguments>
Result callAsExport(Result (*function)(Arguments...), Arguments... arguments) {
  return raisingAsItCame([&] { return callGuarded(function, arguments...); });
}

TEST(GuardedCall, PassesUpToEightArgumentsAndTheResult) {
  const auto none = +[] { return 42; };
  const auto real = +[](void*, int id, double value) { return id + value; };
  const auto five = +[](int a, int b, int c, int d, int e) {
    return (((a * 10 + b) * 10 + c) * 10 + d) * 10 + e;
  };
  const auto six = +[](std::int64_t a, double b, float c, short d, const char* e, double f) {
    return static_cast<double>(a) + b + static_cast<double>(c) + d + e[0] + f;
  };
  const auto eight = +[](int a, double* b, double* c, unsigned* d, unsigned* e, double* f,
                         double* g, unsigned* h) {
    *b = a;
    *c = a + 1;
    *d = 2;
    *e = 3;
    *f = 4;
    *g = 5;
    *h = 6;
  };
  EXPECT_EQ(callGuarded(none), 42);
  EXPECT_EQ(callGuarded(real, static_cast<void*>(nullptr), 3, 0.25), 3.25);
  EXPECT_EQ(callGuarded(five, 1, 2, 3, 4, 5), 12345);
  EXPECT_EQ(callGuarded(six, std::int64_t{1} << 33, 0.5, 0.25F, short{-2},
                        static_cast<const char*>("\x03"), 0.125),
            8589934592.0 + 0.5 + 0.25 - 2 + 3 + 0.125);
  double reals[4] = {};
  unsigned wholes[3] = {};
  callGuarded(eight, 7, &reals[0], &reals[1], &wholes[0], &wholes[1], &reals[2], &reals[3],
              &wholes[2]);
  EXPECT_EQ(reals[0] + reals[1] + reals[2] + reals[3], 7 + 8 + 4 + 5);
  EXPECT_EQ(wholes[0] + wholes[1] * 10 + wholes[2] * 100, 632U);
}

TEST(GuardedCall, PassesExceptionsOfTheSameCompiler) {
  EXPECT_THROW(callAsExport(+[]() -> int { throw std::length_error("long"); }), std::length_error);
  EXPECT_THROW(callAsExport(+[]() -> int { throw 7; }), int);
}

TEST(GuardedCall, PassesOtherStructuredExceptionsUntouched) {
  const auto read = +[](volatile int* address) { return *address; };
  const LeavingException violation =
      leavingException([&] { callAsExport(read, reinterpret_cast<volatile int*>(24)); });
  EXPECT_EQ(violation.code, static_cast<std::uint32_t>(EXCEPTION_ACCESS_VIOLATION));
  EXPECT_EQ(violation.parameters, (std::vector<std::uintptr_t>{0, 24}));

  const LeavingException own = leavingException([] {
    callAsExport(+[] {
      const ULONG_PTR parameters[] = {1, 2, 3};
      RaiseException(0xE0000001, 0, 3, parameters);
    });
  });
  EXPECT_EQ(own.code, 0xE0000001);
  EXPECT_EQ(own.parameters, (std::vector<std::uintptr_t>{1, 2, 3}));
}

// An exception with Microsoft's code whose parameters are not valid.
TEST(GuardedCall, PassesAnExceptionWithInvalidParameters) {
  const auto raise = +[](const std::vector<ULONG_PTR>* parameters) {
    RaiseException(MicrosoftThrow::code, EXCEPTION_NONCONTINUABLE,
                   static_cast<DWORD>(parameters->size()), parameters->data());
  };
  const std::uintptr_t nowhere = 0x7000000000000000;
  const std::vector<std::vector<ULONG_PTR>> senseless = {{},
                                                         {0x19930520, 8, 16},
                                                         {0x19930520, 0, 0, 0},
                                                         {0x19930520, 8, 16, 0},
                                                         {0x19930520, 8, nowhere, nowhere}};
  for (const std::vector<ULONG_PTR>& parameters : senseless) {
    const LeavingException left = leavingException([&] { callAsExport(raise, &parameters); });
    EXPECT_EQ(left.code, MicrosoftThrow::code);
    EXPECT_EQ(left.parameters, std::vector<std::uintptr_t>(parameters.begin(), parameters.end()));
  }
}

// ---- std::exception and types derived from it

// A virtual table whose what() returns the object's text.
const void* const textTable[] = {
    nullptr, reinterpret_cast<const void*>(
                 +[](const MicrosoftStandardObject* object) { return object->text; })};

const MicrosoftThrow standardException({".?AVexception@std@@"}, sizeof(MicrosoftStandardObject));

void raiseStandardException(const MicrosoftThrow& thrown, const void* const* table,
                            const char* text) {
  MicrosoftStandardObject object(table, text);
  thrown.raise(&object);
}

int destroyed = 0;

void countDestroyed(void*) {
  ++destroyed;
}

std::string messageOf(void (*function)()) {
  try {
    callGuarded(function);
    return "returned";
  } catch (const std::runtime_error& error) {
    return error.what();
  } catch (const PassingException&) {
    return "passed";
  }
}

TEST(MicrosoftException, StandardExceptionIsFoundInAVirtualBase) {
  // The object starts with its table of virtual bases; std::exception is 24 bytes after that.
  struct WithVirtualBase {
    const std::int32_t* bases;
    std::uint64_t other[2];
    MicrosoftStandardObject exception;
  };
  static const std::int32_t bases[] = {0, 24};
  static MicrosoftThrow thrown({".?AVOwn@@", ".?AVexception@std@@"}, sizeof(WithVirtualBase),
                               countDestroyed);
  thrown.types[1].virtualTableOffset = 0;
  thrown.types[1].virtualBaseOffset = 4;
  destroyed = 0;
  EXPECT_EQ(messageOf(+[] {
              WithVirtualBase object{bases, {}, {textTable, "from a virtual base"}};
              thrown.raise(&object);
            }),
            "from a virtual base");
  EXPECT_EQ(destroyed, 1);
}

TEST(MicrosoftException, EmptyTextStaysEmpty) {
  EXPECT_EQ(messageOf(+[] { raiseStandardException(standardException, textTable, ""); }), "");
}

TEST(MicrosoftException, TextIsTruncatedWhereMemoryIsUnreadable) {
  const GuardedMemory memory(4096);
  std::memset(memory.begin(), 'y', 4096);
  static const char* text = nullptr;
  text = reinterpret_cast<const char*>(memory.end()) - 10;
  EXPECT_EQ(messageOf(+[] { raiseStandardException(standardException, textTable, text); }),
            "yyyyyyyyyy");
}

TEST(MicrosoftException, FailureInWhatOrDestructorGivesUnknownException) {
  static const void* const table[] = {
      nullptr, reinterpret_cast<const void*>(+[](const MicrosoftStandardObject*) -> const char* {
        RaiseException(static_cast<DWORD>(EXCEPTION_ILLEGAL_INSTRUCTION), 0, 0, nullptr);
        return "";
      })};
  static const MicrosoftThrow thrown(
      {".?AVexception@std@@"}, sizeof(MicrosoftStandardObject), +[](void*) {
        ++destroyed;
        RaiseException(MicrosoftThrow::code, EXCEPTION_NONCONTINUABLE, 0, nullptr);
      });
  destroyed = 0;
  EXPECT_EQ(messageOf(+[] { raiseStandardException(thrown, table, "unread"); }),
            "Unknown exception");
  EXPECT_EQ(messageOf(+[] { raiseStandardException(thrown, nullptr, "no virtual table"); }),
            "Unknown exception");
  EXPECT_EQ(destroyed, 2);
}

// ---- other types

struct LargeObject {
  LargeObject() { std::memset(bytes, 'z', sizeof bytes); }

  const LargeObject* self = this;
  char bytes[3000];
};

int wholeWhenDestroyed = 0;

void destroyLarge(void* address) {
  const auto& object = *static_cast<LargeObject*>(address);
  const bool isWhole =
      object.self == &object && std::string(object.bytes, 3000) == std::string(3000, 'z');
  ++destroyed;
  wholeWhenDestroyed += isWhole ? 1 : 0;
}

const MicrosoftThrow largeThrow({".?AULarge@@"}, sizeof(LargeObject), destroyLarge);

// What a destructor that calls functions does to the stack below it.
[[gnu::noinline]] void overwriteStack() {
  volatile char bytes[16384];
  for (volatile char& byte : bytes) {
    byte = 'q';
  }
}

struct OverwritingCleanUp {
  ~OverwritingCleanUp() { overwriteStack(); }
};

#pragma GCC diagnostic push
#pragma GCC diagnostic ignored \
    "-Winfinite-recursion"  // GCC does not see that the throw ends the recursion
[[gnu::noinline]] void throwFarDown(int frames) {
  volatile char room[1000];
  room[0] = 1;
  if (frames == 0) {
    LargeObject object;
    largeThrow.raise(&object);
  }
  throwFarDown(frames - 1);
  room[1] = room[0];
}
#pragma GCC diagnostic pop

TEST(MicrosoftException, LeavesWithItsObjectIntactAndInPlace) {
  destroyed = 0;
  for (const int frames : {0, 50}) {
    const LeavingException left = leavingException([frames] {
      raisingAsItCame([frames] {
        const OverwritingCleanUp cleanUp;
        callGuarded(throwFarDown, frames);
      });
    });
    EXPECT_EQ(left.code, MicrosoftThrow::code);
    EXPECT_EQ(left.what, "object");  // its first word holds its original address
    ASSERT_EQ(left.parameters.size(), 4U);
    EXPECT_EQ(left.parameters[0], 0x19930520U);
  }
  EXPECT_EQ(destroyed, 0) << "the handler destroys it";
}

TEST(MicrosoftException, SwallowedObjectIsDestroyedOnceInPlace) {
  destroyed = 0;
  wholeWhenDestroyed = 0;
  for (const int frames : {0, 50}) {
    try {
      const OverwritingCleanUp cleanUp;
      callGuarded(throwFarDown, frames);
      FAIL();
    } catch (...) {
      overwriteStack();
    }
  }
  EXPECT_EQ(destroyed, 2);
  EXPECT_EQ(wholeWhenDestroyed, 2);
}

TEST(MicrosoftException, ObjectOutsideTheStackStaysInPlace) {
  static LargeObject object;
  const LeavingException left =
      leavingException([] { callAsExport(+[] { largeThrow.raise(&object); }); });
  EXPECT_EQ(left.what, "object");
  EXPECT_EQ(left.parameters.at(1), reinterpret_cast<std::uintptr_t>(&object));
}

TEST(MicrosoftException, SecondExceptionReplacesTheFirst) {
  static const MicrosoftThrow number({".H"}, sizeof(int));
  destroyed = 0;
  wholeWhenDestroyed = 0;
  const LeavingException left = leavingException([] {
    raisingAsItCame([] {
      try {
        callGuarded(throwFarDown, 3);
      } catch (...) {
        callGuarded(+[] {
          int seven = 7;
          number.raise(&seven);
        });
        throw;
      }
    });
  });
  EXPECT_EQ(left.what, "int 7");
  EXPECT_EQ(destroyed, 1);
  EXPECT_EQ(wholeWhenDestroyed, 1);
}

}  // namespace
}  // namespace orvane
