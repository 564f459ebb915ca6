#pragma once
// A failed call on one of the IDE's objects as a run-time error: the error
// number VB would raise for it (the IDE's own for errors it raises, the
// HRESULT otherwise) and a description that starts with the member called.
#include "platform/win32/windows_api.h"

#include <oaidl.h>

#include <string>

#include "runtime/vb_error.h"

namespace sentrune::addin {

// `exception` is the EXCEPINFO of a call that gave DISP_E_EXCEPTION, or null;
// its strings are freed.
rt::VbError ComError(HRESULT hr, const std::string& member, EXCEPINFO* exception = nullptr);

}  // namespace sentrune::addin
