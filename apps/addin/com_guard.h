#pragma once
// Nothing the core throws may reach the IDE, which would tear down with it,
// and no processor fault either (fault_trap.h): every COM entry point and
// every callback runs its body through Trap.
#include "platform/win32/windows_api.h"

#include <memory>
#include <new>
#include <type_traits>

#include "fault_trap.h"

namespace sentrune::addin {

template <typename Body>
HRESULT Trap(Body&& body) noexcept {
  using Plain = std::remove_cvref_t<Body>;
  auto run = [](void* context) -> HRESULT {
    try {
      return (*static_cast<Plain*>(context))();
    } catch (const std::bad_alloc&) {
      return E_OUTOFMEMORY;
    } catch (...) {
      return E_UNEXPECTED;
    }
  };
  return RunTrappingFaults(run, const_cast<Plain*>(std::addressof(body)));
}

}  // namespace sentrune::addin
