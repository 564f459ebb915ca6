#pragma once
// A processor fault in the add-in's code (an access violation, a division by
// zero) must not reach the IDE either: the IDE would go down with the
// developer's unsaved work. GCC has no __try, so a vectored exception handler
// sends such a fault back to the start of the innermost trapped call on the
// faulting thread, which then fails with E_UNEXPECTED. Only faults raised in
// this module's own code are taken: one raised in another module may be
// handled by that module, as the system's code does on purpose at times.
// The frames between the fault and the trap are abandoned without their
// destructors; what they held is lost, the lesser harm.
//
// Every callback the system or the IDE makes into the add-in must be
// trapped, so that the innermost trap is never beyond someone else's frames.
#include "platform/win32/windows_api.h"

#include <cstdint>
#include <functional>

namespace sentrune::addin {

struct Fault {
  DWORD code = 0;       // EXCEPTION_ACCESS_VIOLATION ...
  uintptr_t offset = 0;  // of the faulting instruction from the module's base
};

// Runs call(context); a fault in this module while it runs ends it with
// E_UNEXPECTED once the reporter has heard of it.
HRESULT RunTrappingFaults(HRESULT (*call)(void*), void* context) noexcept;

// Who hears of a trapped fault (after the trap, on the trapped thread);
// nobody when empty.
void SetFaultReporter(std::function<void(const Fault&)> reporter);

}  // namespace sentrune::addin
