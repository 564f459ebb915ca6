// The reference list: reading one reference, the filter, the grid over a
// headless IDE and the CSV it saves.
#include <gtest/gtest.h>

#include "files/reference_list.h"
#include "platform/headless/headless_ide.h"
#include "settings/options_handler.h"
#include "support/test_addin.h"

namespace sentrune::testing {
namespace {

using Strings = std::vector<std::string>;
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
  return r.description + "|" + r.fullPath + "|" + r.guid + "|" + r.kind + "|" + std::to_string(r.minor);
}

TEST(ReferenceRecord, MissingTextsAreCompletedAndAFailingReadEndsTheReading) {
  FakeReference reference;
  reference.broken = true;
  EXPECT_EQ(Read(reference), " - [No description available.] - [Missing/Broken Reference.]|"
                             "N/A - [Component not registered.]|N/A - [No GUID available.]|External|0");
  reference.description = "Widgets";
  reference.fullPath = "C:\\Src\\Widgets.dll";
  reference.guid = "{G}";
  reference.minor = 2;
  reference.type = platform::vbext_rk_Project;
  EXPECT_EQ(Read(reference), "Widgets - [Missing/Broken Reference.]|C:\\Src\\Widgets.dll|{G}|VBP|2");
  // What was read before the failure stays; the rest keeps its defaults.
  reference.failing = FakeReference::kFullPath;
  EXPECT_EQ(Read(reference), "Widgets - [Error Processing Reference.]|"
                             "N/A - [Component not registered.]|N/A - [No GUID available.]|External|0");
  reference.failing = FakeReference::kType;
  EXPECT_EQ(Read(reference), "Widgets - [Error Processing Reference.] - [Missing/Broken Reference.]|"
                             "C:\\Src\\Widgets.dll|{G}|External|2");
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
  Strings Column(size_t column) const {
    Strings cells;
    for (const ReferenceRow& row : list.Rows()) cells.push_back(row.Cells()[column]);
    return cells;
  }

  OptionsHandler handler{state};
  headless::HeadlessIde ide{files()};
  ReferenceList list{state, handler, ide};
};

TEST(ReferenceList, RowsAreNumberedFromOnePerSelectionAndFilter) {
  ListWorld w;
  w.handler.SaveOption("References_ColWidth3", "2500");
  ReferenceList& list = w.Open("C:\\Src\\App\\App.vbp");
  EXPECT_EQ(list.Projects(), Strings{"App"});
  EXPECT_EQ(list.colWidths, (std::array<int32_t, 6>{-1, -1, 2500, -1, -1, -1}));
  ASSERT_EQ(list.Rows().size(), 3u);
  EXPECT_EQ(list.Rows()[0].Cells(), (Strings{"1", "App", "OLE Automation", "C:\\Windows\\System32\\stdole2.tlb",
                                             "{00020430-0000-0000-C000-000000000046}", "2.0"}));
  // The filter drops the IDE's own library; the numbers close up.
  w.handler.options().ReferenceListFiltered = true;
  list.Fill();
  EXPECT_EQ(w.Column(0), (Strings{"1", "2"}));
  EXPECT_EQ(list.Rows()[1].reference.kind, "VBP");

  ListWorld group;
  ReferenceList& all = group.Open("C:\\Src\\All.vbg");
  EXPECT_EQ(all.Projects(), (Strings{"-All Projects-", "App", "Lib"}));
  EXPECT_EQ(group.Column(1), (Strings{"App", "App", "App", "Lib"}));
  EXPECT_TRUE(all.SelectProject("lib"));
  EXPECT_EQ(all.SelectedProject(), "Lib");
  EXPECT_EQ(group.Column(0), Strings{"1"});
  EXPECT_FALSE(all.SelectProject("Nope"));
  EXPECT_EQ(all.SelectedProject(), "Lib");
}

TEST(ReferenceList, SavesTheGridAsCsvReplacingAnyFileWithoutAsking) {
  ListWorld w;
  ReferenceList& list = w.Open("C:\\Src\\All.vbg");
  const std::string out = "C:\\Out\\refs.csv";
  w.files().AddFile(out, "old");
  ASSERT_TRUE(w.files().SetAttributes(out, 33).ok());
  ASSERT_EQ(list.SaveList(out), 0);
  const std::string csv = w.files().Contents(out).value_or("");
  EXPECT_TRUE(csv.starts_with(" --- Begin Log ---\r\nModel: Unknown,Serial Number: Unknown,Date: ")) << csv;
  const size_t rows = csv.find("Ref #");
  ASSERT_NE(rows, std::string::npos) << csv;
  EXPECT_EQ(csv.substr(rows),
            "Ref #,Project,Description,Full Path,GUID,TLB Version\r\n"
            "1,App,OLE Automation,C:\\Windows\\System32\\stdole2.tlb,{00020430-0000-0000-C000-000000000046},2.0\r\n"
            "2,App,VB6,C:\\VB98\\VB6.OLB,{FCFB3D2E-A0FA-1068-A738-08002B3371B5},6.0\r\n"
            // The writer trims every value, so the completed description loses its blank.
            "3,App,- [No description available.],C:\\Src\\Lib\\Lib.vbp,N/A - [No GUID available.],0.0\r\n"
            "4,Lib,\"Util, \"\"the\"\" helpers - [Missing/Broken Reference.]\",C:\\Gone\\Util.dll,"
            "{AAAAAAAA-0000-0000-0000-000000000001},1.10\r\n --- End Log ---\r\n");
  ASSERT_EQ(w.ui.boxes.size(), 1u);  // no overwrite question
  EXPECT_EQ(w.ui.boxes[0].prompt, "CSV File Saved\r\n" + out);

  // The save button adds the extension to the name asked for.
  w.ui.QueueSaveFile("C:\\Out\\refs2");
  EXPECT_EQ(list.cmdSaveList_Click(), 0);
  EXPECT_TRUE(w.files().Exists("C:\\Out\\refs2.csv"));
  // A folder the writer cannot make: its own error, no saved report.
  w.ui.boxes.clear();
  w.files().LimitDrives("C");
  EXPECT_NE(list.SaveList("Q:\\Out\\refs.csv"), 0);
  for (const AskedBox& box : w.ui.boxes) EXPECT_EQ(box.prompt.find("CSV File Saved"), std::string::npos);
}

}  // namespace
}  // namespace sentrune::testing
