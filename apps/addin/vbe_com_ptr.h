#pragma once
// A counted reference to a COM object, shared as the IDE shares its objects:
// copying adds a reference, destroying releases it.
#include "platform/win32/windows_api.h"

#include <unknwn.h>

#include <cstdint>
#include <utility>

namespace sentrune::addin {

template <class T>
class ComPtr {
 public:
  ComPtr() = default;
  // Adds its own reference to `p`.
  explicit ComPtr(T* p) : p_(p) {
    if (p_ != nullptr) p_->AddRef();
  }
  ComPtr(const ComPtr& other) : ComPtr(other.p_) {}
  ComPtr(ComPtr&& other) noexcept : p_(std::exchange(other.p_, nullptr)) {}
  ComPtr& operator=(ComPtr other) noexcept {
    std::swap(p_, other.p_);
    return *this;
  }
  ~ComPtr() {
    if (p_ != nullptr) p_->Release();
  }

  // Takes over a reference the caller owns.
  static ComPtr Adopt(T* p) {
    ComPtr ptr;
    ptr.p_ = p;
    return ptr;
  }
  // For the out parameter of the call that fills it; only on an empty one.
  T** Put() { return &p_; }
  T* get() const { return p_; }
  T* operator->() const { return p_; }
  explicit operator bool() const { return p_ != nullptr; }

  // Another interface of the same object; empty when it has none.
  template <class U>
  ComPtr<U> As(REFIID iid) const {
    ComPtr<U> other;
    if (p_ != nullptr) p_->QueryInterface(iid, reinterpret_cast<void**>(other.Put()));
    return other;
  }

 private:
  T* p_ = nullptr;
};

// The object's COM identity: its IUnknown, the same through every interface.
inline uintptr_t ComIdentity(IUnknown* object) {
  if (object == nullptr) return 0;
  const ComPtr<IUnknown> unknown = ComPtr<IUnknown>(object).As<IUnknown>(IID_IUnknown);
  return reinterpret_cast<uintptr_t>(unknown.get());
}

}  // namespace sentrune::addin
