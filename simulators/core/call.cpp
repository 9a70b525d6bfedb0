#include "core/call.hpp"

#include <array>
#include <charconv>
#include <cmath>
#include <string>

#include "core/camera_model.hpp"
#include "core/sdk_exception.hpp"

namespace orvane::sim {
namespace {

template <class Number>
void appendNumber(Number number) {
  std::array<char, 32> digits;
  const std::to_chars_result end =
      std::to_chars(digits.data(), digits.data() + digits.size(), number);
  sdk().log.append({digits.data(), static_cast<std::size_t>(end.ptr - digits.data())});
}

}  // namespace

bool Call::begin(const char* function) {
  Sdk& here = sdk();
  for (const PlugChange& change : here.faults.count(function)) {
    here.setPlugged(change.camera, change.isPlugged);
  }
  if (here.log.isEnabled()) {
    append(function);
    append("(");
  }
  return here.log.isEnabled();
}

void Call::throwIfAsked() const {
  if (const auto* thrown = sdk().faults.first<ThrownFault>()) {
    if (isLogged_) {
      end(") threw");
    }
    throwSdkException(thrown->kind, thrown->text);
  }
}

std::int64_t Call::wholeOf(double number) {
  return wholeNumber<std::int64_t>(number);
}

void Call::separateOutput() {
  if (hasOutput_) {
    append(", ");
  } else {
    append(hasInput_ ? " -> " : "-> ");
  }
  hasOutput_ = true;
}

void Call::end(std::string_view piece) {
  append(piece);
  sdk().log.endLine();
}

void Call::write(Quoted quoted) {
  if (quoted.text.data() == nullptr) {
    append("null");
    return;
  }
  append("\"");
  append(quoted.text);
  append("\"");
}

void Call::write(Buffer buffer) {
  append(buffer.address == nullptr ? "null" : "buffer");
}

void Call::write(Handle handle) {
  const std::size_t number = sdk().numberOf(handle.address);
  if (number > 0) {
    append("h");
    writeUnsigned(number);
  } else {
    append(handle.address == nullptr ? "null" : "h?");
  }
}

void Call::writeReal(double number) {
  appendNumber(number);
}

void Call::writeSigned(std::int64_t number) {
  appendNumber(number);
}

void Call::writeUnsigned(std::uint64_t number) {
  appendNumber(number);
}

}  // namespace orvane::sim
