#include "platform/headless/headless_project.h"

#include <limits>

#include "platform/headless/project_paths.h"
#include "runtime/text.h"
#include "runtime/winpath.h"

namespace sentrune::headless {
namespace {

std::string DefaultExeExtension(int type) {
  switch (type) {
    case platform::vbext_pt_ActiveXDll: return ".dll";
    case platform::vbext_pt_ActiveXControl: return ".ocx";
    default: return ".exe";
  }
}

std::string Quoted(const std::string& text) { return "\"" + text + "\""; }

int16_t WriteResult(const rt::Status& status) {
  const int32_t code = status.code();
  const bool fits = code >= std::numeric_limits<int16_t>::min() && code <= std::numeric_limits<int16_t>::max();
  return fits ? static_cast<int16_t>(code) : int16_t{-1};
}

}  // namespace

std::string HeadlessProject::Name() const {
  const auto name = Value("Name");
  return name ? *name : rt::StripExtension(rt::GetFileTitle(fileName_));
}

std::optional<std::string> HeadlessProject::Value(std::string_view key) const {
  const auto value = lines_.Value(key);
  if (!value) return std::nullopt;
  return rt::Cp1252ToUtf8(Unquote(*value));
}

std::string HeadlessProject::BuildFileName() const {
  const std::string folder = ResolveAgainst(Folder(), Value("Path32").value_or(""));
  const auto exeName = Value("ExeName32");
  return ResolveAgainst(folder, exeName ? *exeName : Name() + DefaultExeExtension(type_));
}

std::string HeadlessProject::CompatibleOleServer() const {
  const std::string path = Value("CompatibleEXE32").value_or("");
  return path.empty() ? path : ResolveAgainst(Folder(), path);
}

rt::Status HeadlessProject::SetCompatibleOleServer(const std::string& path) {
  const auto exeLine = lines_.FindKey("CompatibleEXE32");
  const uint32_t anchor =
      lines_.LastOfKeys({"ExeName32", "Path32"}).value_or(lines_.LastOfKeys({"Name"}).value_or(TypeLine()));
  if (path.empty()) {
    WriteKey("CompatibleMode", Quoted("0"), anchor);
    if (exeLine) lines_.Erase(*exeLine);
    return {};
  }
  const uint32_t modeLine = WriteKey("CompatibleMode", Quoted("2"), anchor);
  const std::string text = PathForProjectFile(Folder(), ResolveAgainst(Folder(), path));
  WriteKey("CompatibleEXE32", Quoted(text), modeLine);
  return {};
}

void HeadlessProject::SetName(const std::string& name) { WriteKey("Name", Quoted(name), TypeLine()); }

uint32_t HeadlessProject::WriteKey(std::string_view key, const std::string& value, uint32_t anchor) {
  std::string text = std::string(key) + "=" + rt::Utf8ToCp1252(value);
  if (const auto id = lines_.FindKey(key)) {
    lines_.Replace(*id, std::move(text));
    return *id;
  }
  return lines_.InsertAfter(anchor, std::move(text));
}

uint32_t HeadlessProject::TypeLine() const { return *lines_.FindKey("Type"); }

std::vector<std::shared_ptr<platform::Reference>> HeadlessProject::References() {
  return {references_.begin(), references_.end()};
}

rt::Result<std::shared_ptr<platform::Reference>> HeadlessProject::AddReferenceFromFile(const std::string& path) {
  const std::string fullPath = ResolveAgainst(Folder(), path);
  if (!typelibs_)
    return rt::MakeError(rt::errnum::kCantLoadTypeLibrary, "No type library reader to add '" + fullPath + "'");
  auto library = typelibs_->Load(fullPath);
  if (!library) return library.error();
  for (const auto& reference : references_)
    if (rt::IEquals(reference->Data().guid, library->guid))
      return rt::MakeError(rt::errnum::kInvalidProcedureCall,
                           "Project '" + Name() + "' already references " + library->guid);

  const std::string value = FormatTypeLibReference(library->guid, library->majorVersion, library->minorVersion,
                                                   PathForProjectFile(Folder(), fullPath), library->helpString);
  const uint32_t anchor = lines_.LastOfKeys({"Reference"}).value_or(TypeLine());
  lines_.InsertAfter(anchor, "Reference=" + rt::Utf8ToCp1252(value));
  ReferenceData data{library->name,         library->helpString,   fullPath, library->guid,
                     library->majorVersion, library->minorVersion, false,    platform::vbext_rk_TypeLib};
  references_.push_back(std::make_shared<HeadlessReference>(std::move(data), typelibs_));
  return std::shared_ptr<platform::Reference>(references_.back());
}

std::vector<std::shared_ptr<platform::VBComponent>> HeadlessProject::VBComponents() {
  return {components_.begin(), components_.end()};
}

std::shared_ptr<HeadlessComponent> HeadlessProject::FindComponent(uintptr_t identity) const {
  for (const auto& component : components_)
    if (component->Identity() == identity) return component;
  return nullptr;
}

rt::Result<std::shared_ptr<platform::VBComponent>> HeadlessProject::AddComponentFromFile(
    const std::string& path) {
  const std::string fullPath = ResolveAgainst(Folder(), path);
  const ComponentKind* kind = KindForExtension(rt::GetExtension(rt::GetFileTitle(fullPath)));
  if (!kind)
    return rt::MakeError(rt::errnum::kInvalidProcedureCall, "'" + fullPath + "' is not a component file");
  auto facts = InspectComponent(*kind, fullPath, "");
  if (!facts) return facts.error();
  for (const auto& component : components_)
    if (rt::IEquals(component->Name(), facts->name))
      return rt::MakeError(rt::errnum::kInvalidProcedureCall,
                           "Project '" + Name() + "' already has a component named '" + facts->name + "'");

  const std::string relative = PathForProjectFile(Folder(), fullPath);
  const std::string value = kind->namedLine ? facts->name + "; " + relative
                            : kind->quotedValue ? Quoted(relative)
                                                : relative;
  const uint32_t anchor = lines_.LastOfKeys(ComponentKeys())
                              .value_or(lines_.LastOfKeys({"Reference", "Object"}).value_or(TypeLine()));
  const uint32_t line = lines_.InsertAfter(anchor, std::string(kind->key) + "=" + rt::Utf8ToCp1252(value));
  auto component = std::make_shared<HeadlessComponent>(std::move(facts->name), facts->type, kind->fileType,
                                                       std::move(facts->files), line);
  components_.push_back(component);
  if (const auto events = events_.lock()) {
    events->ComponentsEvent(this, [&](platform::VBComponentsEventsSink& sink) { sink.ItemAdded(component); });
    const auto self = shared_from_this();
    events->FileControlEvent(
        this, [&](platform::FileControlEventsSink& sink) { sink.AfterAddFile(self, kind->fileType, fullPath); });
  }
  return std::shared_ptr<platform::VBComponent>(component);
}

rt::Status HeadlessProject::RemoveComponent(const platform::VBComponent& target) {
  const auto component = FindComponent(target.Identity());
  if (!component)
    return rt::MakeError(rt::errnum::kInvalidProcedureCall,
                         "'" + target.Name() + "' is not a component of project '" + Name() + "'");
  lines_.Erase(component->LineId());
  std::erase(components_, component);
  if (const auto events = events_.lock()) {
    events->ComponentsEvent(this, [&](platform::VBComponentsEventsSink& sink) { sink.ItemRemoved(component); });
    const auto self = shared_from_this();
    const std::string file = component->FileNames().front();
    events->FileControlEvent(this, [&](platform::FileControlEventsSink& sink) {
      sink.AfterRemoveFile(self, component->FileType(), file);
    });
  }
  return {};
}

rt::Status HeadlessProject::Save() { return WriteTo(fileName_); }

rt::Status HeadlessProject::SaveAs(const std::string& fileName) {
  const std::string fullPath = ResolveAgainst(Folder(), fileName);
  rt::Status status = WriteTo(fullPath);
  if (status) fileName_ = fullPath;
  return status;
}

rt::Status HeadlessProject::WriteTo(const std::string& fileName) {
  const std::string temporary = rt::GetFolder(fileName) + "~" + rt::GetFileTitle(fileName) + ".tmp";
  rt::Status status = files_.WriteFile(temporary, Serialize());
  if (status) status = files_.RenameReplace(temporary, fileName);
  // A full disk leaves a part of the file written.
  if (!status && files_.GetAttributes(temporary).ok()) (void)files_.DeleteFile(temporary);
  if (const auto events = events_.lock()) {
    const auto self = shared_from_this();
    const int16_t result = WriteResult(status);
    events->FileControlEvent(this, [&](platform::FileControlEventsSink& sink) {
      sink.AfterWriteFile(self, platform::vbext_ft_Project, fileName, result);
    });
  }
  return status;
}

}  // namespace sentrune::headless
