#pragma once
// The IDE's connection interfaces as vtables, declared here since no
// Windows SDK header carries them. Both are dual: their methods follow
// IDispatch's seven slots in this order, stdcall, returning HRESULT.
//
// The two interfaces take the same argument types (the modes travel as
// 32-bit enums, the IDE's objects as their IDispatch), so one class
// implements both with one set of methods.
#include "platform/win32/windows_api.h"

#include <oaidl.h>

namespace sentrune::addin {

// ext_ConnectMode / vbext_ConnectMode and ext_DisconnectMode /
// vbext_DisconnectMode, numbered alike.
enum ConnectMode : LONG { kAfterStartup = 0, kStartup = 1, kExternal = 2, kCommandLine = 3 };
enum DisconnectMode : LONG { kHostShutdown = 0, kUserClosed = 1 };

// VBIDE's IDTExtensibility: the VB5/VB6 add-in interface.
struct IDTExtensibility : public IDispatch {
  virtual HRESULT STDMETHODCALLTYPE OnConnection(IDispatch* application, ConnectMode mode, IDispatch* addInInst,
                                                 SAFEARRAY** custom) = 0;
  virtual HRESULT STDMETHODCALLTYPE OnDisconnection(DisconnectMode mode, SAFEARRAY** custom) = 0;
  virtual HRESULT STDMETHODCALLTYPE OnAddInsUpdate(SAFEARRAY** custom) = 0;
  virtual HRESULT STDMETHODCALLTYPE OnStartupComplete(SAFEARRAY** custom) = 0;
};

// The Add-In Designer's IDTExtensibility2: the same, plus OnBeginShutdown.
struct IDTExtensibility2 : public IDispatch {
  virtual HRESULT STDMETHODCALLTYPE OnConnection(IDispatch* application, ConnectMode mode, IDispatch* addInInst,
                                                 SAFEARRAY** custom) = 0;
  virtual HRESULT STDMETHODCALLTYPE OnDisconnection(DisconnectMode mode, SAFEARRAY** custom) = 0;
  virtual HRESULT STDMETHODCALLTYPE OnAddInsUpdate(SAFEARRAY** custom) = 0;
  virtual HRESULT STDMETHODCALLTYPE OnStartupComplete(SAFEARRAY** custom) = 0;
  virtual HRESULT STDMETHODCALLTYPE OnBeginShutdown(SAFEARRAY** custom) = 0;
};

}  // namespace sentrune::addin
