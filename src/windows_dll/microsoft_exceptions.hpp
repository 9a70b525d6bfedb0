// Exceptions of SDKs that Microsoft's compiler built, in a DLL that GCC built.
//
// On Windows x64 such an exception is a structured exception (code 0xE06D7363), which GCC's `catch`
// and clean-ups do not see. callGuarded() stops it at the call and throws a C++ exception in its
// place: std::runtime_error with the text of what() if the object derives from std::exception, and
// PassingException otherwise. raisingAsItCame() turns the latter back at the library's boundary.
// All other structured exceptions (access violations, breakpoints) and GCC's own pass untouched.
//
// The layout of the exception's description is that of Microsoft's compiler for x64, the same since
// Visual Studio 2012 and in Wine; no header has it.
#pragma once

#include <cstddef>
#include <cstdint>
#include <type_traits>
#include <utility>

namespace orvane {

// In assembler, since the unwind information of a function that C++ describes names C++'s handler.
// Each takes up to so many arguments, and behind them, in the next place on the stack, the address
// of the function to be called with them. Arguments in registers are left alone.
extern "C" {
void orvane_guarded_call_4();
void orvane_guarded_call_6();
void orvane_guarded_call_8();
}

/// A structured exception as it was raised. Its object lay on the stack of the function that threw
/// it, which is gone; its bytes are kept.
struct ThrownException {
  std::uint32_t code;
  std::uint32_t flags;
  std::uint32_t parameterCount;
  std::uintptr_t parameters[15];
  void* objectCopy;  ///< from malloc(); null if the object does not lie on the stack
  std::size_t objectSize;
};

/// A Microsoft C++ exception outside the standard family, on its way through the library. The
/// SDK's object is destroyed with it, unless it leaves the library.
class PassingException {
 public:
  explicit PassingException(const ThrownException& thrown) noexcept : thrown_(thrown) {}
  PassingException(PassingException&& other) noexcept
      : thrown_(other.thrown_), ownsObject_(std::exchange(other.ownsObject_, false)) {}
  PassingException(const PassingException&) = delete;
  PassingException& operator=(const PassingException&) = delete;
  ~PassingException();

  /// Keeps the exception for raiseKept(). The library has one caller at a time.
  void keep() noexcept;

 private:
  ThrownException thrown_;
  bool ownsObject_ = true;
};

/// Raises the exception that was kept: the same code, the same parameters, and its object at the
/// same place.
[[noreturn]] void raiseKept();

/// Runs the body. A PassingException that leaves it goes on as the structured exception that it
/// was.
template <class Body>
std::invoke_result_t<Body> raisingAsItCame(Body body) {
  try {
    return body();
  } catch (PassingException& passing) {
    passing.keep();
  }
  raiseKept();  // outside the handler, so that C++ is through with its own exception
}

namespace guarded_call {

using AnyFunction = void (*)();

template <std::size_t>
using Filler = std::uintptr_t;

constexpr std::size_t places(std::size_t arguments) {
  return arguments <= 4 ? 4 : arguments <= 6 ? 6 : 8;
}

template <std::size_t places>
AnyFunction guard() {
  return places == 4   ? orvane_guarded_call_4
         : places == 6 ? orvane_guarded_call_6
                       : orvane_guarded_call_8;
}

template <std::size_t... fillers, class Result, class... Arguments>
Result call(std::index_sequence<fillers...>, Result (*function)(Arguments...),
            Arguments... arguments) {
  constexpr std::size_t placeCount = sizeof...(Arguments) + sizeof...(fillers);
  using Guarded = Result (*)(Arguments..., Filler<fillers>..., Result(*)(Arguments...));
  return reinterpret_cast<Guarded>(guard<placeCount>())(arguments..., Filler<fillers>{0}...,
                                                        function);
}

}  // namespace guarded_call

/// Calls an SDK's function and returns what it returns. Throws what is described above.
template <class Result, class... Arguments>
Result callGuarded(Result (*function)(Arguments...), Arguments... arguments) {
  constexpr std::size_t count = sizeof...(Arguments);
  static_assert(count <= 8, "there is no guard for more arguments");
  static_assert(((sizeof(Arguments) <= sizeof(void*)) && ...), "an argument takes one place");
  return guarded_call::call(std::make_index_sequence<guarded_call::places(count) - count>{},
                            function, arguments...);
}

}  // namespace orvane
