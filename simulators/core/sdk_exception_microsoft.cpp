// Throws exceptions as Microsoft's compiler does, from a simulator that GCC built.
#include "core/microsoft_exception.hpp"
#include "core/sdk_exception.hpp"
#include "simulator_control.h"

namespace orvane::sim {
namespace {

std::int32_t alive = 0;

const char* whatOf(const MicrosoftStandardObject* object) {
  return object->text;
}

const void* const standardTable[] = {nullptr, reinterpret_cast<const void*>(whatOf)};

// Stores the address at which it was thrown.
struct PlainObject {
  const PlainObject* self;
};

// Counts twice if the object is not at the address at which it was thrown.
template <class Object>
void destroy(void* address) {
  const auto* object = static_cast<Object*>(address);
  alive -= object->self == object ? 1 : 2;
}

const MicrosoftThrow standardThrow({".?AVSdkError@@", ".?AVruntime_error@std@@",
                                    ".?AVexception@std@@"},
                                   sizeof(MicrosoftStandardObject),
                                   destroy<MicrosoftStandardObject>);
const MicrosoftThrow numberThrow({".H"}, sizeof(int));
const MicrosoftThrow objectThrow({".?AUSdkTrouble@@"}, sizeof(PlainObject), destroy<PlainObject>);

}  // namespace

void throwSdkException(std::int32_t kind, const char* text) {
  if (kind == SIM_THROW_STANDARD) {
    MicrosoftStandardObject object(standardTable, text);
    ++alive;
    standardThrow.raise(&object);
  }
  if (kind == SIM_THROW_NUMBER) {
    int number = 7;
    numberThrow.raise(&number);
  }
  PlainObject object{&object};
  ++alive;
  objectThrow.raise(&object);
}

std::int32_t exceptionsAlive() {
  return alive;
}

}  // namespace orvane::sim
