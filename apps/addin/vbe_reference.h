#pragma once
// A reference of a project, read from the IDE's Reference object.
#include "platform/ide.h"
#include "vbe_dispatch.h"

namespace sentrune::addin {

class VbeReference : public platform::Reference {
 public:
  explicit VbeReference(ComPtr<IDispatch> reference) : ref_(std::move(reference), "Reference") {}

  rt::Result<std::string> Name() const override { return ref_.GetText("Name"); }
  rt::Result<std::string> Description() const override { return ref_.GetText("Description"); }
  rt::Result<std::string> FullPath() const override { return ref_.GetText("FullPath"); }
  rt::Result<std::string> Guid() const override { return ref_.GetText("Guid"); }
  rt::Result<int> Major() const override { return ref_.GetLong("Major"); }
  rt::Result<int> Minor() const override { return ref_.GetLong("Minor"); }
  rt::Result<bool> IsBroken() const override { return ref_.GetBool("IsBroken"); }
  rt::Result<int> Type() const override { return ref_.GetLong("Type"); }

 private:
  DispatchObject ref_;
};

}  // namespace sentrune::addin
