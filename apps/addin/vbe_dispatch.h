#pragma once
// Late-bound calls on the IDE's objects: members found by name through
// GetIDsOfNames, each name asked once per object type (the type library's
// type of the object, or the object itself when it tells none), then
// property gets and puts and method calls. Every failure is an error that
// names the member ("VBProject.Name: ..."); nothing throws.
#include "platform/win32/windows_api.h"

#include <oaidl.h>

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "runtime/result.h"
#include "vbe_com_ptr.h"
#include "vbe_variant.h"

namespace sentrune::addin {

class DispatchNames;

class DispatchObject {
 public:
  // `kind` names the object in errors ("VBProject").
  DispatchObject(ComPtr<IDispatch> object, std::string kind);

  rt::Result<Variant> Get(const std::string& member, const std::vector<Variant>& args = {}) const;
  rt::Status Put(const std::string& member, const Variant& value) const;
  rt::Result<Variant> Call(const std::string& member, const std::vector<Variant>& args = {}) const;

  // Typed property gets.
  rt::Result<std::string> GetText(const std::string& member) const;
  rt::Result<int32_t> GetLong(const std::string& member) const;
  rt::Result<bool> GetBool(const std::string& member) const;
  // Nothing as a null pointer.
  rt::Result<ComPtr<IDispatch>> GetDispatch(const std::string& member, const std::vector<Variant>& args = {}) const;

  IDispatch* get() const { return object_.get(); }
  // The COM identity of the object.
  uintptr_t Identity() const { return ComIdentity(object_.get()); }

 private:
  rt::Result<DISPID> Id(const std::string& member) const;
  rt::Result<Variant> Invoke(const std::string& member, WORD flags, const std::vector<Variant>& args) const;
  std::string Name(const std::string& member) const { return kind_ + "." + member; }

  ComPtr<IDispatch> object_;
  std::string kind_;
  std::shared_ptr<DispatchNames> names_;
};

// A collection's items by Count and Item(1..Count), in the IDE's order.
rt::Result<std::vector<ComPtr<IDispatch>>> CollectionItems(const DispatchObject& collection);

// The wrapper of an object a property get gave; null for Nothing and for a
// get that failed, which the core takes as Nothing (no project open, no such bar).
template <class Wrapper>
std::shared_ptr<Wrapper> WrapOrNull(rt::Result<ComPtr<IDispatch>> object) {
  if (!object.ok() || !*object) return nullptr;
  return std::make_shared<Wrapper>(std::move(*object));
}

}  // namespace sentrune::addin
