#include "workflow/compat_history.h"

#include <algorithm>
#include <memory>

#include "files/file_functions.h"
#include "runtime/text.h"
#include "runtime/winpath.h"
#include "tracking/jet351.h"
#include "typelib/parse_tlb.h"
#include "workflow/step_support.h"

namespace sentrune {
namespace {

// Where the copies may be: beside the component, beside the model the
// project is compatible with, then wherever the user chose to put models and
// backups.
std::vector<std::string> CopyFolders(AddinState& state, const OptionSet& options, const platform::VBProject& project,
                                     const std::string& component) {
  const std::string folder = rt::GetFolder(component);
  std::vector<std::string> folders{folder + "Compat\\", rt::AddBackslash(folder + options.BackupFolderName)};
  if (const std::string model = project.CompatibleOleServer(); !model.empty())
    folders.push_back(rt::GetFolder(model));
  const std::string database = TrackingDatabaseName(project);
  if (!database.empty() && lfncFileExists(state.files(), database)) {
    clsJet351 jet(state);
    jet.SetCurrentDBName(database);
    for (const char* setting : {"CompatBase", "CompBackupBase"})
      if (const std::string chosen = jet.GetDBSetting(setting); !chosen.empty())
        folders.push_back(rt::AddBackslash(chosen));
  }
  std::vector<std::string> distinct;
  for (const std::string& f : folders)
    if (std::none_of(distinct.begin(), distinct.end(), [&](const std::string& d) { return rt::IEquals(d, f); }))
      distinct.push_back(f);
  return distinct;
}

void AddCopies(const platform::FileSystem& fs, const std::string& folder, const std::string& pattern,
               std::vector<DatedCopy>& copies) {
  const auto entries = fs.List(folder + pattern);
  if (!entries.ok()) return;  // a folder never made holds no copies
  for (const platform::DirEntry& entry : *entries) {
    if (entry.attributes & platform::kAttrDirectory) continue;
    const std::string path = folder + entry.name;
    if (const rt::Result<rt::DateTime> written = fs.GetLastWriteTime(path); written.ok())
      copies.push_back({path, *written});
  }
}

}  // namespace

std::vector<DatedCopy> CompatTimeline(AddinState& state, const OptionSet& options,
                                      const platform::VBProject& project) {
  const std::string component = project.BuildFileName();
  if (component.empty()) return {};
  const platform::FileSystem& fs = state.files();
  const std::string title = rt::GetFileTitle(component);
  const std::string pattern = rt::StripExtension(title) + "-*" + rt::GetExtension(title);
  std::vector<DatedCopy> copies;
  for (const std::string& folder : CopyFolders(state, options, project, component))
    AddCopies(fs, folder, pattern, copies);
  std::sort(copies.begin(), copies.end(), [](const DatedCopy& a, const DatedCopy& b) {
    return a.written != b.written ? a.written < b.written : rt::LCase(a.path) < rt::LCase(b.path);
  });
  if (const rt::Result<rt::DateTime> written = fs.GetLastWriteTime(component); written.ok())
    copies.push_back({component, *written});
  return copies;
}

void WalkCompatTimeline(AddinState& state, const std::vector<DatedCopy>& timeline, bool ignoreMinor,
                        const std::function<void(const CompatStep&)>& each) {
  std::unique_ptr<clsParseTLB> model;
  std::optional<size_t> modelAt;
  for (size_t i = 0; i < timeline.size(); ++i) {
    auto build = std::make_unique<clsParseTLB>(state);
    const TypeLibReadResult read = build->ReadTypeLib(timeline[i].path);
    if (!read.ok()) {
      each({i, modelAt, {}, rt::Replace(read.message, "\r\n", " ")});
      continue;
    }
    each({i, modelAt, model ? build->CompareDetailed(*model, ignoreMinor, false) : std::vector<TlbDifference>{}, {}});
    model = std::move(build);
    modelAt = i;
  }
}

}  // namespace sentrune
