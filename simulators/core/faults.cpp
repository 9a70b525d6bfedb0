#include "core/faults.hpp"

#include <algorithm>
#include <utility>

namespace orvane::sim {

void Faults::forceResult(std::string_view function, CallRange range, std::int64_t result) {
  Fault fault;
  fault.kind = Kind::Result;
  fault.function = function;
  fault.range = range;
  fault.result = result;
  add(std::move(fault));
}

void Faults::forceOutput(std::string_view function, std::string_view output, CallRange range,
                         double value) {
  Fault fault;
  fault.kind = Kind::Output;
  fault.function = function;
  fault.output = output;
  fault.range = range;
  fault.value = value;
  add(std::move(fault));
}

void Faults::throwFrom(std::string_view function, CallRange range, ThrownFault thrown) {
  Fault fault;
  fault.kind = Kind::Throw;
  fault.function = function;
  fault.range = range;
  fault.thrown = thrown;
  add(std::move(fault));
}

void Faults::plug(std::string_view function, std::int32_t nth, PlugChange change) {
  Fault fault;
  fault.kind = Kind::Plug;
  fault.function = function;
  fault.range.nth = nth;
  fault.change = change;
  add(std::move(fault));
}

void Faults::clearForced() {
  std::erase_if(faults_, [](const Fault& fault) { return fault.kind != Kind::Plug; });
}

void Faults::count(std::string_view function) {
  for (Fault& fault : faults_) {
    fault.isInForce = false;
    if (fault.function == function) {
      ++fault.calls;
      const std::int64_t first = std::max(fault.range.nth, 1);
      const bool isOver = fault.range.times >= 0 && fault.calls >= first + fault.range.times;
      fault.isInForce = fault.calls >= first && !isOver;
    }
  }
}

std::optional<std::int64_t> Faults::result() const {
  for (const Fault& fault : faults_) {
    if (fault.isInForce && fault.kind == Kind::Result) {
      return fault.result;
    }
  }
  return std::nullopt;
}

std::optional<ThrownFault> Faults::thrown() const {
  for (const Fault& fault : faults_) {
    if (fault.isInForce && fault.kind == Kind::Throw) {
      return fault.thrown;
    }
  }
  return std::nullopt;
}

std::optional<double> Faults::output(std::string_view name) const {
  for (const Fault& fault : faults_) {
    if (fault.isInForce && fault.kind == Kind::Output && fault.output == name) {
      return fault.value;
    }
  }
  return std::nullopt;
}

std::optional<PlugChange> Faults::nextPlugChange() {
  for (Fault& fault : faults_) {
    if (fault.isInForce && fault.kind == Kind::Plug) {
      fault.isInForce = false;
      return fault.change;
    }
  }
  return std::nullopt;
}

}  // namespace orvane::sim
