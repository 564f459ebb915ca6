#include "vbe_dispatch.h"

#include <utility>

#include "vbe_com_error.h"
#include "vbe_dispatch_names.h"

namespace sentrune::addin {
namespace {

constexpr int32_t kObjectNotSet = 91;

}  // namespace

DispatchObject::DispatchObject(ComPtr<IDispatch> object, std::string kind)
    : object_(std::move(object)), kind_(std::move(kind)) {
  if (object_) names_ = DispatchNames::For(*object_.get());
}

rt::Result<DISPID> DispatchObject::Id(const std::string& member) const {
  if (!object_) return rt::MakeError(kObjectNotSet, Name(member) + ": object variable not set");
  return names_->Find(*object_.get(), member, Name(member));
}

rt::Result<Variant> DispatchObject::Invoke(const std::string& member, WORD flags,
                                           const std::vector<Variant>& args) const {
  const rt::Result<DISPID> id = Id(member);
  if (!id.ok()) return id.error();
  // DISPPARAMS lists the arguments last first; the callee may not change them.
  std::vector<Variant> reversed(args.rbegin(), args.rend());
  std::vector<VARIANTARG> raw;
  raw.reserve(reversed.size());
  for (Variant& arg : reversed) raw.push_back(arg.get());
  DISPID named = DISPID_PROPERTYPUT;
  DISPPARAMS params{raw.data(), nullptr, static_cast<UINT>(raw.size()), 0};
  if (flags == DISPATCH_PROPERTYPUT) {
    params.rgdispidNamedArgs = &named;
    params.cNamedArgs = 1;
  }
  VARIANT result;
  VariantInit(&result);
  EXCEPINFO exception{};
  UINT badArgument = 0;
  const HRESULT hr = object_->Invoke(*id, IID_NULL, LOCALE_USER_DEFAULT, flags, &params, &result, &exception,
                                     &badArgument);
  Variant owned = Variant::Adopt(result);
  if (FAILED(hr)) return ComError(hr, Name(member), &exception);
  return owned;
}

rt::Result<Variant> DispatchObject::Get(const std::string& member, const std::vector<Variant>& args) const {
  return Invoke(member, DISPATCH_PROPERTYGET | DISPATCH_METHOD, args);
}

rt::Status DispatchObject::Put(const std::string& member, const Variant& value) const {
  const rt::Result<Variant> done = Invoke(member, DISPATCH_PROPERTYPUT, {value});
  if (!done.ok()) return done.error();
  return {};
}

rt::Result<Variant> DispatchObject::Call(const std::string& member, const std::vector<Variant>& args) const {
  return Invoke(member, DISPATCH_METHOD, args);
}

rt::Result<std::string> DispatchObject::GetText(const std::string& member) const {
  const rt::Result<Variant> value = Get(member);
  if (!value.ok()) return value.error();
  return value->ToText(Name(member));
}

rt::Result<int32_t> DispatchObject::GetLong(const std::string& member) const {
  const rt::Result<Variant> value = Get(member);
  if (!value.ok()) return value.error();
  return value->ToLong(Name(member));
}

rt::Result<bool> DispatchObject::GetBool(const std::string& member) const {
  const rt::Result<Variant> value = Get(member);
  if (!value.ok()) return value.error();
  return value->ToBool(Name(member));
}

rt::Result<ComPtr<IDispatch>> DispatchObject::GetDispatch(const std::string& member,
                                                        const std::vector<Variant>& args) const {
  const rt::Result<Variant> value = Get(member, args);
  if (!value.ok()) return value.error();
  return value->ToObject(Name(member));
}

rt::Result<std::vector<ComPtr<IDispatch>>> CollectionItems(const DispatchObject& collection) {
  const rt::Result<int32_t> count = collection.GetLong("Count");
  if (!count.ok()) return count.error();
  std::vector<ComPtr<IDispatch>> items;
  for (int32_t i = 1; i <= *count; ++i) {
    rt::Result<ComPtr<IDispatch>> item = collection.GetDispatch("Item", {Variant(i)});
    if (!item.ok()) return item.error();
    items.push_back(std::move(*item));
  }
  return items;
}

}  // namespace sentrune::addin
