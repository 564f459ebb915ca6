#pragma once
// A component of a project over the IDE's VBComponent object. Its identity
// is its COM identity, which the IDE keeps while the component lives.
#include "platform/ide.h"
#include "vbe_dispatch.h"

namespace sentrune::addin {

class VbeComponent : public platform::VBComponent {
 public:
  explicit VbeComponent(ComPtr<IDispatch> component) : component_(std::move(component), "VBComponent") {}

  // A property the IDE fails to give reads as empty (or zero), as the core
  // expects of a component that is going away.
  std::string Name() const override { return component_.GetText("Name").value_or(""); }
  int Type() const override { return component_.GetLong("Type").value_or(0); }
  std::vector<std::string> FileNames() const override;
  uintptr_t Identity() const override { return component_.Identity(); }

  IDispatch* get() const { return component_.get(); }

 private:
  DispatchObject component_;
};

}  // namespace sentrune::addin
