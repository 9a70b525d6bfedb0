// Parses the log of a simulated SDK.
#include "torture/sdk_call.hpp"

#include <array>
#include <charconv>
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

template <class Number>
std::string shortest(Number number) {
  std::array<char, 32> digits{};
  const auto end = std::to_chars(digits.data(), digits.data() + digits.size(), number).ptr;
  return {digits.data(), end};
}

bool isDigit(char letter) {
  return letter >= '0' && letter <= '9';
}

// The quoted texts and the numbers in "type 5 [0, 20] writable 1" or "\"name\" id 7".
void parseOutputs(std::string_view outputs, SdkCall& call) {
  while (!outputs.empty()) {
    if (outputs[0] == '"') {
      const std::size_t end = outputs.find('"', 1);
      if (end == std::string_view::npos) {
        throw std::runtime_error("an open quotation: " + std::string(outputs));
      }
      call.texts.emplace_back(outputs.substr(1, end - 1));
      outputs.remove_prefix(end + 1);
    } else if (isDigit(outputs[0]) ||
               (outputs[0] == '-' && outputs.size() > 1 && isDigit(outputs[1]))) {
      const std::string_view number = outputs.substr(0, outputs.find_first_of(",] )"));
      call.numbers.push_back(parsed<double>(number));
      outputs.remove_prefix(number.size());
    } else {
      outputs.remove_prefix(1);
    }
  }
}

SdkCall parseLine(std::string_view line) {
  SdkCall call;
  const std::size_t open = line.find('(');
  const std::size_t assignment = line.rfind(") = ");
  const bool hasResult = assignment != std::string_view::npos;
  if (open == std::string_view::npos || (!hasResult && line.back() != ')')) {
    throw std::runtime_error("no call: " + std::string(line));
  }
  call.function = line.substr(0, open);
  const std::size_t close = hasResult ? assignment : line.size() - 1;
  const std::string_view arguments = line.substr(open + 1, close - open - 1);
  constexpr std::string_view arrow = "-> ";
  const std::size_t outputs = arguments.find(arrow);
  if (outputs != std::string_view::npos) {
    parseOutputs(arguments.substr(outputs + arrow.size()), call);
  }
  call.inputs = arguments.substr(
      0, outputs == 0 || outputs == std::string_view::npos ? outputs : outputs - 1);
  if (hasResult) {
    call.result = line.substr(assignment + 4);
  }
  return call;
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

std::string logged(std::int64_t number) {
  return shortest(number);
}

std::string logged(double number) {
  return shortest(number);
}

std::string quoted(const std::string& text) {
  return '"' + text + '"';
}

}  // namespace orvane::testing
