#include "platform/headless/headless_items.h"

namespace sentrune::headless {

rt::Result<std::string> HeadlessReference::Name() const {
  if (data_.kind != platform::vbext_rk_TypeLib || data_.broken || !typelibs_) return data_.name;
  if (!libraryName_) {
    const auto library = typelibs_->Load(data_.fullPath);
    libraryName_ = library && !library->name.empty() ? library->name : data_.name;
  }
  return *libraryName_;
}

}  // namespace sentrune::headless
