// Catches C++ exceptions of SDKs that Microsoft's compiler built.
#include "windows_dll/microsoft_exceptions.hpp"

#include <windows.h>

#include <cstdlib>
#include <cstring>
#include <new>
#include <stdexcept>

// The three guards differ in how many arguments they copy from the caller's stack. Each frame has
// 1544 bytes for a CaughtException. The system looks up the return address in the handler's table
// of ranges, so the range of a call includes a `nop` after the call.
//
// The handler acts on the filter's answer: for a Microsoft C++ exception, the system unwinds the
// SDK's frames and continues at label 3. The SDK's exception object lies below the guard's frame.
// The frame is this large also to keep the functions that run next from overwriting the object.
#define ORVANE_GUARD_BEGIN(places)                 \
  "  .globl orvane_guarded_call_" #places          \
  "\n"                                             \
  "  .def orvane_guarded_call_" #places            \
  "; .scl 2; .type 32; .endef\n"                   \
  "  .p2align 4\n"                                 \
  "  .seh_proc orvane_guarded_call_" #places       \
  "\n"                                             \
  "orvane_guarded_call_" #places                   \
  ":\n"                                            \
  "  subq $1608, %rsp\n"                           \
  "  .seh_stackalloc 1608\n"                       \
  "  .seh_handler __C_specific_handler, @except\n" \
  "  .seh_endprologue\n"
#define ORVANE_GUARD_CALL(function)                        \
  "1:\n"                                                   \
  "  call *" #function                                     \
  "(%rsp)\n"                                               \
  "  nop\n"                                                \
  "2:\n"                                                   \
  "  addq $1608, %rsp\n"                                   \
  "  ret\n"                                                \
  "3:\n"                                                   \
  "  leaq 64(%rsp), %rcx\n"                                \
  "  call orvane_throw_caught\n"                           \
  "  ud2\n"                                                \
  "  .seh_handlerdata\n"                                   \
  "  .long 1\n"                                            \
  "  .rva 1b, 2b, orvane_filter_microsoft_exception, 3b\n" \
  "  .text\n"                                              \
  "  .seh_endproc\n"
#define ORVANE_HAND_ON(from, to) "  movq " #from "(%rsp), %rax\n  movq %rax, " #to "(%rsp)\n"

asm("  .text\n"  //
    ORVANE_GUARD_BEGIN(4) ORVANE_GUARD_CALL(1648)
    //
    ORVANE_GUARD_BEGIN(6) ORVANE_HAND_ON(1648, 32) ORVANE_HAND_ON(1656, 40) ORVANE_GUARD_CALL(1664)
    //
    ORVANE_GUARD_BEGIN(8) ORVANE_HAND_ON(1648, 32) ORVANE_HAND_ON(1656, 40) ORVANE_HAND_ON(1664, 48)
        ORVANE_HAND_ON(1672, 56) ORVANE_GUARD_CALL(1680)

    // int orvane_attempt(void (*function)(void*), void* context): returns 1, or 0 if the function
    // raised a structured exception.
    "  .p2align 4\n"
    "  .seh_proc orvane_attempt\n"
    "orvane_attempt:\n"
    "  subq $40, %rsp\n"
    "  .seh_stackalloc 40\n"
    "  .seh_handler __C_specific_handler, @except\n"
    "  .seh_endprologue\n"
    "  movq %rcx, %rax\n"
    "  movq %rdx, %rcx\n"
    "1:\n"
    "  call *%rax\n"
    "  nop\n"
    "2:\n"
    "  movl $1, %eax\n"
    "  addq $40, %rsp\n"
    "  ret\n"
    "3:\n"
    "  xorl %eax, %eax\n"
    "  addq $40, %rsp\n"
    "  ret\n"
    "  .seh_handlerdata\n"
    "  .long 1\n"
    "  .rva 1b, 2b, orvane_filter_error, 3b\n"
    "  .text\n"
    "  .seh_endproc\n");

extern "C" int orvane_attempt(void (*function)(void*), void* context);

