// Reading a project file: the parts of HeadlessProject that build it.
#include "platform/headless/headless_project.h"
#include "platform/headless/project_paths.h"
#include "runtime/text.h"
#include "runtime/winpath.h"

namespace sentrune::headless {
namespace {

std::optional<int> ProjectType(std::string_view value) {
  constexpr std::string_view kTypes[] = {"Exe", "OleExe", "OleDll", "Control"};
  for (int type = 0; type < 4; ++type)
    if (rt::IEquals(value, kTypes[type])) return type;
  return std::nullopt;
}

rt::VbError NotAProject(const std::string& fileName, const std::string& why) {
  return rt::MakeError(rt::errnum::kPathFileAccessError,
                       "'" + fileName + "' is not a valid project file: " + why);
}

std::string BaseName(const std::string& path) { return rt::StripExtension(rt::GetFileTitle(path)); }

}  // namespace

HeadlessProject::HeadlessProject(const ProjectContext& context, std::string fileName, LineFile lines)
    : files_(context.files),
      typelibs_(context.typelibs),
      events_(context.events),
      fileName_(std::move(fileName)),
      lines_(std::move(lines)) {}

rt::Result<std::shared_ptr<HeadlessProject>> HeadlessProject::Load(const ProjectContext& context,
                                                                   const std::string& fileName) {
  auto bytes = context.files.ReadFile(fileName);
  if (!bytes) return bytes.error();
  LineFile lines = LineFile::Parse(*bytes);
  const auto typeValue = lines.Value("Type");
  if (!typeValue) return NotAProject(fileName, "it has no Type= line");
  const auto type = ProjectType(*typeValue);
  if (!type) return NotAProject(fileName, "unknown project type '" + rt::Cp1252ToUtf8(*typeValue) + "'");

  std::shared_ptr<HeadlessProject> project(new HeadlessProject(context, fileName, std::move(lines)));
  project->type_ = *type;
  project->ReadItems();
  return project;
}

void HeadlessProject::ReadItems() {
  for (const RawLine& line : lines_.Lines()) {
    if (IsSectionHeader(line.text)) break;
    const auto pair = SplitKeyValue(line.text);
    if (!pair) continue;
    const std::string value = rt::Cp1252ToUtf8(pair->value);
    if (rt::IEquals(pair->key, "Reference")) {
      ReadReference(value);
    } else if (rt::IEquals(pair->key, "Object")) {
      objects_.push_back(ParseObjectValue(value));
      ReadControlReference(objects_.back());
    } else if (const ComponentKind* kind = KindForKey(pair->key)) {
      ReadComponent(line, *kind, value);
    }
  }
}

void HeadlessProject::ReadReference(std::string_view value) {
  const ReferenceLine parsed = ParseReferenceValue(value);
  ReferenceData data;
  data.fullPath = parsed.path.empty() ? std::string() : ResolveAgainst(Folder(), parsed.path);
  data.guid = parsed.guid;
  data.major = parsed.major;
  data.minor = parsed.minor;
  data.description = parsed.description;
  if (parsed.isProject) {
    data.kind = platform::vbext_rk_Project;
    data.name = BaseName(data.fullPath);
    data.broken = !IsFile(data.fullPath);
  } else {
    const std::string file = TypeLibFilePart(data.fullPath);
    data.name = BaseName(file);
    data.broken = file.empty() || !IsFile(file);
  }
  references_.push_back(std::make_shared<HeadlessReference>(std::move(data), typelibs_));
}

// The IDE holds the library of every control of the Components dialog in
// References too, as a type library reference. Without the registry the
// control's file is known only when it sits beside the project, where the IDE
// also looks for it; anywhere else the reference reads as broken. Controls of
// another project of the group are not references.
void HeadlessProject::ReadControlReference(const ObjectLine& control) {
  if (control.isProject || control.guid.empty()) return;
  ReferenceData data;
  data.guid = control.guid;
  data.major = control.major;
  data.minor = control.minor;
  data.name = BaseName(control.file);
  const std::string beside = control.file.empty() ? std::string() : ResolveAgainst(Folder(), control.file);
  data.broken = beside.empty() || !IsFile(beside);
  if (!data.broken) data.fullPath = beside;
  references_.push_back(std::make_shared<HeadlessReference>(std::move(data), typelibs_));
}

void HeadlessProject::ReadComponent(const RawLine& line, const ComponentKind& kind, std::string_view value) {
  std::string declaredName;
  std::string path = kind.quotedValue ? Unquote(value) : std::string(value);
  if (kind.namedLine) {
    // "Name; path" as the IDE writes it, or "Name#path" as the path fixer
    // rewrites it.
    size_t joiner = path.find(';');
    if (joiner == std::string::npos) joiner = path.find('#');
    if (joiner != std::string::npos) {
      declaredName = rt::Trim(path.substr(0, joiner));
      path = rt::Trim(path.substr(joiner + 1));
    }
  }
  const std::string fullPath = ResolveAgainst(Folder(), path);
  auto facts = InspectComponent(kind, fullPath, declaredName);
  if (!facts) {
    missing_.push_back(fullPath);
    return;
  }
  components_.push_back(std::make_shared<HeadlessComponent>(std::move(facts->name), facts->type,
                                                            kind.fileType, std::move(facts->files), line.id));
}

rt::Result<HeadlessProject::ComponentFacts> HeadlessProject::InspectComponent(
    const ComponentKind& kind, const std::string& fullPath, const std::string& declaredName) const {
  ComponentFacts facts;
  facts.type = kind.componentType;
  facts.files.push_back(fullPath);
  if (kind.vbSource) {
    auto bytes = files_.ReadFile(fullPath);
    if (!bytes) return bytes.error();
    const SourceFacts source = ReadSourceFacts(*bytes);
    facts.name = source.vbName ? *source.vbName : !declaredName.empty() ? declaredName : BaseName(fullPath);
    if (source.mdiForm && kind.componentType == platform::vbext_ct_VBForm)
      facts.type = platform::vbext_ct_VBMDIForm;
  } else {
    if (!IsFile(fullPath)) return rt::MakeError(rt::errnum::kFileNotFound, "File not found: '" + fullPath + "'");
    facts.name = rt::GetFileTitle(fullPath);
  }
  if (!kind.companion.empty()) {
    const std::string companion = rt::StripExtension(fullPath) + std::string(kind.companion);
    if (IsFile(companion)) facts.files.push_back(companion);
  }
  return facts;
}

bool HeadlessProject::IsFile(const std::string& path) const {
  const auto attributes = files_.GetAttributes(path);
  return attributes && (*attributes & platform::kAttrDirectory) == 0;
}

std::string HeadlessProject::Folder() const { return rt::GetFolder(fileName_); }

}  // namespace sentrune::headless
