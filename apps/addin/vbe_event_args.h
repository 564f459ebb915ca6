#pragma once
// The arguments of one event as the IDE passes them to a sink's Invoke:
// last first in DISPPARAMS, so argument 0 is rgvarg[cArgs - 1]. By-reference
// arguments are written back where they point, Booleans as VARIANT_TRUE (-1)
// or VARIANT_FALSE.
#include "platform/win32/windows_api.h"

#include <oaidl.h>

#include <cstdint>
#include <string>
#include <vector>

#include "vbe_com_ptr.h"

namespace sentrune::addin {

class EventArgs {
 public:
  explicit EventArgs(DISPPARAMS& params) : params_(params) {}

  UINT Count() const { return params_.cArgs; }
  // A missing or unconvertible argument reads as empty, zero or Nothing.
  ComPtr<IDispatch> Object(UINT index) const;
  std::string Text(UINT index) const;
  int32_t Long(UINT index) const;
  bool Bool(UINT index) const;
  // A by-value or by-reference array of texts.
  std::vector<std::string> Texts(UINT index) const;

  // Write-backs; nothing for an argument not passed by reference.
  void SetBool(UINT index, bool value);
  void SetText(UINT index, const std::string& value);
  void SetTexts(UINT index, const std::vector<std::string>& values);

 private:
  // The argument as passed; the value it holds, through a by-reference
  // Variant; the variant such a reference points at, or null.
  VARIANT* Raw(UINT index) const;
  VARIANT* At(UINT index) const;
  VARIANT* Referenced(UINT index) const;

  DISPPARAMS& params_;
};

}  // namespace sentrune::addin
