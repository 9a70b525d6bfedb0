// Lets a DLL that GCC built catch C++ exceptions of SDKs that Microsoft's compiler built.
//
// On Windows x64 such an exception is a structured exception (code 0xE06D7363). GCC's `catch` does
// not catch it, and GCC's clean-ups do not run. callGuarded() catches it at the call and throws a
// C++ exception instead: std::runtime_error with the text of what() if the object derives from
// std::exception, PassingException otherwise. At the library's boundary, raisingAsItCame() raises
// the original exception again. All other structured exceptions (access violations, breakpoints)
// and GCC's own exceptions pass unchanged.
//
// No header declares the layout of the exception's description. It is that of Microsoft's compiler
// for x64, the same since Visual Studio 2012 and in Wine.
#pragma once

#include <cstddef>
#include <cstdint>
#include <type_traits>
#include <utility>

namespace orvane {

// Written in assembler, because the unwind information of a C++ function names GCC's own handler.
// Each takes the given number of arguments and, in the next stack slot, the address of the function
// to call with them. Arguments in registers are passed on unchanged.
extern "C" {
void orvane_guarded_call_4();
void orvane_guarded_call_6();
void orvane_guarded_call_8();
}

/// A structured exception as it was raised. Its object lay in the stack frame of the function that
/// threw it, which has been unwound, so the object's bytes are kept.
struct ThrownException {
  std::uint32_t code;
  std::uint32_t flags;
  std::uint32_t parameterCount;
  std::uintptr_t parameters[15];
  void* objectCopy;  ///< from malloc(); null if the object does not lie on the stack
  std::size_t objectSize;
};

/// A Microsoft C++ exception that does not derive from std::exception, while it passes through the
/// library. Its destructor destroys the SDK's object, unless keep() was called.
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

/// Raises the kept exception again: same code, same parameters, object at the same address.
[[noreturn]] void raiseKept();

/// Runs the body. If a PassingException leaves it, raises the original structured exception.
template <class Body>
std::invoke_result_t<Body> raisingAsItCame(Body body) {
  try {
    return body();
  } catch (PassingException& passing) {
    passing.keep();
  }
  raiseKept();  // outside the handler, so that the C++ exception has already been destroyed
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

/// Calls an SDK's function and returns its result. Throws the exceptions described above.
template <class Result, class... Arguments>
Result callGuarded(Result (*function)(Arguments...), Arguments... arguments) {
  constexpr std::size_t count = sizeof...(Arguments);
  static_assert(count <= 8, "there is no guard for more arguments");
  static_assert(((sizeof(Arguments) <= sizeof(void*)) && ...), "an argument takes one place");
  return guarded_call::call(std::make_index_sequence<guarded_call::places(count) - count>{},
                            function, arguments...);
}

}  // namespace orvane