namespace orvane {

namespace {

constexpr DWORD microsoftCppException = 0xE06D7363;

// The indices of the exception's parameters.
enum Parameter { MagicNumber, Object, ThrowInfoAddress, ImageBase, ParameterCount };

// The compiler's description of what was thrown. Offsets are relative to the image's base; 0 means
// none.
using Offset = std::int32_t;

struct TypeDescriptor {
  const void* virtualTable;
  void* spare;
  char name[1];  // decorated, NUL-terminated, of any length
};

struct CatchableType {
  std::uint32_t properties;
  Offset typeDescriptor;
  // The position of the base class's part in the object.
  std::int32_t memberOffset;
  std::int32_t virtualTableOffset;  // of the pointer to the table of virtual bases; -1 if none
  std::int32_t virtualBaseOffset;   // of the entry in that table
  std::int32_t objectSize;
  Offset copyFunction;
};

struct CatchableTypes {
  std::int32_t count;
  Offset types[1];  // `count` entries, the object's own type first
};

struct ThrowInfo {
  std::uint32_t attributes;
  Offset destructor;
  Offset forwardCompatible;
  Offset catchableTypes;
};

struct CaughtException {
  ThrownException thrown;
  bool isStandard;
  bool isOutOfMemory;
  // The text of what(), truncated. The default is the text that Microsoft's own library uses.
  char text[1024] = "Unknown exception";
};
static_assert(sizeof(CaughtException) <= 1544, "the guards have no more room for it");

// Kept by PassingException::keep() for raiseKept().
ThrownException leaving{};

template <class Type>
const Type* at(const ThrownException& thrown, Offset offset) {
  return reinterpret_cast<const Type*>(thrown.parameters[ImageBase] +
                                       static_cast<std::uintptr_t>(std::intptr_t{offset}));
}

char* objectOf(const ThrownException& thrown) {
  return reinterpret_cast<char*>(thrown.parameters[Object]);
}

const ThrowInfo* throwInfoOf(const ThrownException& thrown) {
  return thrown.parameterCount >= ParameterCount
             ? reinterpret_cast<const ThrowInfo*>(thrown.parameters[ThrowInfoAddress])
             : nullptr;
}

// The object's base class part of this type.
char* partOf(char* object, const CatchableType& type) {
  char* part = object + type.memberOffset;
  if (type.virtualTableOffset >= 0) {
    const char* table = nullptr;
    std::memcpy(&table, object + type.virtualTableOffset, sizeof table);
    std::int32_t distance = 0;
    std::memcpy(&distance, table + type.virtualBaseOffset, sizeof distance);
    part += type.virtualTableOffset + distance;
  }
  return part;
}

// Terminates the copy after every byte: if a byte cannot be read, the copy has all bytes before it.
void copyText(const char* from, char* to, std::size_t size) {
  for (std::size_t i = 0; i + 1 < size; ++i) {
    const char next = from[i];
    to[i] = next;
    to[i + 1] = '\0';
    if (next == '\0') {
      return;
    }
  }
}

// Finds the object's size, whether it derives from std::exception, and the text of its what().
// Reads the SDK's data, which may be invalid: call it through orvane_attempt().
void examine(void* context) {
  constexpr std::int32_t mostTypes = 256;
  auto& caught = *static_cast<CaughtException*>(context);
  const ThrownException& thrown = caught.thrown;
  const ThrowInfo* const info = throwInfoOf(thrown);
  if (info == nullptr || info->catchableTypes == 0) {
    return;
  }
  const auto& types = *at<CatchableTypes>(thrown, info->catchableTypes);
  const Offset* const offsets = types.types;
  for (std::int32_t i = 0; i < types.count && i < mostTypes; ++i) {
    const auto& type = *at<CatchableType>(thrown, offsets[i]);
    if (i == 0 && type.objectSize > 0) {
      caught.thrown.objectSize = static_cast<std::size_t>(type.objectSize);
    }
    const char* const name = at<TypeDescriptor>(thrown, type.typeDescriptor)->name;
    if (std::strcmp(name, ".?AVexception@std@@") == 0) {
      caught.isStandard = true;
      char* const exception = partOf(objectOf(thrown), type);
      using What = const char* (*)(const void*);
      const What* virtualTable = nullptr;
      std::memcpy(&virtualTable, exception, sizeof virtualTable);
      const char* const text = virtualTable[1](exception);  // [0] is the destructor
      if (text != nullptr) {
        copyText(text, caught.text, sizeof caught.text);
      }
      return;
    }
  }
}

// Runs the object's destructor, if it has one. This is the SDK's code, which may fail: call it
// through orvane_attempt().
void destroy(void* context) {
  const auto& thrown = *static_cast<const ThrownException*>(context);
  const ThrowInfo* const info = throwInfoOf(thrown);
  if (info != nullptr && info->destructor != 0) {
    const void* const function = at<void>(thrown, info->destructor);
    reinterpret_cast<void (*)(void*)>(const_cast<void*>(function))(objectOf(thrown));
  }
}

void attemptToDestroy(const ThrownException& thrown) {
  orvane_attempt(destroy, const_cast<ThrownException*>(&thrown));
}

// Copies the object if it lies where the functions that run next would overwrite it.
void keepObject(CaughtException& caught, const char* guardFrame) {
  ThrownException& thrown = caught.thrown;
  const char* const object = objectOf(thrown);
  const char* const here = static_cast<const char*>(__builtin_frame_address(0));
  if (thrown.objectSize == 0 || object < here || object >= guardFrame ||
      thrown.objectSize > static_cast<std::size_t>(guardFrame - object)) {
    return;
  }
  thrown.objectCopy = std::malloc(thrown.objectSize);
  if (thrown.objectCopy == nullptr) {
    caught.isOutOfMemory = true;
    attemptToDestroy(thrown);
    return;
  }
  std::memcpy(thrown.objectCopy, object, thrown.objectSize);
}

// Runs an action with the object back at its original address. First extends the stack to below
// that address, so that no called function overwrites the object.
template <class Action>
[[gnu::noinline]] void withObjectInPlace(const ThrownException& kept, Action action) {
  ThrownException thrown = kept;
  if (thrown.objectCopy != nullptr) {
    char* const object = objectOf(thrown);
    char* const frame = static_cast<char*>(__builtin_frame_address(0));
    const auto depth = static_cast<std::size_t>(frame - object);
    auto* const covered = static_cast<volatile char*>(__builtin_alloca(depth));
    *covered = 0;
    if (object + thrown.objectSize <= const_cast<char*>(covered) + depth) {
      std::memcpy(object, thrown.objectCopy, thrown.objectSize);
    }
    std::free(thrown.objectCopy);
    thrown.objectCopy = nullptr;
  }
  action(thrown);
}

}  // namespace

// Runs before the SDK's frames are unwound, so everything that needs the SDK's object or code
// happens here.
extern "C" [[gnu::used]] long orvane_filter_microsoft_exception(EXCEPTION_POINTERS* raised,
                                                                char* guardFrame) {
  const EXCEPTION_RECORD& record = *raised->ExceptionRecord;
  if (record.ExceptionCode != microsoftCppException) {
    return EXCEPTION_CONTINUE_SEARCH;
  }
  auto& caught = *new (guardFrame + 64) CaughtException{};
  ThrownException& thrown = caught.thrown;
  thrown.code = record.ExceptionCode;
  thrown.flags = record.ExceptionFlags;
  thrown.parameterCount = record.NumberParameters;
  static_assert(sizeof thrown.parameters == sizeof record.ExceptionInformation);
  std::memcpy(thrown.parameters, record.ExceptionInformation, sizeof thrown.parameters);

  orvane_attempt(examine, &caught);
  if (caught.isStandard) {
    attemptToDestroy(thrown);
  } else {
    keepObject(caught, guardFrame);
  }
  return EXCEPTION_EXECUTE_HANDLER;
}

// Catches errors in the SDK's data or code. A stack overflow cannot be handled here.
extern "C" [[gnu::used]] long orvane_filter_error(EXCEPTION_POINTERS* raised, char*) {
  const DWORD code = raised->ExceptionRecord->ExceptionCode;
  return code >= 0xC0000000 && code != EXCEPTION_STACK_OVERFLOW ? EXCEPTION_EXECUTE_HANDLER
                                                                : EXCEPTION_CONTINUE_SEARCH;
}

// A guard continues here after the SDK's frames have been unwound.
extern "C" [[gnu::used, noreturn]] void orvane_throw_caught(const CaughtException* caught) {
  if (caught->isStandard) {
    throw std::runtime_error(caught->text);
  }
  if (caught->isOutOfMemory) {
    throw std::bad_alloc();
  }
  throw PassingException(caught->thrown);
}

PassingException::~PassingException() {
  if (ownsObject_) {
    withObjectInPlace(thrown_, attemptToDestroy);
  }
}

void PassingException::keep() noexcept {
  leaving = thrown_;
  ownsObject_ = false;
}

void raiseKept() {
  withObjectInPlace(leaving, [](const ThrownException& raised) {
    RaiseException(raised.code, raised.flags, raised.parameterCount, raised.parameters);
  });
  std::abort();  // never reached: such an exception is flagged as noncontinuable
}

}  // namespace orvane
