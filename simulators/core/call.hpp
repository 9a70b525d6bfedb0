// One call of a maker's function: counts it for the faults, logs it, and answers it with its body
// or with the fault that a test has set.
#pragma once

#include <cstdint>
#include <optional>
#include <string_view>
#include <type_traits>

#include "core/camera_model.hpp"
#include "core/sdk.hpp"

namespace orvane::sim {

// How the pieces of a log line are written. Numbers are written unchanged, and void pointers are
// handles: "h1", "h2", ..., "h?" for an unknown one, or "null".
struct Quoted {  // in quotation marks; a null text as "null" without them
  std::string_view text;
};
struct Buffer {  // "buffer" or "null"
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

  // Runs the body and returns its result, unless the call is not to return or its result is forced.
  template <class Body>
  std::invoke_result_t<Body> run(const Body& body) {
    using Result = std::invoke_result_t<Body>;
    leaveIfAsked();
    const auto* forced = sdk().faults.first<ForcedResult>();
    if constexpr (std::is_void_v<Result>) {
      if (forced == nullptr) {
        body();
      }
      end(")");
    } else {
      const Result result =
          forced != nullptr ? numberAs<Result>(forced->value) : overridden("result", body());
      if (isLogged_) {
        append(") = ");
        write(result);
      }
      end("");
      return result;
    }
  }

  // Runs a body that needs an open camera, by its id or handle. Without it, the call fails as the
  // maker's does.
  template <class Key, class Body>
  auto onOpen(Key key, const Body& body) {
    using Result = std::invoke_result_t<Body, Camera&>;
    return run([&]() -> Result {
      Camera* camera = sdk().find(key);
      if (camera == nullptr || !camera->device.isOpen) {
        ++sdk().counts.callsOnClosed;
        return numberAs<Result>(sdk().isKnown(key) ? maker.failures.closed
                                                   : maker.failures.noCamera);
      }
      return camera->isReachable() ? body(*camera) : numberAs<Result>(maker.failures.unplugged);
    });
  }

  // Runs a body that needs an open and initialised camera.
  template <class Key, class Body>
  auto onReady(Key key, const Body& body) {
    using Result = std::invoke_result_t<Body, Camera&>;
    return onOpen(key, [&](Camera& camera) -> Result {
      return camera.device.isInitialised ? body(camera) : numberAs<Result>(maker.failures.refused);
    });
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
  // Hangs, crashes or throws.
  void leaveIfAsked() const;
  void end(std::string_view piece) const;

  // A number converted to the type, truncated to its width.
  template <class Type, class Number>
  static Type numberAs(Number number) {
    if constexpr (std::is_floating_point_v<Number> && !std::is_floating_point_v<Type>) {
      return numberAs<Type>(wholeNumber<std::int64_t>(number));
    } else if constexpr (std::is_pointer_v<Type>) {
      // A test may force a handle to any value. The simulator never dereferences it.
      return reinterpret_cast<Type>(  // NOLINT(performance-no-int-to-ptr)
          static_cast<std::uintptr_t>(number));
    } else {
      return static_cast<Type>(number);
    }
  }

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

  template <class Number>
  requires std::is_arithmetic_v<Number>
  static void write(Number number) {
    if constexpr (std::is_floating_point_v<Number>) {
      writeNumber(double{number});
    } else if constexpr (std::is_signed_v<Number>) {
      writeNumber(std::int64_t{number});
    } else {
      writeNumber(std::uint64_t{number});
    }
  }
  static void write(const char* text) { append(text); }
  static void write(const void* handle);
  static void write(Quoted quoted);
  static void write(Buffer buffer);

  template <class Number>
  static void writeNumber(Number number);
  void separateOutput();
  static void append(std::string_view piece) { sdk().log.append(piece); }

  bool isLogged_;
  bool hasInput_ = false;
  bool hasOutput_ = false;
};

}  // namespace orvane::sim
