#include "vbe_command_bars.h"

namespace sentrune::addin {

rt::Status VbeCommandBarControl::Delete() {
  const rt::Result<Variant> deleted = control_.Call("Delete");
  if (!deleted.ok()) return deleted.error();
  return {};
}

std::shared_ptr<platform::CommandBarControls> VbeCommandBarControl::Controls() {
  if (Type() != platform::msoControlPopup) return nullptr;
  return WrapOrNull<VbeCommandBarControls>(control_.GetDispatch("Controls"));
}

std::vector<std::shared_ptr<platform::CommandBarControl>> VbeCommandBarControls::Items() {
  std::vector<std::shared_ptr<platform::CommandBarControl>> controls;
  rt::Result<std::vector<ComPtr<IDispatch>>> items = CollectionItems(controls_);
  if (!items.ok()) return controls;
  for (ComPtr<IDispatch>& item : *items) controls.push_back(std::make_shared<VbeCommandBarControl>(std::move(item)));
  return controls;
}

rt::Result<std::shared_ptr<platform::CommandBarControl>> VbeCommandBarControls::Add(int type) {
  if (type != platform::msoControlButton && type != platform::msoControlPopup) {
    return rt::MakeError(rt::errnum::kInvalidProcedureCall,
                         "CommandBarControls.Add: control type " + std::to_string(type) + " is not offered");
  }
  // Add(Type, Id, Parameter, Before, Temporary): temporary, so that a control
  // left behind goes when the IDE closes.
  const rt::Result<Variant> added = controls_.Call(
      "Add", {Variant(static_cast<int32_t>(type)), Variant::Missing(), Variant::Missing(), Variant::Missing(),
              Variant(true)});
  if (!added.ok()) return added.error();
  rt::Result<ComPtr<IDispatch>> control = added->ToObject("CommandBarControls.Add");
  if (!control.ok()) return control.error();
  if (!*control) return rt::MakeError(rt::errnum::kInvalidProcedureCall, "CommandBarControls.Add: no control");
  return std::shared_ptr<platform::CommandBarControl>(std::make_shared<VbeCommandBarControl>(std::move(*control)));
}

std::shared_ptr<platform::CommandBarControls> VbeCommandBar::Controls() {
  return WrapOrNull<VbeCommandBarControls>(bar_.GetDispatch("Controls"));
}

// The IDE raises for a bar it does not have; ide.h's answer to that is Nothing.
std::shared_ptr<platform::CommandBar> VbeCommandBars::Item(const std::string& name) {
  return WrapOrNull<VbeCommandBar>(bars_.GetDispatch("Item", {Variant(name)}));
}

}  // namespace sentrune::addin
