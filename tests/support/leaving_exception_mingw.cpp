// A handler for structured exceptions in assembly: GCC has no syntax for one.
#include <windows.h>

#include <cstring>

#include "core/microsoft_exception.hpp"
#include "support/leaving_exception.hpp"

// int run_with_handler(void (*function)(void*), void* context): returns 1 after a structured
// exception. The filter finds `context` in the stack frame.
asm("  .text\n"
    "  .p2align 4\n"
    "  .seh_proc run_with_handler\n"
    "run_with_handler:\n"
    "  subq $40, %rsp\n"
    "  .seh_stackalloc 40\n"
    "  .seh_handler __C_specific_handler, @except\n"
    "  .seh_endprologue\n"
    "  movq %rdx, 56(%rsp)\n"
    "  movq %rcx, %rax\n"
    "  movq %rdx, %rcx\n"
    "1:\n"
    "  call *%rax\n"
    "  nop\n"
    "2:\n"
    "  xorl %eax, %eax\n"
    "  addq $40, %rsp\n"
    "  ret\n"
    "3:\n"
    "  movl $1, %eax\n"
    "  addq $40, %rsp\n"
    "  ret\n"
    "  .seh_handlerdata\n"
    "  .long 1\n"
    "  .rva 1b, 2b, filter_any_exception, 3b\n"
    "  .text\n"
    "  .seh_endproc\n");

extern "C" int run_with_handler(void (*function)(void*), void* context);

namespace orvane::testing {
namespace {

struct Run {
  const std::function<void()>* body;
  LeavingException* leaving;
};

std::string describe(const EXCEPTION_RECORD& record) {
  using sim::MicrosoftThrow;
  const auto isReadable = [](ULONG_PTR address) {
    return IsBadReadPtr(reinterpret_cast<const void*>(address), 16) == FALSE;
  };
  if (record.ExceptionCode != MicrosoftThrow::code || record.NumberParameters != 4 ||
      !isReadable(record.ExceptionInformation[1]) || !isReadable(record.ExceptionInformation[2])) {
    return "object";
  }
  const auto* object = reinterpret_cast<const void*>(record.ExceptionInformation[1]);
  const auto* base = reinterpret_cast<const char*>(record.ExceptionInformation[3]);
  const auto* info = reinterpret_cast<const MicrosoftThrow::Info*>(record.ExceptionInformation[2]);
  const auto* list = reinterpret_cast<const MicrosoftThrow::List*>(base + info->catchableTypes);
  const auto* type = reinterpret_cast<const MicrosoftThrow::Type*>(base + list->types[0]);
  const std::string name =
      reinterpret_cast<const MicrosoftThrow::Descriptor*>(base + type->typeDescriptor)->name;
  if (name == ".H") {
    int number = 0;
    std::memcpy(&number, object, sizeof number);
    return "int " + std::to_string(number);
  }
  const void* self = nullptr;
  std::memcpy(&self, object, sizeof self);
  return self == object ? "object" : "moved object";
}

}  // namespace

// Runs in the filter, because the thrown object still exists there.
extern "C" [[gnu::used]] long filter_any_exception(EXCEPTION_POINTERS* raised, char* frame) {
  constexpr DWORD gccException = 0x20474343;
  const EXCEPTION_RECORD& record = *raised->ExceptionRecord;
  if (record.ExceptionCode == gccException) {
    return EXCEPTION_CONTINUE_SEARCH;
  }
  Run* run = nullptr;
  std::memcpy(&run, frame + 56, sizeof run);
  run->leaving->what = describe(record);
  run->leaving->code = record.ExceptionCode;
  run->leaving->parameters.assign(record.ExceptionInformation,
                                  record.ExceptionInformation + record.NumberParameters);
  return EXCEPTION_EXECUTE_HANDLER;
}

LeavingException leavingException(const std::function<void()>& body) {
  LeavingException leaving;
  Run run{&body, &leaving};
  const auto runBody = [](void* context) { (*static_cast<Run*>(context)->body)(); };
  run_with_handler(runBody, &run);
  return leaving;
}

}  // namespace orvane::testing
