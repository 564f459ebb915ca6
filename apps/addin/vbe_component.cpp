#include "vbe_component.h"

namespace sentrune::addin {

std::vector<std::string> VbeComponent::FileNames() const {
  std::vector<std::string> names;
  const int32_t count = component_.GetLong("FileCount").value_or(0);
  for (int32_t i = 1; i <= count; ++i) {
    const rt::Result<Variant> name = component_.Get("FileNames", {Variant(i)});
    if (!name.ok()) break;
    const rt::Result<std::string> text = name->ToText("VBComponent.FileNames");
    if (!text.ok() || text->empty()) break;
    names.push_back(*text);
  }
  return names;
}

}  // namespace sentrune::addin
