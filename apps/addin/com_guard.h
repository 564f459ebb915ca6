#pragma once
// Nothing the core throws may reach the IDE, which would tear down with it:
// every COM entry point runs its body through Trap.
#include "platform/win32/windows_api.h"

#include <new>

namespace sentrune::addin {

template <typename Body>
HRESULT Trap(Body&& body) noexcept {
  try {
    return body();
  } catch (const std::bad_alloc&) {
    return E_OUTOFMEMORY;
  } catch (...) {
    return E_UNEXPECTED;
  }
}

}  // namespace sentrune::addin
