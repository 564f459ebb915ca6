#include "files/reference_list.h"

#include "files/file_functions.h"
#include "files/trapped_error.h"
#include "state/msgbox.h"
#include "logging/csv_file_writer.h"
#include "runtime/text.h"
#include "runtime/winpath.h"
#include "runtime/vb_convert.h"
#include "settings/options_handler.h"

namespace sentrune {
namespace {

constexpr const char* kSaveTitle = "frmAddinMain:cmdSaveList_Click";
constexpr const char* kLayoutKey = "References";

template <typename T>
bool Read(const rt::Result<T>& read, T& into) {
  if (!read.ok()) return false;
  into = *read;
  return true;
}

// Stops at the first failing read, as the list has always shown only what
// it had read before a reference raised.
bool ReadProperties(const platform::Reference& reference, ReferenceRecord& record, int& kind) {
  return Read(reference.Name(), record.name) && Read(reference.Description(), record.description) &&
         Read(reference.FullPath(), record.fullPath) && Read(reference.Guid(), record.guid) &&
         Read(reference.Major(), record.major) && Read(reference.Minor(), record.minor) &&
         Read(reference.IsBroken(), record.broken) && Read(reference.Type(), kind);
}

int32_t StoredNumber(OptionsHandler& options, const std::string& key) {
  return rt::CLng(options.GetOption(key, "-1")).value_or(-1);
}

std::string ColumnKey(size_t column) {
  return std::string(kLayoutKey) + "_ColWidth" + std::to_string(column + 1);
}

}  // namespace

ReferenceRecord ReadReference(const platform::Reference& reference) {
  ReferenceRecord record;
  int kind = platform::vbext_rk_TypeLib;
  if (!ReadProperties(reference, record, kind)) record.description += " - [Error Processing Reference.]";
  record.kind = kind == platform::vbext_rk_Project ? "VBP" : "External";
  if (record.description.empty()) record.description += " - [No description available.]";
  if (record.fullPath.empty()) record.fullPath = "N/A - [Component not registered.]";
  if (record.guid.empty()) record.guid = "N/A - [No GUID available.]";
  if (record.broken) record.description += " - [Missing/Broken Reference.]";
  return record;
}

bool IsFilteredReference(const OptionSet& options, const std::string& fullPath) {
  if (!options.ReferenceListFiltered) return false;
  const std::string path = rt::LCase(fullPath);
  if (path.find("msvbvm60.dll\\3") != std::string::npos || path.find("msvbvm50.dll\\3") != std::string::npos)
    return true;
  const std::string title = rt::GetFileTitle(path);
  return !title.empty() && rt::LCase(options.FilteredReferenceList).find("|" + title + "|") != std::string::npos;
}

std::vector<std::string> ReferenceRow::Cells() const {
  return {std::to_string(number), project,        reference.description, reference.fullPath,
          reference.guid,         std::to_string(reference.major) + "." + std::to_string(reference.minor)};
}

void ReferenceList::Fill() {
  LoadLayout();
  projects_.clear();
  for (const platform::ProjectPtr& project : ide_.VBProjects()) projects_.push_back(project->Name());
  if (projects_.size() > 1) projects_.insert(projects_.begin(), kAllProjects);
  selected_ = projects_.empty() ? std::string() : projects_.front();
  FillRows();
}

bool ReferenceList::SelectProject(const std::string& entry) {
  for (const std::string& offered : projects_) {
    if (!rt::IEquals(offered, entry)) continue;
    selected_ = offered;
    FillRows();
    return true;
  }
  return false;
}

void ReferenceList::FillRows() {
  rows_.clear();
  if (selected_.empty()) return;
  for (const platform::ProjectPtr& project : ide_.VBProjects()) {
    if (selected_ == kAllProjects || project->Name() == selected_) AddRows(*project);
  }
}

void ReferenceList::AddRows(platform::VBProject& project) {
  const std::string name = project.Name();
  for (const std::shared_ptr<platform::Reference>& reference : project.References()) {
    if (!reference) continue;
    ReferenceRecord record = ReadReference(*reference);
    if (IsFilteredReference(options_.options(), record.fullPath)) continue;
    rows_.push_back({static_cast<int>(rows_.size()) + 1, name, std::move(record)});
  }
}

platform::FormView ReferenceList::View() const {
  platform::FormView view;
  view.kind = platform::FormView::Kind::kGrid;
  view.caption = "References";
  view.headers.assign(kHeaders.begin(), kHeaders.end());
  for (const ReferenceRow& row : rows_) view.rows.push_back({0, false, row.Cells()});
  return view;
}

void ReferenceList::Show() {
  Fill();
  state_.ui().ShowForm(View());
  SaveLayout();
}

int32_t ReferenceList::cmdSaveList_Click() {
  const std::optional<std::string> chosen = state_.ui().SaveFile("Save Reference List", "CSV Files (*.csv)|*.csv");
  if (!chosen || chosen->empty()) return 0;
  return SaveList(*chosen);
}

int32_t ReferenceList::SaveList(const std::string& fileName) {
  savedFile_.clear();
  platform::FileSystem& fs = state_.files();
  if (lfncFileExists(fs, fileName)) {
    if (const rt::Status writable = fs.SetAttributes(fileName, platform::kAttrArchive); !writable)
      return ReportTrappedError(state_, writable.error(), kSaveTitle);
  }
  // The writer reports its own failures; they are not shown a second time.
  clsCSVFileWriter writer(state_);
  writer.DataFormat = 1;
  writer.DefaultDelimiter = ",";
  writer.DefaultFileExtension = ".csv";
  if (const int32_t opened = writer.InitializeLog(fileName, 2, 2); opened != 0) return opened;
  const std::string written = writer.FullPathToLogFile();
  int32_t error = writer.WriteLogEntries(std::vector<std::string>(kHeaders.begin(), kHeaders.end()));
  for (size_t i = 0; error == 0 && i < rows_.size(); ++i) error = writer.WriteLogEntries(rows_[i].Cells());
  const int32_t closed = writer.CloseLog();
  if (error == 0) error = closed;
  if (error != 0) return error;
  savedFile_ = written;
  lfncMsgBoxEX(state_, "CSV File Saved\r\n" + savedFile_, platform::mb::kInformation, "Sentrune");
  return 0;
}

void ReferenceList::LoadLayout() {
  height = StoredNumber(options_, std::string(kLayoutKey) + "_Height");
  width = StoredNumber(options_, std::string(kLayoutKey) + "_Width");
  for (size_t i = 0; i < colWidths.size(); ++i) colWidths[i] = StoredNumber(options_, ColumnKey(i));
}

void ReferenceList::SaveLayout() const {
  options_.SaveOption(std::string(kLayoutKey) + "_Height", std::to_string(height));
  options_.SaveOption(std::string(kLayoutKey) + "_Width", std::to_string(width));
  for (size_t i = 0; i < colWidths.size(); ++i) options_.SaveOption(ColumnKey(i), std::to_string(colWidths[i]));
}

}  // namespace sentrune
