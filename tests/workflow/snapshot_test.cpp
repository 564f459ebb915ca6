// Snapshots: the file list read from the project file, where each file goes,
// and the driver after a build and from the menu.
#include "workflow/snapshot.h"

#include <gtest/gtest.h>

#include "workflow/snapshot_list.h"
#include "workflow_world.h"

namespace sentrune::testing {
namespace {

constexpr const char* kSnapshot = "C:\\Src\\Widgets\\Widgets 2004.05.06-14.03.09\\";

TEST(SnapshotList, TakesTheNamedFilesAndTheirCompanionsThatExist) {
  FakeFileSystem fs;
  for (const char* name : {"P.vbl", "Forms\\Main.frm", "Forms\\Main.frx", "Widget.cls", "Globals.bas", "Page1.pag",
                           "Page1.pgx", "Dial.ctl", "Dial.ctx", "Report.Dsr", "Report.dca", "Notes.txt", "P.res",
                           "Quoted Name.frm", "X.OCX"})
    fs.AddFile(std::string("C:\\P\\") + name, "");
  const std::string text =
      "Type=OleDll\r\nForm=Forms\\Main.frm\r\n  CLASS = Widget; Widget.cls\r\nModule=Globals;Globals.bas\r\n"
      "PropertyPage=Page1.pag\r\nUserControl=Dial.ctl\r\nDesigner=Report.Dsr\nRelatedDoc=Notes.txt\r\n"
      "ResFile32=\"P.res\"\r\nForm=\"Quoted Name.frm\"\r\n"
      "Form=Missing.frm\r\nObject={831FDD16-0C5C-11D2-A9FC-0000F8754DA1}#2.0#0; X.OCX\r\n";
  // A property page's companion would be named .pax, so its .pgx is not found.
  EXPECT_EQ(SnapshotFileList(fs, "C:\\P\\P.vbp", text),
            (Strings{"P.vbl", "Forms\\Main.frm", "Forms\\Main.frx", "Widget.cls", "Globals.bas", "Page1.pag",
                     "Dial.ctl", "Dial.ctx", "Report.Dsr", "Report.dca", "Notes.txt", "P.res", "Quoted Name.frm"}));
}

TEST(SnapshotList, NothingIsPlacedOutsideTheSnapshotFolder) {
  const struct {
    const char* name;
    const char* relative;  // nullptr: not a usable name
  } cases[] = {
      {"C:\\Src\\Widgets\\Sub\\b.bas", "Sub\\b.bas"},
      {"..\\Widgets\\c.bas", "c.bas"},
      {"..\\Shared\\a.bas", "_outside\\Shared\\a.bas"},
      {"Sub\\..\\..\\..\\Lib\\d.bas", "_outside\\Lib\\d.bas"},
      {"D:\\Lib\\e.bas", "_outside\\D\\Lib\\e.bas"},
      {"\\\\server\\share\\f.bas", "_outside\\server\\share\\f.bas"},
      {"\\Lib\\g.bas", "_outside\\C\\Lib\\g.bas"},
      {"C:drive-relative.bas", nullptr},
      {"..\\..\\..\\..", nullptr},
  };
  for (const auto& c : cases) {
    const std::optional<SnapshotPlace> place = PlaceInSnapshot("C:\\Src\\Widgets\\", c.name);
    ASSERT_EQ(place.has_value(), c.relative != nullptr) << c.name;
    if (!place) continue;
    EXPECT_EQ(place->relative, c.relative) << c.name;
    EXPECT_EQ(place->outside, place->relative.starts_with("_outside")) << c.name;
  }
  EXPECT_EQ(PlaceInSnapshot("C:\\Src\\Widgets\\", "..\\Shared\\a.bas")->source, "C:\\Src\\Shared\\a.bas");

  // Nor can the project's name or the date format make the folder's own
  // name climb or descend.
  const struct {
    const char* project;
    const char* time;
    const char* folder;
  } names[] = {
      {"Widgets", "2004.05.06-14.03.09", "Widgets 2004.05.06-14.03.09"},
      {"..\\..\\..\\outside\\evil", "/../../x", ".._.._.._outside_evil _.._.._x"},
      {"C:", "14:03", "C_ 14_03"},
      {"..", "", "__ "},
      {".", ".", "_ _"},
  };
  for (const auto& n : names) EXPECT_EQ(SnapshotFolderName(n.project, n.time), n.folder) << n.project;
}

struct SnapshotWorld : WorkflowWorld {
  SnapshotWorld()
      : WorkflowWorld("OleDll",
                      "Form=frmAbout.frm\r\nModule=modShapes; ..\\Shared\\modShapes.bas\r\n"
                      "Reference=*\\G{00000201-0000-0010-8000-00AA006D2EA4}#2.1#0#C:\\Missing\\msado.tlb#Lost\r\n"
                      "Object={831FDD16-0C5C-11D2-A9FC-0000F8754DA1}#2.0#0; MSCOMCTL.OCX\r\n"
                      "Object={00000000-0000-0000-0000-000000000001}#1.0#0; GONE.OCX\r\n",
                      [](FakeFileSystem& fs) {
                        fs.AddFile("C:\\Src\\Widgets\\frmAbout.frm",
                                   "VERSION 5.00\r\nAttribute VB_Name = \"frmAbout\"\r\n");
                        fs.AddFile("C:\\Src\\Widgets\\frmAbout.frx", "binary");
                        fs.AddFile("C:\\Src\\Shared\\modShapes.bas", "Attribute VB_Name = \"modShapes\"\r\n");
                        fs.AddFile("C:\\Windows\\System32\\stdole2.tlb", "library");
                        fs.AddFile("C:\\Windows\\System32\\MSCOMCTL.OCX", "control");
                      }) {}
};

TEST(Snapshot, AfterABuildSilentlyAndFromTheMenuWithCommentAndDependencies) {
  SnapshotWorld w;
  w.options.CreateSnapshot.fill(1);
  w.options.SnapIsReadOnly = true;
  w.files().ClearRecord();
  w.Build("1.0", kFirstBuild);
  const std::string folder = kSnapshot;
  for (const char* name : {"Widgets.vbp", "Widget.cls", "frmAbout.frm", "frmAbout.frx",
                           "_outside\\Shared\\modShapes.bas"})
    EXPECT_EQ(w.files().GetAttributes(folder + name).value_or(0) & platform::kAttrReadOnly, 1u) << name;
  EXPECT_FALSE(w.files().Exists(folder + "_Snapshot_ReadME.txt") || w.files().Exists(folder + "Dependencies"));
  EXPECT_TRUE(w.ui.fileQuestions.empty());
  for (const auto& [from, to] : w.files().Record().copies) EXPECT_TRUE(to.starts_with(folder)) << to;
  const BuildReport& report = w.sink->Report();
  EXPECT_EQ(report.snapshotFolder, folder);
  ASSERT_EQ(report.snapshotOutside.size(), 1u);
  EXPECT_EQ(report.snapshotOutside[0].destination, folder + "_outside\\Shared\\modShapes.bas");
  EXPECT_EQ(w.mainForm.lstFiles(),
            (Strings{"Widget.cls", "frmAbout.frm", "frmAbout.frx", "..\\Shared\\modShapes.bas"}));

  // The menu's snapshot in the same second gets a folder of its own and
  // leaves the first one's copies as they were.
  const std::optional<std::string> first = w.files().Contents(folder + "Widget.cls");
  w.files().AddFile("C:\\Src\\Widgets\\Widget.cls", "VERSION 1.0 CLASS\r\nAttribute VB_Name = \"Widget\"\r\n'v2\r\n");
  w.ui.QueueFileHandler({platform::mb::kYes, kSnapshot, std::nullopt, "Release 1.0", true, true});
  EXPECT_EQ(lfncSnapshotEX(*w.sink, true), 0);
  EXPECT_EQ(w.files().Contents(kSnapshot + std::string("Widget.cls")), first);
  const std::string second = "C:\\Src\\Widgets\\Widgets 2004.05.06-14.03.09 (2)\\";
  EXPECT_EQ(w.sink->Report().snapshotFolder, second);
  EXPECT_EQ(w.files().Contents(second + "Widget.cls"), w.files().Contents("C:\\Src\\Widgets\\Widget.cls"));
  ASSERT_EQ(w.Captions(), Strings{"Create Snapshot?"});
  EXPECT_EQ(w.ui.fileQuestions[0].browsePathFooter, "Widgets 2004.05.06-14.03.09\\");
  EXPECT_EQ(w.ui.fileQuestions[0].commentText, "Project Snapshot Created: 5/6/2004 2:03:09 PM");
  EXPECT_EQ(w.files().Contents(second + "_Snapshot_ReadME.txt"), "Release 1.0\r\n");
  EXPECT_EQ(*w.files().GetAttributes(second + "_Snapshot_ReadME.txt"), 33u);
  // The missing reference and control are left out (a failed copy would
  // have made the answer an error number).
  for (const char* name : {"MSCOMCTL.OCX", "stdole2.tlb"})
    EXPECT_TRUE(w.files().Exists(second + "Dependencies\\" + name)) << name;
  EXPECT_TRUE(w.ui.boxes.empty());

  // Choices made beforehand (the command line's) are what the dialog shows,
  // over the stored defaults.
  w.options.DefaultStoreComment = false;
  w.options.DefaultGatherDepens = true;
  w.ui.QueueFileHandler({platform::mb::kNo, kSnapshot, std::nullopt, "", false, false});
  EXPECT_EQ(lfncSnapshotEX(*w.sink, true, SnapshotChoices{"Nightly", false}), 0);
  ASSERT_EQ(w.ui.fileQuestions.size(), 2u);
  EXPECT_EQ(w.ui.fileQuestions[1].commentText, "Nightly");
  EXPECT_TRUE(w.ui.fileQuestions[1].commentsEnabled);
  EXPECT_FALSE(w.ui.fileQuestions[1].referencesEnabled);

  // A project not on disk only gets the message.
  ASSERT_TRUE(w.files().DeleteFile(kProjectFile).ok());
  w.ui.fileQuestions.clear();
  EXPECT_EQ(lfncSnapshotEX(*w.sink, true), 53);
  EXPECT_EQ(w.ui.Prompts(), Strings{"'Widgets' not saved or path not found."});
  EXPECT_TRUE(w.ui.fileQuestions.empty());
}

}  // namespace
}  // namespace sentrune::testing
