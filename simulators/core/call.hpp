// One call of a maker's function: counts it for the faults, logs it, and answers it with its body
// or with the fault that a test has set.
#pragma once

#include <cmath>
#include <cstdint>
#include <optional>
#include <string_view>
#include <type_traits>

#include "core/sdk.hpp"

namespace orvane::sim {

// How the pieces of a log line are written. Numbers are written unchanged.
struct Quoted {  // in quotation marks; a null text as "null" without them
  std::string_view text;
};
struct Buffer {  // "buffer" or "null"
  const void* address;
};
struct Handle {  // "h1", "h2", ..., "h?" for an unknown handle, or "null"
  const void* address;
};

class Call {
 public:
  // Counts the call and makes the plug changes that are due before it. `inputs` are logged.
  template <class... Inputs>
  explicit Call(const char* function, const Inputs&... inputs) : isLogged_(begin(function)) {
    if (isLogged_) {
      (writeInput(inputs), ...);
    }
  }

  Call(const Call&) = delete;
  Call& operator=(const Call&) = delete;

  // Runs the body and returns its result, unless the call is to throw or its result is forced.
  template <class Body>
  std::invoke_result_t<Body> run(const Body& body) {
    using Result = std::invoke_result_t<Body>;
    throwIfAsked();
    const auto* forced = sdk().faults.first<ForcedResult>();
    if constexpr (std::is_void_v<Result>) {
      if (forced == nullptr) {
        body();
      }
      if (isLogged_) {
        end(")");
      }
    } else {
      const Result result =
          forced != nullptr ? numberAs<Result>(forced->value) : overridden("result", body());
      if (isLogged_) {
        append(") = ");
        writeResult(result);
        end("");
      }
      return result;
    }
  }

  // Sets an output, or a field of one, to the value, or to the forced value if there is one.
  template <class Type>
  void set(const char* name, Type& output, std::type_identity_t<Type> value) {
    output = overridden(name, value);
  }

  // Sets an output, which may be null, and logs it.
  template <class Type>
  void out(const char* name, Type* output, std::type_identity_t<Type> value) {
    if (output != nullptr) {
      set(name, *output, value);
      wrote(*output);
    }
  }

  // Logs one output, made of these pieces.
  template <class... Pieces>
  void wrote(const Pieces&... pieces) {
    if (isLogged_) {
      separateOutput();
      (write(pieces), ...);
    }
  }

  // The forced value of an output, for outputs that are not numbers.
  static std::optional<double> forcedOutput(std::string_view name) {
    const auto* forced = sdk().faults.first<ForcedOutput>(
        [name](const ForcedOutput& output) { return output.name == name; });
    return forced != nullptr ? std::optional(forced->value) : std::nullopt;
  }

 private:
  static bool begin(const char* function);
  void throwIfAsked() const;

  // A number converted to the type, truncated to its width.
  template <class Type, class Number>
  static Type numberAs(Number number) {
    if constexpr (std::is_pointer_v<Type>) {
      // A test may force a handle to any value. The simulator never dereferences it.
      return reinterpret_cast<Type>(  // NOLINT(performance-no-int-to-ptr)
          static_cast<std::uintptr_t>(wholeOf(number)));
    } else if constexpr (std::is_floating_point_v<Type>) {
      return static_cast<Type>(number);
    } else {
      return static_cast<Type>(wholeOf(number));
    }
  }

  static std::int64_t wholeOf(std::int64_t number) { return number; }
  static std::int64_t wholeOf(double number);

  template <class Type>
  static Type overridden(const char* name, Type value) {
    const std::optional<double> forced = forcedOutput(name);
    return forced ? numberAs<Type>(*forced) : value;
  }

  template <class Piece>
  void writeInput(const Piece& piece) {
    if (hasInput_) {
      append(", ");
    }
    hasInput_ = true;
    write(piece);
  }

  template <class Result>
  void writeResult(Result result) {
    if constexpr (std::is_pointer_v<Result>) {
      write(Handle{result});
    } else {
      write(result);
    }
  }

  template <class Number>
  requires std::is_arithmetic_v<Number>
  void write(Number number) {
    if constexpr (std::is_floating_point_v<Number>) {
      writeReal(number);
    } else if constexpr (std::is_signed_v<Number>) {
      writeSigned(number);
    } else {
      writeUnsigned(number);
    }
  }
  void write(const char* text) { append(text); }
  void write(Quoted quoted);
  void write(Buffer buffer);
  void write(Handle handle);

  void writeReal(double number);
  void writeSigned(std::int64_t number);
  void writeUnsigned(std::uint64_t number);
  void separateOutput();
  static void append(std::string_view piece) { sdk().log.append(piece); }
  static void end(std::string_view piece);

  bool isLogged_;
  bool hasInput_ = false;
  bool hasOutput_ = false;
};

}  // namespace orvane::sim
