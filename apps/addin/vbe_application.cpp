#include "vbe_application.h"

#include "vbe_command_bars.h"
#include "vbe_component.h"
#include "vbe_project.h"

namespace sentrune::addin {
namespace {

ComPtr<IDispatch> EventsOf(const DispatchObject& vbe) {
  return vbe.GetDispatch("Events").value_or(ComPtr<IDispatch>());
}

}  // namespace

VbeApplication::VbeApplication(ComPtr<IDispatch> vbe) : vbe_(std::move(vbe), "VBE"), events_(EventsOf(vbe_)) {}

HWND VbeApplication::MainWindowHandle() const {
  const rt::Result<ComPtr<IDispatch>> window = vbe_.GetDispatch("MainWindow");
  if (!window.ok() || !*window) return nullptr;
  // HWnd is a Long on either Windows; a handle widens from it by sign, as
  // LongToHandle does.
  const rt::Result<int32_t> handle = DispatchObject(*window, "Window").GetLong("HWnd");
  return handle.ok() ? static_cast<HWND>(LongToHandle(*handle)) : nullptr;
}

std::vector<platform::ProjectPtr> VbeApplication::VBProjects() {
  std::vector<platform::ProjectPtr> projects;
  const rt::Result<ComPtr<IDispatch>> collection = vbe_.GetDispatch("VBProjects");
  if (!collection.ok() || !*collection) return projects;
  rt::Result<std::vector<ComPtr<IDispatch>>> items = CollectionItems(DispatchObject(*collection, "VBProjects"));
  if (!items.ok()) return projects;
  for (ComPtr<IDispatch>& item : *items) projects.push_back(std::make_shared<VbeProject>(std::move(item)));
  return projects;
}

platform::ProjectPtr VbeApplication::ActiveVBProject() {
  return WrapOrNull<VbeProject>(vbe_.GetDispatch("ActiveVBProject"));
}

platform::ComponentPtr VbeApplication::SelectedVBComponent() {
  return WrapOrNull<VbeComponent>(vbe_.GetDispatch("SelectedVBComponent"));
}

std::shared_ptr<platform::Window> VbeApplication::ActiveWindow() {
  return WrapOrNull<VbeWindow>(vbe_.GetDispatch("ActiveWindow"));
}

std::shared_ptr<platform::CommandBars> VbeApplication::CommandBars() {
  return WrapOrNull<VbeCommandBars>(vbe_.GetDispatch("CommandBars"));
}

}  // namespace sentrune::addin
