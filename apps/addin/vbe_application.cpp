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
