// Parses the log of a simulated SDK, and gives the events of a call to the contract.
#include "torture/transcript.hpp"

#include <algorithm>
#include <new>
#include <stdexcept>

namespace orvane::testing {

namespace {

template <class Number>
Number parsed(std::string_view text) {
  Number number{};
  const char* const end = text.data() + text.size();
  const std::from_chars_result read = std::from_chars(text.data(), end, number);
  if (read.ec != std::errc() || read.ptr != end) {
    throw std::runtime_error("no number: " + std::string(text));
  }
  return number;
}

// The quoted texts and the numbers in "type 5 [0, 20] writable 1" or "\"name\" id 7".
void parseOutputs(std::string_view outputs, SdkCall& call) {
  while (!outputs.empty()) {
    double number = 0;
    const char* const start = outputs.data();
    const std::from_chars_result read = std::from_chars(start, start + outputs.size(), number);
    if (outputs[0] == '"') {
      const std::size_t end = outputs.find('"', 1);
      if (end == std::string_view::npos) {
        throw std::runtime_error("an open quotation: " + std::string(outputs));
      }
      call.texts.emplace_back(outputs.substr(1, end - 1));
      outputs.remove_prefix(end + 1);
    } else if (read.ec == std::errc()) {
      call.numbers.push_back(number);
      outputs.remove_prefix(static_cast<std::size_t>(read.ptr - start));
    } else {
      outputs.remove_prefix(1);
    }
  }
}

// Parses "Function(inputs -> outputs) = result". The outputs and the result may be missing.
SdkCall parseLine(std::string_view line) {
  const std::size_t open = line.find('(');
  const std::size_t close = std::min(line.rfind(") = "), line.size() - 1);
  if (open == std::string_view::npos || line[close] != ')') {
    throw std::runtime_error("no call: " + std::string(line));
  }
  SdkCall call;
  call.function = line.substr(0, open);
  if (close + 1 < line.size()) {
    call.result = line.substr(close + 4);
  }
  std::string_view arguments = line.substr(open + 1, close - open - 1);
  constexpr std::string_view arrow = "-> ";
  const std::size_t outputs = arguments.find(arrow);
  if (outputs != std::string_view::npos) {
    parseOutputs(arguments.substr(outputs + arrow.size()), call);
    arguments = arguments.substr(0, outputs == 0 ? 0 : outputs - 1);
  }
  call.inputs = arguments;
  return call;
}

std::string described(const SdkCall& event) {
  return event.isMissing ? "a failed look-up of " + event.function
                         : event.function + "(" + event.inputs + ") = " + event.result;
}

}  // namespace

std::int64_t SdkCall::code() const {
  return parsed<std::int64_t>(result);
}

double SdkCall::real() const {
  return parsed<double>(result);
}

double SdkCall::number(std::size_t position, double otherwise) const {
  return position < numbers.size() ? numbers[position] : otherwise;
}

std::vector<SdkCall> parseLog(std::string_view log) {
  std::vector<SdkCall> calls;
  while (!log.empty()) {
    const std::size_t end = log.find('\n');
    calls.push_back(parseLine(log.substr(0, end)));
    log.remove_prefix(end == std::string_view::npos ? log.size() : end + 1);
  }
  return calls;
}

const SdkCall& Transcript::call(const std::string& library, const std::string& function,
                                const std::string& inputs) {
  const auto violation = [&](const std::string& found) {
    return Violation{"demanded " + function + "(" + inputs + "), found " + found};
  };
  if (position_ >= events_.size()) {
    throw violation("nothing more");
  }
  const SdkCall& event = events_[position_++];
  if (event.function == function && event.isMissing) {
    throw std::runtime_error(library + ": missing " + function);
  }
  if (event.function != function || event.inputs != inputs) {
    throw violation(described(event));
  }
  return event;
}

void Transcript::allocate() {
  if (failure_ && !hasFailed_ && position_ == failure_->eventsBefore &&
      placesSeen_++ == failure_->place) {
    hasFailed_ = true;
    throw std::bad_alloc();
  }
}

void Transcript::refuse(const char* message) {
  allocate();
  throw std::runtime_error(message);
}

void Transcript::expectEnd() const {
  if (position_ < events_.size()) {
    throw Violation{"demanded nothing more, found " + described(events_[position_])};
  }
}

}  // namespace orvane::testing
