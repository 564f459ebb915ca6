// The files a project depends on, gathered into its snapshot so that the
// snapshot can be built again on another machine.
#include <set>

#include "files/file_functions.h"
#include "files/trapped_error.h"
#include "runtime/text.h"
#include "runtime/winpath.h"
#include "workflow/snapshot.h"
#include "workflow/snapshot_list.h"

namespace sentrune {
namespace {

bool IsDigits(std::string_view text) {
  return !text.empty() && text.find_first_not_of("0123456789") == std::string_view::npos;
}

// A type library may sit in a resource of its module ("MSVBVM60.DLL\3").
std::optional<std::string> ReferenceFile(const platform::FileSystem& fs,
                                         const platform::Reference& reference) {
  const rt::Result<int> kind = reference.Type();
  const rt::Result<bool> broken = reference.IsBroken();
  const rt::Result<std::string> path = reference.FullPath();
  if (!kind || *kind != platform::vbext_rk_TypeLib || !broken || *broken || !path) return std::nullopt;
  if (lfncFileExists(fs, *path)) return *path;
  const std::string module = rt::GetFolder(*path);
  if (IsDigits(rt::GetFileTitle(*path)) && module.size() > 1) {
    const std::string file = module.substr(0, module.size() - 1);
    if (lfncFileExists(fs, file)) return file;
  }
  return std::nullopt;
}

// Where the control's file starts after: the ";" the IDE writes, or the
// third "#", which the path fixer writes in its place.
size_t FileSeparator(std::string_view value) {
  const size_t semicolon = value.find(';');
  if (semicolon != std::string_view::npos) return semicolon;
  size_t at = std::string_view::npos;
  for (int i = 0; i < 3 && (i == 0 || at != std::string_view::npos); ++i) at = value.find('#', at + 1);
  return at;
}

// "{guid}#2.0#0; MSCOMCTL.OCX": the control's file, found beside the project
// or in the system folder, where the IDE's registrations usually point.
std::optional<std::string> ControlFile(AddinState& state, const std::string& projectFolder,
                                       const std::string& value) {
  const std::string trimmed = rt::Trim(value);
  const size_t joiner = FileSeparator(trimmed);
  if (trimmed.starts_with("*\\A") || joiner == std::string::npos) return std::nullopt;
  const std::string file = rt::Trim(rt::Replace(trimmed.substr(joiner + 1), "\"", ""));
  if (file.empty()) return std::nullopt;
  std::vector<std::string> candidates;
  if (rt::ParseWinPath(file)) {
    candidates.push_back(file);
  } else {
    candidates.push_back(projectFolder + file);
    const std::string system = state.env().SpecialFolderPath(platform::kFolderSystem);
    if (!system.empty()) candidates.push_back(rt::AddBackslash(system) + file);
  }
  for (const std::string& candidate : candidates)
    if (lfncFileExists(state.files(), candidate)) return candidate;
  return std::nullopt;
}

std::vector<std::string> DependencyFiles(const StepContext& step) {
  std::vector<std::string> files;
  for (const std::shared_ptr<platform::Reference>& reference : step.project.References())
    if (std::optional<std::string> file = ReferenceFile(step.state.files(), *reference)) files.push_back(*file);
  const rt::Result<std::string> bytes = step.state.files().ReadFile(step.project.FileName());
  if (!bytes) return files;
  const std::string projectFolder = rt::GetFolder(step.project.FileName());
  for (const std::string& line : ProjectFileLines(rt::Cp1252ToUtf8(*bytes))) {
    const std::optional<ProjectFileEntry> entry = SplitProjectLine(line);
    if (!entry || entry->key != "object") continue;
    if (std::optional<std::string> file = ControlFile(step.state, projectFolder, entry->value))
      files.push_back(*file);
  }
  return files;
}

}  // namespace

int32_t GatherDependencies(const StepContext& step, SnapshotFolder& snapshot) {
  std::set<std::string> taken;  // by lower-case file name: one copy each
  int32_t result = 0;
  for (const std::string& file : DependencyFiles(step)) {
    const std::string title = rt::GetFileTitle(file);
    if (!taken.insert(rt::LCase(title)).second) continue;
    const rt::Status copied = snapshot.Put(file, "Dependencies\\" + title);
    if (!copied && result == 0)
      result = ReportTrappedError(step.state, copied.error(), "modCommon:GatherDependencies");
  }
  return result;
}

}  // namespace sentrune
