#pragma once
// The DISPIDs GetIDsOfNames gave, by member name without regard to case,
// shared by every object of one type so that a name is asked only once.
#include "platform/win32/windows_api.h"

#include <oaidl.h>

#include <map>
#include <memory>
#include <optional>
#include <string>

#include "runtime/result.h"

namespace sentrune::addin {

class DispatchNames {
 public:
  // The table of the object's type as its type information names it; a
  // table of its own when it gives none.
  static std::shared_ptr<DispatchNames> For(IDispatch& object);

  // `qualified` ("VBProject.Name") is for the error.
  rt::Result<DISPID> Find(IDispatch& object, const std::string& member, const std::string& qualified);

 private:
  std::map<std::string, DISPID> ids_;
};

}  // namespace sentrune::addin
