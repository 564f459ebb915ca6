#pragma once
// A project over the IDE's VBProject object, with its References and
// VBComponents collections. Its identity is its COM identity.
#include "platform/ide.h"
#include "vbe_dispatch.h"

namespace sentrune::addin {

class VbeProject : public platform::VBProject {
 public:
  explicit VbeProject(ComPtr<IDispatch> project) : project_(std::move(project), "VBProject") {}

  std::string Name() const override { return project_.GetText("Name").value_or(""); }
  int Type() const override { return project_.GetLong("Type").value_or(0); }
  std::string FileName() const override { return project_.GetText("FileName").value_or(""); }
  uintptr_t Identity() const override { return project_.Identity(); }
  std::string BuildFileName() const override { return project_.GetText("BuildFileName").value_or(""); }
  std::string CompatibleOleServer() const override {
    return project_.GetText("CompatibleOleServer").value_or("");
  }
  // VBProject has no member for the compatibility mode: only the file is
  // set here, and the mode is whatever the IDE makes of it.
  rt::Status SetCompatibleOleServer(const std::string& path) override {
    return project_.Put("CompatibleOleServer", Variant(path));
  }

  std::vector<std::shared_ptr<platform::Reference>> References() override;
  rt::Result<std::shared_ptr<platform::Reference>> AddReferenceFromFile(const std::string& path) override;
  std::vector<std::shared_ptr<platform::VBComponent>> VBComponents() override;
  rt::Result<std::shared_ptr<platform::VBComponent>> AddComponentFromFile(const std::string& path) override;
  rt::Status RemoveComponent(const platform::VBComponent& component) override;
  rt::Status Save() override;
  rt::Status SaveAs(const std::string& fileName) override;

  IDispatch* get() const { return project_.get(); }

 private:
  rt::Result<DispatchObject> Collection(const std::string& member, const char* kind) const;

  DispatchObject project_;
};

}  // namespace sentrune::addin
