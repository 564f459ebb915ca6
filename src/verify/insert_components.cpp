#include "verify/insert_components.h"

#include "state/msgbox.h"
#include "runtime/text.h"
#include "runtime/winpath.h"
#include "verify/c_verify_installation.h"
#include "verify/verify_template.h"

namespace sentrune {
namespace {

constexpr const char* kCrLf = "\r\n";
constexpr const char* kTitle = "Sentrune";
constexpr int kInfo = platform::mb::kInformation;
constexpr int kWarn = platform::mb::kExclamation;

platform::ComponentPtr FindComponent(platform::VBProject& project, const std::string& name) {
  for (const platform::ComponentPtr& component : project.VBComponents()) {
    if (rt::IEquals(component->Name(), name)) return component;
  }
  return nullptr;
}

platform::ProjectPtr ActiveProject(AddinState& state, platform::VBE& ide) {
  platform::ProjectPtr project = ide.ActiveVBProject();
  if (!project) lfncMsgBoxEX(state, "No projects loaded.", kInfo, kTitle);
  return project;
}

// Module files are cp1252 on disk; a file being replaced is made writable
// first, as the add-in does before every replacement.
rt::Status WriteModule(AddinState& state, const std::string& path, const std::string& text) {
  platform::FileSystem& files = state.files();
  if (files.GetAttributes(path).ok()) (void)files.SetAttributes(path, platform::kAttrArchive);
  return files.WriteFile(path, rt::Utf8ToCp1252(text));
}

rt::Result<std::string> ReadTemplate(AddinState& state, const std::string& path) {
  rt::Result<std::string> bytes = state.files().ReadFile(path);
  if (!bytes) return bytes.error();
  return rt::Cp1252ToUtf8(*bytes);
}

std::string TlbInfPath(AddinState& state, platform::Registry* registry) {
  if (std::optional<std::string> registered = RegisteredTypeLibFile(registry, kTlbInfGuid)) return *registered;
  const std::string system = state.env().SpecialFolderPath(platform::kFolderSystem);
  if (system.empty()) return {};
  const std::string path = rt::AddBackslash(system) + "tlbinf32.dll";
  return state.files().GetAttributes(path).ok() ? path : std::string();
}

void AddTlbInfReference(AddinState& state, platform::VBProject& project, platform::Registry* registry) {
  const std::string path = TlbInfPath(state, registry);
  const rt::Result<std::shared_ptr<platform::Reference>> added =
      path.empty() ? rt::Result<std::shared_ptr<platform::Reference>>(
                         rt::MakeError(rt::errnum::kFileNotFound, "tlbinf32.dll is neither registered nor in the system folder"))
                   : project.AddReferenceFromFile(path);
  if (added) {
    lfncMsgBoxEX(state, "A reference to tlbinf32.dll (required) has been added to your project.", kInfo, kTitle);
    return;
  }
  lfncMsgBoxEX(state,
               std::string("A reference to tlbinf32.dll (required) could not be added to your project:") + kCrLf +
                   added.error().description + kCrLf + "Add it to the project's references before compiling.",
               kWarn, kTitle);
}

// Puts the module file in the project, in place of `existing` when given,
// and saves the project.
bool AddModule(platform::VBProject& project, const platform::ComponentPtr& existing, const std::string& path) {
  if (existing && !project.RemoveComponent(*existing).ok()) return false;
  return project.AddComponentFromFile(path).ok() && project.Save().ok();
}

std::string RenameUserControl(const std::string& text, const std::string& name) {
  const std::string begin = "Begin VB.UserControl ";
  size_t at = text.starts_with(begin) ? 0 : text.find("\n" + begin);
  if (at == std::string::npos) return text;
  if (at != 0) ++at;
  const size_t end = text.find_first_of("\r\n", at);
  return text.substr(0, at) + begin + name + (end == std::string::npos ? "" : text.substr(end));
}

}  // namespace

InsertOutcome InsertVerifyClass(AddinState& state, const OptionSet& options, platform::VBE& ide,
                                platform::Registry* registry) {
  const platform::ProjectPtr project = ActiveProject(state, ide);
  if (!project) return InsertOutcome::kNothingToDo;
  const std::string templatePath = state.env().ModuleFolder() + kVerifyClassTemplate;
  const rt::Result<std::string> templateText = ReadTemplate(state, templatePath);
  if (!templateText) {
    lfncMsgBoxEX(state,
                 std::string("Unable to insert the verification class.") + kCrLf + "The file:" + kCrLf + templatePath +
                     " is missing.",
                 kWarn, "Sentrune Template file missing.");
    return InsertOutcome::kFailed;
  }
  const ReferenceScan scan = ScanReferences(state, options, *project, ide.VBProjects());
  if (scan.blocks.empty()) {
    lfncMsgBoxEX(state, std::string("No external dependencies found") + kCrLf + "Add/refresh will not take place.",
                 kInfo, "No dependencies");
    return InsertOutcome::kNothingToDo;
  }
  const std::string& className = options.VerifyClass;
  const platform::ComponentPtr existing = FindComponent(*project, className);
  if (existing && lfncMsgBoxEX(state, className + " already exists. Refresh?",
                               platform::mb::kYesNo + platform::mb::kQuestion, kTitle) != platform::mb::kYes) {
    return InsertOutcome::kDeclined;
  }
  if (!scan.hasTlbInf) AddTlbInfReference(state, *project, registry);
  const std::string folder = rt::GetFolder(project->FileName());
  const std::vector<std::string> oldFiles = existing ? existing->FileNames() : std::vector<std::string>{};
  const std::string path = !oldFiles.empty() ? oldFiles.front() : folder + className + ".cls";
  const bool added = !folder.empty() &&
                     WriteModule(state, path, GenerateVerifyClass(*templateText, scan.blocks, className)).ok() &&
                     AddModule(*project, existing, path);
  lfncMsgBoxEX(state, added ? "Class module has been added/refreshed." : "Failed to add Class module.",
               added ? kInfo : kWarn, kTitle);
  return added ? InsertOutcome::kAdded : InsertOutcome::kFailed;
}

InsertOutcome InsertAlignControl(AddinState& state, const OptionSet& options, platform::VBE& ide) {
  const platform::ProjectPtr project = ActiveProject(state, ide);
  if (!project) return InsertOutcome::kNothingToDo;
  const std::string& name = options.AlignControl;
  if (FindComponent(*project, name)) {
    lfncMsgBoxEX(state, name + " already exists.", kInfo, kTitle);
    return InsertOutcome::kNothingToDo;
  }
  const rt::Result<std::string> templateText = ReadTemplate(state, state.env().ModuleFolder() + kAlignControlTemplate);
  const std::string folder = rt::GetFolder(project->FileName());
  bool added = false;
  if (templateText && !folder.empty()) {
    std::string text = SetModuleAttribute(RenameUserControl(*templateText, name), "VB_Name", VbStringLiteral(name));
    const bool isPublic = project->Type() == platform::vbext_pt_ActiveXControl;
    text = SetModuleAttribute(text, "VB_Exposed", isPublic ? "True" : "False");
    const std::string path = folder + name + ".ctl";
    added = WriteModule(state, path, text).ok() && AddModule(*project, nullptr, path);
  }
  lfncMsgBoxEX(state, added ? "UserControl has been added." : "Failed to add UserControl.", added ? kInfo : kWarn,
               kTitle);
  return added ? InsertOutcome::kAdded : InsertOutcome::kFailed;
}

}  // namespace sentrune
