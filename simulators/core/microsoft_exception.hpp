// Throws C++ exceptions as Microsoft's compiler for x64 does, for simulators and tests that another
// compiler builds. The compiler's tables are written by hand.
#pragma once

#include <windows.h>

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <initializer_list>

namespace orvane::sim {

// The start of the module. Offsets in the tables are relative to it.
extern "C" char __ImageBase;

template <class Type>
std::int32_t imageOffset(Type* address) {
  return static_cast<std::int32_t>(reinterpret_cast<const char*>(address) - &__ImageBase);
}

// The description of one class of thrown objects. It must be static.
struct MicrosoftThrow {
  using Destructor = void (*)(void* object);

  // `names` are the decorated names of the types by which it can be caught, its own type first.
  MicrosoftThrow(std::initializer_list<const char*> names, std::size_t objectSize,
                 Destructor destructor = nullptr) {
    info.destructor = destructor != nullptr ? imageOffset(reinterpret_cast<char*>(destructor)) : 0;
    info.catchableTypes = imageOffset(&list);
    for (const char* name : names) {
      const auto i = static_cast<std::size_t>(list.count++);
      std::strncpy(descriptors[i].name, name, sizeof descriptors[i].name - 1);
      types[i].typeDescriptor = imageOffset(&descriptors[i]);
      types[i].objectSize = static_cast<std::int32_t>(objectSize);
      list.types[i] = imageOffset(&types[i]);
    }
  }

  // Throws the object. It may be on the caller's stack or anywhere else.
  [[noreturn]] void raise(void* object) const {
    const ULONG_PTR parameters[] = {0x19930520, reinterpret_cast<ULONG_PTR>(object),
                                    reinterpret_cast<ULONG_PTR>(&info),
                                    reinterpret_cast<ULONG_PTR>(&__ImageBase)};
    RaiseException(code, EXCEPTION_NONCONTINUABLE, 4, parameters);
    std::abort();
  }

  static constexpr DWORD code = 0xE06D7363;
  static constexpr std::size_t mostTypes = 4;

  struct Info {
    std::uint32_t attributes = 0;
    std::int32_t destructor = 0;
    std::int32_t forwardCompatible = 0;
    std::int32_t catchableTypes = 0;
  } info;
  struct List {
    std::int32_t count = 0;
    std::int32_t types[mostTypes] = {};
  } list;
  struct Type {
    std::uint32_t properties = 0;
    std::int32_t typeDescriptor = 0;
    std::int32_t memberOffset = 0;
    std::int32_t virtualTableOffset = -1;
    std::int32_t virtualBaseOffset = 0;
    std::int32_t objectSize = 0;
    std::int32_t copyFunction = 0;
  } types[mostTypes];
  struct Descriptor {
    const void* virtualTable = nullptr;
    void* spare = nullptr;
    char name[48] = {};
  } descriptors[mostTypes];
};

// An object whose virtual table is that of a class derived from std::exception.
struct MicrosoftStandardObject {
  using What = const char* (*)(const MicrosoftStandardObject* object);

  MicrosoftStandardObject(const void* const* table, const char* what)
      : virtualTable(table), text(what), self(this) {}

  const void* const* virtualTable;
  const char* text;
  const MicrosoftStandardObject* self;
};

}  // namespace orvane::sim
