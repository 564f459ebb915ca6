#pragma once
// The reference list of frmAddinMain: every reference of one open project, or
// of all of them, with its description, file, GUID and type library version,
// which the developer can save as a CSV file.
#include <array>
#include <cstdint>
#include <string>
#include <vector>

#include "state/addin_state.h"
#include "platform/ide.h"
#include "platform/ui.h"
#include "settings/option_set.h"

namespace sentrune {

class OptionsHandler;

// One reference as the list reads it, already completed: texts that could
// not be had are replaced by the list's "N/A - [...]" texts.
struct ReferenceRecord {
  std::string name;
  std::string description;
  std::string fullPath;
  std::string guid;
  int major = 0;
  int minor = 0;
  bool broken = false;
  std::string kind;  // "External" or "VBP", the key of its picture
};

// Reads the properties in the order of the record. The first read that fails
// ends the reading (the fields after it keep their defaults) and marks the
// description with " - [Error Processing Reference.]"; then the fixed
// completion rules apply.
ReferenceRecord ReadReference(const platform::Reference& reference);

// True when the filter is on and the full path names a listed file (by its
// name without folder) or the language runtime's type library resource.
bool IsFilteredReference(const OptionSet& options, const std::string& fullPath);

struct ReferenceRow {
  int number = 0;  // "Ref #", counted from 1 over the whole grid
  std::string project;
  ReferenceRecord reference;
  // The six cells in header order.
  std::vector<std::string> Cells() const;
};

class ReferenceList {
 public:
  static constexpr const char* kAllProjects = "-All Projects-";
  static constexpr std::array<const char*, 6> kHeaders{"Ref #",    "Project", "Description",
                                                       "Full Path", "GUID",    "TLB Version"};

  // The state, the options store and the IDE must outlive the list.
  ReferenceList(AddinState& state, OptionsHandler& options, platform::VBE& ide)
      : state_(state), options_(options), ide_(ide) {}

  // Restores the remembered widths, fills cboProjects with the open
  // projects ("-All Projects-" first when there is more than one) and the
  // grid for the first entry.
  void Fill();
  const std::vector<std::string>& Projects() const { return projects_; }
  const std::string& SelectedProject() const { return selected_; }
  // cboProjects_Click: refills the grid with that entry's references. False
  // (and nothing changed) for a name that is not offered.
  bool SelectProject(const std::string& entry);

  const std::vector<ReferenceRow>& Rows() const { return rows_; }
  // The grid as a form: the six headers and one row of cells per reference.
  platform::FormView View() const;

  // Fill, show the form modally, then keep its size and column widths.
  void Show();

  // cmdSaveList_Click: asks for a file and saves the grid there.
  int32_t cmdSaveList_Click();
  // Saves the grid, header row first, through the log file writer with ","
  // as the delimiter, replacing the file (read-only or not) without asking,
  // and reports "CSV File Saved". 0, or the error that stopped it.
  int32_t SaveList(const std::string& fileName);
  // The name SaveList last wrote (after the writer added any extension).
  const std::string& SavedFile() const { return savedFile_; }

  // Remembered as "References_Height", "References_Width" and
  // "References_ColWidth" + column number; -1 keeps the designed size.
  int32_t height = -1;
  int32_t width = -1;
  std::array<int32_t, 6> colWidths{-1, -1, -1, -1, -1, -1};
  void LoadLayout();
  void SaveLayout() const;

 private:
  void FillRows();
  void AddRows(platform::VBProject& project);

  AddinState& state_;
  OptionsHandler& options_;
  platform::VBE& ide_;
  std::vector<std::string> projects_;
  std::string selected_;
  std::vector<ReferenceRow> rows_;
  std::string savedFile_;
};

}  // namespace sentrune
