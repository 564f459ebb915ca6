// The reference list: reading one reference, the filter, the grid over a
// headless IDE and the CSV it saves.
#include <gtest/gtest.h>

#include "files/reference_list.h"
#include "platform/headless/headless_ide.h"
#include "settings/options_handler.h"
#include "support/expected_file.h"
#include "support/test_addin.h"

namespace sentrune::testing {
namespace {

constexpr const char* kFilter = "|vb6.olb|vb5.olb|MSO.DLL|MSADDNDR.DLL|VB6EXT.OLB|";

// A reference whose properties can be set, one of them failing as a broken
// reference's properties fail in the IDE.
struct FakeReference : platform::Reference {
  enum Property { kNone, kName, kDescription, kFullPath, kGuid, kMajor, kMinor, kBroken, kType };
  std::string name, description, fullPath, guid;
  int major = 0, minor = 0, type = platform::vbext_rk_TypeLib;
  bool broken = false;
  Property failing = kNone;

  template <typename T>
  rt::Result<T> Get(Property property, const T& value) const {
    return property == failing ? rt::Result<T>(rt::MakeError(rt::errnum::kFileNotFound)) : rt::Result<T>(value);
  }
  rt::Result<std::string> Name() const override { return Get(kName, name); }
  rt::Result<std::string> Description() const override { return Get(kDescription, description); }
  rt::Result<std::string> FullPath() const override { return Get(kFullPath, fullPath); }
  rt::Result<std::string> Guid() const override { return Get(kGuid, guid); }
  rt::Result<int> Major() const override { return Get(kMajor, major); }
  rt::Result<int> Minor() const override { return Get(kMinor, minor); }
  rt::Result<bool> IsBroken() const override { return Get(kBroken, broken); }
  rt::Result<int> Type() const override { return Get(kType, type); }
};

std::string Read(const FakeReference& reference) {
  const ReferenceRecord r = ReadReference(reference);
  return std::to_string(reference.failing) + ": " + r.description + " | " + r.fullPath + " | " + r.guid + " | " +
         r.kind + " | " + std::to_string(r.minor) + "\n";
}

// Missing texts are completed. A failing read (by property, in the order
// above) ends the reading: what was read before it stays, the rest keeps
// its defaults.
TEST(ReferenceRecord, MissingTextsAreCompletedAndAFailingReadEndsTheReading) {
  FakeReference reference;
  reference.broken = true;
  std::string report = Read(reference);
  reference.description = "Widgets";
  reference.fullPath = "C:\\Src\\Widgets.dll";
  reference.guid = "{G}";
  reference.minor = 2;
  reference.type = platform::vbext_rk_Project;
  for (int property = FakeReference::kNone; property <= FakeReference::kType; ++property) {
    reference.failing = static_cast<FakeReference::Property>(property);
    report += Read(reference);
  }
  ExpectMatchesFile(report, "files/reference-records.txt");
}

TEST(ReferenceFilter, ListedFilesAndTheRuntimeLibraryWhenSwitchedOn) {
  OptionSet options;
  options.FilteredReferenceList = kFilter;
  EXPECT_FALSE(IsFilteredReference(options, "C:\\Program Files\\VB98\\VB6.OLB"));
  options.ReferenceListFiltered = true;
  for (const char* left : {"C:\\Program Files\\VB98\\VB6.OLB", "C:\\Office\\mso.dll",
                           "C:\\Windows\\System32\\MSVBVM60.DLL\\3", "C:\\Windows\\System32\\msvbvm50.dll\\3"})
    EXPECT_TRUE(IsFilteredReference(options, left)) << left;
  for (const char* kept : {"C:\\Windows\\System32\\msvbvm60.dll", "C:\\Lib\\vb6.olb.bak", "C:\\Lib\\"})
    EXPECT_FALSE(IsFilteredReference(options, kept)) << kept;
}

// An IDE with App (two type library references, one of them to the IDE's
// own library, and one to Lib) and Lib, opened alone or as a group.
struct ListWorld : TestAddin {
  ListWorld() {
    files().AddFile("C:\\Windows\\System32\\stdole2.tlb", "");
    files().AddFile("C:\\VB98\\VB6.OLB", "");
    files().AddFile("C:\\Src\\App\\App.vbp",
                    "Type=Exe\r\nReference=*\\G{00020430-0000-0000-C000-000000000046}#2.0#0#C:\\Windows\\System32\\"
                    "stdole2.tlb#OLE Automation\r\nReference=*\\G{FCFB3D2E-A0FA-1068-A738-08002B3371B5}#6.0#0#"
                    "C:\\VB98\\VB6.OLB#VB6\r\nReference=*\\A..\\Lib\\Lib.vbp\r\nName=\"App\"\r\n");
    files().AddFile("C:\\Src\\Lib\\Lib.vbp",
                    "Type=OleDll\r\nReference=*\\G{AAAAAAAA-0000-0000-0000-000000000001}#1.a#0#C:\\Gone\\"
                    "Util.dll#Util, \"the\" helpers\r\nName=\"Lib\"\r\n");
    files().AddFile("C:\\Src\\All.vbg", "VBGROUP 5.0\r\nStartupProject=App\\App.vbp\r\nProject=Lib\\Lib.vbp\r\n");
    handler.InitOptionDefaults();
    handler.options().ReferenceListFiltered = false;
    handler.options().FilteredReferenceList = kFilter;
  }
  ReferenceList& Open(const std::string& path) {
    EXPECT_TRUE(ide.Open(path).ok()) << path;
    list.Fill();
    return list;
  }
  // The project box, then one line a row: its cells and the reference's kind.
  std::string Grid(const std::string& heading) const {
    std::string text = "== " + heading + "\nProjects:";
    for (const std::string& project : list.Projects()) text += " " + project + ";";
    for (const ReferenceRow& row : list.Rows()) {
      text += "\n";
      for (const std::string& cell : row.Cells()) text += cell + " | ";
      text += row.reference.kind;
    }
    return text + "\n";
  }
  OptionsHandler handler{state};
  headless::HeadlessIde ide{files()};
  ReferenceList list{state, handler, ide};
};

// Rows are numbered from one per selection and filter.
TEST(ReferenceList, GridPerSelectionAndFilterAndTheSavedCsv) {
  ListWorld w;
  w.handler.SaveOption("References_ColWidth3", "2500");
  ReferenceList& list = w.Open("C:\\Src\\App\\App.vbp");
  EXPECT_EQ(list.colWidths, (std::array<int32_t, 6>{-1, -1, 2500, -1, -1, -1}));
  std::string grids = w.Grid("App");
  w.handler.options().ReferenceListFiltered = true;  // drops the IDE's own library
  list.Fill();
  grids += w.Grid("App filtered");
  ListWorld group;
  ReferenceList& all = group.Open("C:\\Src\\All.vbg");
  grids += group.Grid("group");
  EXPECT_TRUE(all.SelectProject("lib"));
  EXPECT_FALSE(all.SelectProject("Nope"));
  grids += group.Grid("group, Lib selected");
  EXPECT_EQ(all.SelectedProject(), "Lib");
  ExpectMatchesFile(grids, "files/references.grid.txt");

  // The CSV replaces any file without asking; the writer trims every value.
  const std::string out = "C:\\Out\\refs.csv";
  group.files().AddFile(out, "old");
  ASSERT_TRUE(group.files().SetAttributes(out, 33).ok());
  all.SelectProject("-All Projects-");
  ASSERT_EQ(all.SaveList(out), 0);
  ExpectMatchesFile(group.files().Contents(out).value_or(""), "files/references.csv");
  EXPECT_EQ(group.ui.Prompts(), Strings{"CSV File Saved\r\n" + out});

  // The save button adds the extension to the name asked for.
  group.ui.QueueSaveFile("C:\\Out\\refs2");
  EXPECT_EQ(all.cmdSaveList_Click(), 0);
  EXPECT_TRUE(group.files().Exists("C:\\Out\\refs2.csv"));
  // A folder the writer cannot make: its own error, no saved report.
  group.ui.boxes.clear();
  group.files().LimitDrives("C");
  EXPECT_NE(all.SaveList("Q:\\Out\\refs.csv"), 0);
  for (const AskedBox& box : group.ui.boxes) EXPECT_EQ(box.prompt.find("CSV File Saved"), std::string::npos);
}

}  // namespace
}  // namespace sentrune::testing
