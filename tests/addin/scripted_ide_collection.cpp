#include "scripted_ide_collection.h"

#include <oleauto.h>

#include <utility>

namespace sentrune::testing::ide {
namespace {

std::vector<Member> WithItemAndCount(std::vector<Member> members, CollectionIds ids) {
  members.push_back({L"Item", ids.item});
  members.push_back({L"Count", ids.count});
  members.push_back({L"_NewEnum", DISPID_NEWENUM});
  return members;
}

// The items are made when the enumerator is, and released with it.
class Enumerator : public ScriptedWith<IEnumVARIANT> {
 public:
  explicit Enumerator(std::vector<ScriptedObject*> items) : ScriptedWith(IID_IEnumVARIANT), items_(std::move(items)) {}
  ~Enumerator() override {
    for (ScriptedObject* item : items_) item->Release();
  }

  HRESULT STDMETHODCALLTYPE Next(ULONG count, VARIANT* values, ULONG* fetched) override {
    if (values == nullptr) return E_POINTER;
    ULONG given = 0;
    for (; given < count && next_ < items_.size(); ++given, ++next_) {
      VariantInit(&values[given]);
      items_[next_]->AddRef();
      V_VT(&values[given]) = VT_DISPATCH;
      V_DISPATCH(&values[given]) = items_[next_];
    }
    if (fetched != nullptr) *fetched = given;
    return given == count ? S_OK : S_FALSE;
  }
  HRESULT STDMETHODCALLTYPE Skip(ULONG count) override {
    next_ += count;
    return next_ <= items_.size() ? S_OK : S_FALSE;
  }
  HRESULT STDMETHODCALLTYPE Reset() override {
    next_ = 0;
    return S_OK;
  }
  HRESULT STDMETHODCALLTYPE Clone(IEnumVARIANT** copy) override {
    if (copy != nullptr) *copy = nullptr;
    return E_NOTIMPL;
  }

 private:
  std::vector<ScriptedObject*> items_;
  size_t next_ = 0;
};

bool IsText(const VARIANT* value) {
  return V_VT(value) == VT_BSTR || V_VT(value) == (VT_BSTR | VT_BYREF) ||
         (V_VT(value) == (VT_VARIANT | VT_BYREF) && IsText(V_VARIANTREF(value)));
}

}  // namespace

Collection::Collection(CollectionIds ids, std::vector<std::wstring> names,
                       std::function<ScriptedObject*(size_t)> make, std::vector<Member> more, std::vector<IID> iids)
    : ScriptedObject(WithItemAndCount(std::move(more), ids), std::move(iids)),
      ids_(ids),
      names_(std::move(names)),
      make_(std::move(make)) {}

HRESULT Collection::Call(DISPID id, WORD flags, const Args& args, VARIANT* result) {
  if (id == ids_.count) return ReturnLong(result, static_cast<LONG>(names_.size()));
  if (id == DISPID_NEWENUM) {
    std::vector<ScriptedObject*> items;
    for (size_t i = 0; i < names_.size(); ++i) items.push_back(make_(i));
    auto* enumerator = new Enumerator(std::move(items));
    if (result == nullptr) {
      enumerator->Release();
      return S_OK;
    }
    V_VT(result) = VT_UNKNOWN;
    V_UNKNOWN(result) = static_cast<IEnumVARIANT*>(enumerator);
    return S_OK;
  }
  if (id != ids_.item) return CallMore(id, flags, args, result);
  if (!args.empty() && IsText(args[0])) {
    const std::wstring name = TextArg(args, 0).value_or(L"");
    for (size_t i = 0; i < names_.size(); ++i) {
      if (CompareStringOrdinal(names_[i].c_str(), -1, name.c_str(), -1, TRUE) == CSTR_EQUAL)
        return ReturnObject(result, make_(i));
    }
    return DISP_E_BADINDEX;
  }
  const std::optional<LONG> index = LongArg(args, 0);
  if (!index || *index < 1 || *index > static_cast<LONG>(names_.size())) return DISP_E_BADINDEX;
  return ReturnObject(result, make_(static_cast<size_t>(*index - 1)));
}

}  // namespace sentrune::testing::ide
