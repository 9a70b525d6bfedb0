#include "core/call.hpp"

#include <array>
#include <charconv>

#include "core/sdk_exception.hpp"
#include "core/system.hpp"

namespace orvane::sim {

bool Call::begin(const char* function) {
  Sdk& here = sdk();
  for (const PlugChange& change : here.faults.count(function)) {
    here.setPlugged(change.camera, change.plug);
  }
  if (here.log.isEnabled()) {
    append(function);
    append("(");
  }
  return here.log.isEnabled();
}

void Call::leaveIfAsked() const {
  if (sdk().faults.first<Hang>() != nullptr) {
    end(") hangs");
    neverReturn();
  }
  if (sdk().faults.first<Crash>() != nullptr) {
    end(") crashes");
    violateAccess();
  }
  if (const auto* thrown = sdk().faults.first<ThrownFault>()) {
    end(") threw");
    throwSdkException(thrown->kind, thrown->text);
  }
}

void Call::end(std::string_view piece) const {
  if (isLogged_) {
    append(piece);
    sdk().log.endLine();
  }
}

void Call::separateOutput() {
  if (hasOutput_) {
    append(", ");
  } else {
    append(hasInput_ ? " -> " : "-> ");
  }
  hasOutput_ = true;
}

void Call::write(const void* handle) {
  const std::size_t number = sdk().numberOf(handle);
  if (number > 0) {
    append("h");
    write(number);
  } else {
    append(handle == nullptr ? "null" : "h?");
  }
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

template <class Number>
void Call::writeNumber(Number number) {
  std::array<char, 32> digits;
  const std::to_chars_result end =
      std::to_chars(digits.data(), digits.data() + digits.size(), number);
  append({digits.data(), static_cast<std::size_t>(end.ptr - digits.data())});
}

template void Call::writeNumber(double number);
template void Call::writeNumber(std::int64_t number);
template void Call::writeNumber(std::uint64_t number);

}  // namespace orvane::sim
