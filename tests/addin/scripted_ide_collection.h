#pragma once
// What the IDE's collections share: Item by 1-based index or by name
// (without regard to case), Count, and _NewEnum (DISPID_NEWENUM) giving an
// IEnumVARIANT over new views of the items.
#include <functional>
#include <string>
#include <vector>

#include "scripted_ide_object.h"

namespace sentrune::testing::ide {

struct CollectionIds {
  DISPID item;
  DISPID count;
};

class Collection : public ScriptedObject {
 public:
  // `names` lists the items' names in order; `make` gives a new view of
  // the item at a 0-based position.
  Collection(CollectionIds ids, std::vector<std::wstring> names, std::function<ScriptedObject*(size_t)> make,
             std::vector<Member> more = {}, std::vector<IID> iids = {});

 protected:
  HRESULT Call(DISPID id, WORD flags, const Args& args, VARIANT* result) override;
  // Members beyond Item, Count and _NewEnum.
  virtual HRESULT CallMore(DISPID, WORD, const Args&, VARIANT*) { return DISP_E_MEMBERNOTFOUND; }

 private:
  CollectionIds ids_;
  std::vector<std::wstring> names_;
  std::function<ScriptedObject*(size_t)> make_;
};

}  // namespace sentrune::testing::ide
