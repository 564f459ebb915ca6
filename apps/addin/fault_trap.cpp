#include "fault_trap.h"

#include <mutex>
#include <utility>

namespace sentrune::addin {
namespace {

struct Landing {
  void* jump[5];  // __builtin_setjmp's buffer
  Landing* outer;
  // Written by the exception handler, read after the jump.
  volatile DWORD code;
  volatile uintptr_t offset;
};

thread_local Landing* innermost = nullptr;

std::mutex reporterMutex;
std::function<void(const Fault&)> reporter;

bool IsProcessorFault(DWORD code) {
  switch (code) {
    case EXCEPTION_ACCESS_VIOLATION:
    case EXCEPTION_ARRAY_BOUNDS_EXCEEDED:
    case EXCEPTION_DATATYPE_MISALIGNMENT:
    case EXCEPTION_ILLEGAL_INSTRUCTION:
    case EXCEPTION_IN_PAGE_ERROR:
    case EXCEPTION_INT_DIVIDE_BY_ZERO:
    case EXCEPTION_INT_OVERFLOW:
    case EXCEPTION_PRIV_INSTRUCTION:
      return true;
    default:
      // A stack overflow is left alone: the stack has no guard page left
      // to catch the next one.
      return false;
  }
}

// This module's image: where the fault has to be for the trap to take it.
struct Image {
  uintptr_t base = 0;
  uintptr_t size = 0;
};

Image ThisImage() {
  HMODULE module = nullptr;
  GetModuleHandleExW(GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS | GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT,
                     reinterpret_cast<LPCWSTR>(&ThisImage), &module);
  if (module == nullptr) return {};
  const auto* base = reinterpret_cast<const BYTE*>(module);
  const auto* dos = reinterpret_cast<const IMAGE_DOS_HEADER*>(base);
  const auto* nt = reinterpret_cast<const IMAGE_NT_HEADERS*>(base + dos->e_lfanew);
  return {reinterpret_cast<uintptr_t>(base), nt->OptionalHeader.SizeOfImage};
}

[[noreturn]] void LandAfterFault() { __builtin_longjmp(innermost->jump, 1); }

// Resumes the thread in LandAfterFault, on its own stack below the fault,
// as though the faulting instruction had called it.
void Redirect(CONTEXT& context) {
  constexpr unsigned kSpare = 256;  // room past whatever the faulting frame was writing
#if defined(__x86_64__)
  context.Rsp = ((context.Rsp - kSpare) & ~DWORD64{15}) - 8;
  context.Rip = reinterpret_cast<DWORD64>(&LandAfterFault);
#elif defined(__i386__)
  context.Esp = ((context.Esp - kSpare) & ~DWORD{15}) - 4;
  context.Eip = static_cast<DWORD>(reinterpret_cast<DWORD_PTR>(&LandAfterFault));
#else
#error "the fault trap knows the x86 and x86-64 processors only"
#endif
}

// Set before the handler is installed.
Image image;

LONG CALLBACK OnException(EXCEPTION_POINTERS* exception) {
  Landing* landing = innermost;
  const EXCEPTION_RECORD& record = *exception->ExceptionRecord;
  const auto address = reinterpret_cast<uintptr_t>(record.ExceptionAddress);
  if (landing == nullptr || !IsProcessorFault(record.ExceptionCode) || address - image.base >= image.size)
    return EXCEPTION_CONTINUE_SEARCH;
  landing->code = record.ExceptionCode;
  landing->offset = address - image.base;
  Redirect(*exception->ContextRecord);
  return EXCEPTION_CONTINUE_EXECUTION;
}

// Installed with the first trap, removed when the module goes, so that no
// handler is left pointing into an unloaded DLL.
class Handler {
 public:
  Handler() {
    image = ThisImage();
    handle_ = AddVectoredExceptionHandler(1, &OnException);
  }
  ~Handler() {
    if (handle_ != nullptr) RemoveVectoredExceptionHandler(handle_);
  }
  Handler(const Handler&) = delete;
  Handler& operator=(const Handler&) = delete;

 private:
  PVOID handle_ = nullptr;
};

void Report(const Fault& fault) {
  std::function<void(const Fault&)> hear;
  {
    std::lock_guard<std::mutex> lock(reporterMutex);
    hear = reporter;
  }
  if (hear) hear(fault);
}

}  // namespace

__attribute__((noinline)) HRESULT RunTrappingFaults(HRESULT (*call)(void*), void* context) noexcept {
  static Handler handler;
  Landing landing{};
  landing.outer = innermost;
  if (__builtin_setjmp(landing.jump) != 0) {
    innermost = landing.outer;
    try {
      Report(Fault{landing.code, landing.offset});
    } catch (...) {
      // A report that fails is not worth the IDE.
    }
    return E_UNEXPECTED;
  }
  innermost = &landing;
  const HRESULT result = call(context);
  innermost = landing.outer;
  return result;
}

void SetFaultReporter(std::function<void(const Fault&)> hear) {
  std::lock_guard<std::mutex> lock(reporterMutex);
  reporter = std::move(hear);
}

}  // namespace sentrune::addin
