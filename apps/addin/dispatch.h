#pragma once
// IDispatch for the connection interfaces, by hand since the DLL carries no
// type library: names to DISPIDs without regard to case, and calls unpacked
// from DISPPARAMS, whose arguments come last-first.
#include "platform/win32/windows_api.h"

#include "extensibility.h"

namespace sentrune::addin {

// IDispatch::GetIDsOfNames: only the method's own name is known; parameter
// names get DISPID_UNKNOWN.
HRESULT ExtensibilityIdsOfNames(REFIID iid, LPOLESTR* names, UINT count, DISPID* ids);

// IDispatch::Invoke of a method on `target`. Arguments are taken as VB
// passes them: objects as VT_DISPATCH or VT_UNKNOWN (by value or by
// reference, Nothing as null or left out), modes as anything that converts
// to a Long, the custom array by value, by reference or left out. A failing
// method gives DISP_E_EXCEPTION with its HRESULT in the EXCEPINFO.
HRESULT InvokeExtensibility(IDTExtensibility2& target, DISPID id, REFIID iid, WORD flags, DISPPARAMS* params,
                            VARIANT* result, EXCEPINFO* exception, UINT* argumentError);

}  // namespace sentrune::addin
