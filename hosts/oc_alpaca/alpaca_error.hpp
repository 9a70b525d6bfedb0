// How a request can fail: errors of the protocol, with their numbers, and requests that are not
// understood.
#pragma once

#include <stdexcept>
#include <string>

namespace orvane::host {

/// The protocol's error numbers.
enum class ErrorNumber {
  None = 0,
  NotImplemented = 0x400,
  InvalidValue = 0x401,
  ValueNotSet = 0x402,
  NotConnected = 0x407,
  InvalidOperation = 0x40B,
  Driver = 0x500  ///< the first of the driver's own numbers
};

/// The request was understood and failed. It is answered with HTTP 200 and this number and text.
class AlpacaError : public std::runtime_error {
 public:
  AlpacaError(ErrorNumber number, const std::string& text)
      : std::runtime_error(text), number_(number) {}

  ErrorNumber number() const { return number_; }

 private:
  ErrorNumber number_;
};

/// The request was not understood. It is answered with HTTP 400 and this text.
class BadRequest : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

}  // namespace orvane::host
