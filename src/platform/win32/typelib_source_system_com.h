#pragma once
// Owners for what the system's type library API hands out: interface
// pointers, BSTRs and the TYPEATTR / FUNCDESC / VARDESC blocks that must go
// back to the ITypeInfo that gave them. Failures of the calls that fill them
// throw TypeLibCallError, which the source turns into one error result.
#include "platform/win32/windows_api.h"

#include <oaidl.h>

#include <stdexcept>
#include <string>
#include <utility>

#include "platform/win32/win32_text.h"

namespace sentrune::win32 {

// A call of the type library API that failed, with what was asked.
class TypeLibCallError : public std::runtime_error {
 public:
  TypeLibCallError(const std::string& what, HRESULT hr) : std::runtime_error(what), hr_(hr) {}
  HRESULT hr() const { return hr_; }

 private:
  HRESULT hr_;
};

inline void Check(HRESULT hr, const std::string& what) {
  if (FAILED(hr)) throw TypeLibCallError(what, hr);
}

// An owned interface pointer.
template <class T>
class ComRef {
 public:
  ComRef() = default;
  ComRef(const ComRef&) = delete;
  ComRef& operator=(const ComRef&) = delete;
  ComRef(ComRef&& other) noexcept : p_(std::exchange(other.p_, nullptr)) {}
  ComRef& operator=(ComRef&& other) noexcept {
    std::swap(p_, other.p_);
    return *this;
  }
  ~ComRef() {
    if (p_ != nullptr) p_->Release();
  }
  // For the out parameter of the call that fills it; only on an empty one.
  T** Put() { return &p_; }
  T* get() const { return p_; }
  T* operator->() const { return p_; }
  T& operator*() const { return *p_; }
  explicit operator bool() const { return p_ != nullptr; }

 private:
  T* p_ = nullptr;
};

// An owned BSTR; a null one reads as the empty text.
class Bstr {
 public:
  Bstr() = default;
  Bstr(const Bstr&) = delete;
  Bstr& operator=(const Bstr&) = delete;
  ~Bstr() { SysFreeString(b_); }
  BSTR* Put() { return &b_; }
  std::string Utf8() const { return Narrow(std::wstring_view(b_, SysStringLen(b_))); }

 private:
  BSTR b_ = nullptr;
};

// A TYPEATTR, FUNCDESC or VARDESC, given back to its type info at the end.
template <class Desc, void (STDMETHODCALLTYPE ITypeInfo::*Release)(Desc*)>
class InfoBlock {
 public:
  InfoBlock(const InfoBlock&) = delete;
  InfoBlock& operator=(const InfoBlock&) = delete;
  ~InfoBlock() { (info_->*Release)(desc_); }
  const Desc* operator->() const { return desc_; }
  const Desc& operator*() const { return *desc_; }

 protected:
  InfoBlock(ITypeInfo& info, Desc* desc) : info_(&info), desc_(desc) {}

 private:
  ITypeInfo* info_;
  Desc* desc_;
};

class TypeAttr : public InfoBlock<TYPEATTR, &ITypeInfo::ReleaseTypeAttr> {
 public:
  explicit TypeAttr(ITypeInfo& info) : InfoBlock(info, Get(info)) {}

 private:
  static TYPEATTR* Get(ITypeInfo& info) {
    TYPEATTR* attr = nullptr;
    Check(info.GetTypeAttr(&attr), "GetTypeAttr");
    return attr;
  }
};

class FuncDesc : public InfoBlock<FUNCDESC, &ITypeInfo::ReleaseFuncDesc> {
 public:
  // Takes over a block GetFuncDesc gave.
  FuncDesc(ITypeInfo& info, FUNCDESC* desc) : InfoBlock(info, desc) {}
};

class VarDesc : public InfoBlock<VARDESC, &ITypeInfo::ReleaseVarDesc> {
 public:
  VarDesc(ITypeInfo& info, UINT index) : InfoBlock(info, Get(info, index)) {}

 private:
  static VARDESC* Get(ITypeInfo& info, UINT index) {
    VARDESC* desc = nullptr;
    Check(info.GetVarDesc(index, &desc), "GetVarDesc(" + std::to_string(index) + ")");
    return desc;
  }
};

}  // namespace sentrune::win32
