// Gives the events of a call to the contract.
#include "torture/transcript.hpp"

#include <new>
#include <stdexcept>

namespace orvane::testing {

namespace {

std::string joined(std::initializer_list<std::string> inputs) {
  std::string text;
  for (const std::string& input : inputs) {
    text += (text.empty() ? "" : ", ") + input;
  }
  return text;
}

std::string described(const Event& event) {
  switch (event.kind) {
    case Event::Kind::Load:
      return "an attempt to load " + event.name;
    case Event::Kind::Missing:
      return "a look-up of " + event.name;
    default:
      return event.call.function + "(" + event.call.inputs + ") = " + event.call.result;
  }
}

}  // namespace

const SdkCall& Transcript::call(const std::string& library, const std::string& function,
                                std::initializer_list<std::string> inputs) {
  const std::string demanded = function + "(" + joined(inputs) + ")";
  const Event& event = next(demanded);
  if (event.kind == Event::Kind::Missing && event.name == function) {
    throw std::runtime_error(library + ": missing " + function);
  }
  if (event.kind != Event::Kind::Call || event.call.function != function ||
      event.call.inputs != joined(inputs)) {
    throw Violation{"demanded " + demanded + ", found " + described(event)};
  }
  return event.call;
}

bool Transcript::load(const std::string& library) {
  const Event& event = next("an attempt to load " + library);
  if (event.kind != Event::Kind::Load || event.name != library) {
    throw Violation{"demanded an attempt to load " + library + ", found " + described(event)};
  }
  return event.isLoaded;
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

const Event& Transcript::next(const std::string& demanded) {
  if (position_ >= events_.size()) {
    throw Violation{"demanded " + demanded + ", found nothing more"};
  }
  return events_[position_++];
}

}  // namespace orvane::testing
