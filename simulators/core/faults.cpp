#include "core/faults.hpp"

#include <algorithm>
#include <utility>

namespace orvane::sim {

void Faults::add(std::string_view function, CallRange range, Effect effect) {
  faults_.push_back({std::string(function), range, std::move(effect)});
}

void Faults::clearForced() {
  std::erase_if(faults_, [](const Fault& fault) {
    return !std::holds_alternative<PlugChange>(fault.effect);
  });
}

std::vector<PlugChange> Faults::count(std::string_view function) {
  std::vector<PlugChange> changes;
  for (Fault& fault : faults_) {
    fault.isInForce = false;
    if (fault.function == function) {
      ++fault.calls;
      const std::int64_t first = std::max(fault.range.nth, 1);
      const bool isOver = fault.range.times >= 0 && fault.calls >= first + fault.range.times;
      fault.isInForce = fault.calls >= first && !isOver;
    }
    const auto* change = std::get_if<PlugChange>(&fault.effect);
    if (fault.isInForce && change != nullptr) {
      changes.push_back(*change);
    }
  }
  return changes;
}

}  // namespace orvane::sim
