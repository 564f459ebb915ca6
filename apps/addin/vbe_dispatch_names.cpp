#include "vbe_dispatch_names.h"

#include <cctype>
#include <cstring>

#include "platform/win32/win32_text.h"
#include "vbe_com_error.h"
#include "vbe_com_ptr.h"

namespace sentrune::addin {
namespace {

std::string Folded(const std::string& name) {
  std::string folded = name;
  for (char& c : folded) c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
  return folded;
}

// The GUID of the object's type, if it tells one.
std::optional<GUID> TypeOf(IDispatch& object) {
  UINT count = 0;
  if (FAILED(object.GetTypeInfoCount(&count)) || count == 0) return std::nullopt;
  ComPtr<ITypeInfo> info;
  if (FAILED(object.GetTypeInfo(0, LOCALE_USER_DEFAULT, info.Put())) || !info) return std::nullopt;
  TYPEATTR* attr = nullptr;
  if (FAILED(info->GetTypeAttr(&attr)) || attr == nullptr) return std::nullopt;
  const GUID guid = attr->guid;
  info->ReleaseTypeAttr(attr);
  if (guid == GUID_NULL) return std::nullopt;
  return guid;
}

struct GuidLess {
  bool operator()(const GUID& a, const GUID& b) const { return memcmp(&a, &b, sizeof(GUID)) < 0; }
};

}  // namespace

std::shared_ptr<DispatchNames> DispatchNames::For(IDispatch& object) {
  // The IDE is single-threaded, and so is every call of the add-in on it.
  static std::map<GUID, std::shared_ptr<DispatchNames>, GuidLess> byType;
  const std::optional<GUID> type = TypeOf(object);
  if (!type) return std::make_shared<DispatchNames>();
  std::shared_ptr<DispatchNames>& names = byType[*type];
  if (!names) names = std::make_shared<DispatchNames>();
  return names;
}

rt::Result<DISPID> DispatchNames::Find(IDispatch& object, const std::string& member, const std::string& qualified) {
  const std::string key = Folded(member);
  if (const auto found = ids_.find(key); found != ids_.end()) return found->second;
  std::wstring wide = win32::Widen(member);
  LPOLESTR names[] = {wide.data()};
  DISPID id = DISPID_UNKNOWN;
  const HRESULT hr = object.GetIDsOfNames(IID_NULL, names, 1, LOCALE_USER_DEFAULT, &id);
  if (FAILED(hr)) return ComError(hr, qualified);
  ids_.emplace(key, id);
  return id;
}

}  // namespace sentrune::addin
