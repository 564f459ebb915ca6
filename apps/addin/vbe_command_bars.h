#pragma once
// The IDE's Office command bars: the bars by name, their controls, and the
// controls' captions, flags and tags. The Office libraries differ in their
// DISPIDs, so every member goes by name.
#include "platform/ide.h"
#include "vbe_dispatch.h"

namespace sentrune::addin {

class VbeCommandBarControl : public platform::CommandBarControl {
 public:
  explicit VbeCommandBarControl(ComPtr<IDispatch> control) : control_(std::move(control), "CommandBarControl") {}

  // A control the IDE no longer answers for reads as empty and ignores changes,
  // as a deleted control does.
  int Type() const override { return control_.GetLong("Type").value_or(0); }
  std::string Caption() const override { return control_.GetText("Caption").value_or(""); }
  void SetCaption(const std::string& caption) override { Set("Caption", Variant(caption)); }
  bool BeginGroup() const override { return control_.GetBool("BeginGroup").value_or(false); }
  void SetBeginGroup(bool beginGroup) override { Set("BeginGroup", Variant(beginGroup)); }
  bool Enabled() const override { return control_.GetBool("Enabled").value_or(false); }
  void SetEnabled(bool enabled) override { Set("Enabled", Variant(enabled)); }
  bool Visible() const override { return control_.GetBool("Visible").value_or(false); }
  void SetVisible(bool visible) override { Set("Visible", Variant(visible)); }
  std::string Tag() const override { return control_.GetText("Tag").value_or(""); }
  void SetTag(const std::string& tag) override { Set("Tag", Variant(tag)); }
  rt::Status Delete() override;
  std::shared_ptr<platform::CommandBarControls> Controls() override;

  IDispatch* get() const { return control_.get(); }

 private:
  void Set(const std::string& member, const Variant& value) { (void)control_.Put(member, value); }

  DispatchObject control_;
};

class VbeCommandBarControls : public platform::CommandBarControls {
 public:
  explicit VbeCommandBarControls(ComPtr<IDispatch> controls)
      : controls_(std::move(controls), "CommandBarControls") {}

  std::vector<std::shared_ptr<platform::CommandBarControl>> Items() override;
  rt::Result<std::shared_ptr<platform::CommandBarControl>> Add(int type) override;

 private:
  DispatchObject controls_;
};

class VbeCommandBar : public platform::CommandBar {
 public:
  explicit VbeCommandBar(ComPtr<IDispatch> bar) : bar_(std::move(bar), "CommandBar") {}

  std::string Name() const override { return bar_.GetText("Name").value_or(""); }
  std::shared_ptr<platform::CommandBarControls> Controls() override;

 private:
  DispatchObject bar_;
};

class VbeCommandBars : public platform::CommandBars {
 public:
  explicit VbeCommandBars(ComPtr<IDispatch> bars) : bars_(std::move(bars), "CommandBars") {}

  std::shared_ptr<platform::CommandBar> Item(const std::string& name) override;

 private:
  DispatchObject bars_;
};

}  // namespace sentrune::addin
