#include "vbe_project.h"

#include "vbe_component.h"
#include "vbe_reference.h"

namespace sentrune::addin {

rt::Result<DispatchObject> VbeProject::Collection(const std::string& member, const char* kind) const {
  rt::Result<ComPtr<IDispatch>> collection = project_.GetDispatch(member);
  if (!collection.ok()) return collection.error();
  return DispatchObject(std::move(*collection), kind);
}

std::vector<std::shared_ptr<platform::Reference>> VbeProject::References() {
  std::vector<std::shared_ptr<platform::Reference>> references;
  const rt::Result<DispatchObject> collection = Collection("References", "References");
  if (!collection.ok()) return references;
  rt::Result<std::vector<ComPtr<IDispatch>>> items = CollectionItems(*collection);
  if (!items.ok()) return references;
  for (ComPtr<IDispatch>& item : *items) references.push_back(std::make_shared<VbeReference>(std::move(item)));
  return references;
}

rt::Result<std::shared_ptr<platform::Reference>> VbeProject::AddReferenceFromFile(const std::string& path) {
  const rt::Result<DispatchObject> collection = Collection("References", "References");
  if (!collection.ok()) return collection.error();
  const rt::Result<Variant> added = collection->Call("AddFromFile", {Variant(path)});
  if (!added.ok()) return added.error();
  rt::Result<ComPtr<IDispatch>> reference = added->ToObject("References.AddFromFile");
  if (!reference.ok()) return reference.error();
  return std::shared_ptr<platform::Reference>(std::make_shared<VbeReference>(std::move(*reference)));
}

std::vector<std::shared_ptr<platform::VBComponent>> VbeProject::VBComponents() {
  std::vector<std::shared_ptr<platform::VBComponent>> components;
  const rt::Result<DispatchObject> collection = Collection("VBComponents", "VBComponents");
  if (!collection.ok()) return components;
  rt::Result<std::vector<ComPtr<IDispatch>>> items = CollectionItems(*collection);
  if (!items.ok()) return components;
  for (ComPtr<IDispatch>& item : *items) components.push_back(std::make_shared<VbeComponent>(std::move(item)));
  return components;
}

rt::Result<std::shared_ptr<platform::VBComponent>> VbeProject::AddComponentFromFile(const std::string& path) {
  const rt::Result<DispatchObject> collection = Collection("VBComponents", "VBComponents");
  if (!collection.ok()) return collection.error();
  const rt::Result<Variant> added = collection->Call("AddFile", {Variant(path)});
  if (!added.ok()) return added.error();
  rt::Result<ComPtr<IDispatch>> component = added->ToObject("VBComponents.AddFile");
  if (!component.ok()) return component.error();
  return std::shared_ptr<platform::VBComponent>(std::make_shared<VbeComponent>(std::move(*component)));
}

rt::Status VbeProject::RemoveComponent(const platform::VBComponent& component) {
  const auto* own = dynamic_cast<const VbeComponent*>(&component);
  if (own == nullptr) {
    return rt::MakeError(rt::errnum::kInvalidProcedureCall, "VBComponents.Remove: not a component of the IDE");
  }
  const rt::Result<DispatchObject> collection = Collection("VBComponents", "VBComponents");
  if (!collection.ok()) return collection.error();
  const rt::Result<Variant> removed = collection->Call("Remove", {Variant(own->get())});
  if (!removed.ok()) return removed.error();
  return {};
}

// The IDE's VBProject has SaveAs only: saving is saving under the project's own file name.
rt::Status VbeProject::Save() {
  const rt::Result<std::string> fileName = project_.GetText("FileName");
  if (!fileName.ok()) return fileName.error();
  if (fileName->empty()) {
    return rt::MakeError(rt::errnum::kBadFileNameOrNumber, "VBProject.SaveAs: the project has no file name yet");
  }
  return SaveAs(*fileName);
}

rt::Status VbeProject::SaveAs(const std::string& fileName) {
  const rt::Result<Variant> saved = project_.Call("SaveAs", {Variant(fileName)});
  if (!saved.ok()) return saved.error();
  return {};
}

}  // namespace sentrune::addin
