// Saving projects: only the lines that changed may differ from the file read.
#include <gtest/gtest.h>

#include "support/fake_file_system.h"
#include "support/fake_typelib_source.h"
#include "headless/headless_test_support.h"
#include "platform/headless/headless_ide.h"

namespace sentrune::headless::test {
namespace {

using testing::FakeFileSystem;

constexpr char kWidgets[] = "C:\\Src\\Widgets\\Widgets.vbp";
constexpr char kTiny[] = "C:\\Src\\Tiny\\Tiny.vbp";

std::string Replaced(std::string text, const std::string& from, const std::string& to) {
  const size_t at = text.find(from);
  EXPECT_NE(at, std::string::npos) << from;
  return at == std::string::npos ? text : text.replace(at, from.size(), to);
}

class HeadlessSave : public ::testing::Test {
 protected:
  void SetUp() override {
    fs.AddFile(kWidgets, FixtureBytes("Widgets.vbp"));
    fs.AddFile(kTiny, FixtureBytes("Tiny.vbp"));
    fs.AddFile("C:\\Src\\Tiny\\Main.frm", Source("frmMain"));
  }
  std::shared_ptr<HeadlessProject> Open(const std::string& path) {
    auto opened = ide.Open(path);
    EXPECT_TRUE(opened.ok());
    const auto project = opened.ok() ? opened->projects.at(0) : nullptr;
    if (project) subscription = ide.Events().FileControlEvents(project, recorder);
    return project;
  }

  FakeFileSystem fs;
  testing::FakeTypeLibSource typelibs;
  HeadlessIde ide{fs, &typelibs};
  Recorder recorder;
  std::unique_ptr<platform::Subscription> subscription;
};

TEST_F(HeadlessSave, UnchangedProjectsSaveByteForByte) {
  for (const char* path : {kWidgets, kTiny}) {
    const auto project = Open(path);
    const std::string before = *fs.Contents(path);
    fs.ClearRecord();
    ASSERT_TRUE(project->Save().ok());
    EXPECT_EQ(*fs.Contents(path), before) << path;
    // Through a temporary file renamed over the original.
    ASSERT_EQ(fs.Record().renames.size(), 1u);
    EXPECT_EQ(fs.Record().renames[0].second, path);
    EXPECT_FALSE(fs.Exists(fs.Record().renames[0].first));
  }
  EXPECT_EQ(recorder.heard, (std::vector<std::string>{"AfterWriteFile Widgets 3 " + std::string(kWidgets) + " 0",
                                                      "AfterWriteFile Tiny 3 " + std::string(kTiny) + " 0"}));
}

TEST_F(HeadlessSave, CompatibilitySettingRewritesOnlyItsLines) {
  const auto project = Open(kWidgets);
  const std::string original = FixtureBytes("Widgets.vbp");
  struct Case {
    std::string path, written;
  };
  const std::vector<Case> cases{
      {"C:\\Src\\Widgets\\Compat\\Widgets-2004.dll", "Compat\\Widgets-2004.dll"},
      {"C:\\Src\\Models\\Widgets.dll", "..\\Models\\Widgets.dll"},
      {"D:\\Models\\Widgets.dll", "D:\\Models\\Widgets.dll"},
  };
  for (const Case& c : cases) {
    ASSERT_TRUE(project->SetCompatibleOleServer(c.path).ok());
    EXPECT_EQ(project->CompatibleOleServer(), c.path);
    ASSERT_TRUE(project->Save().ok());
    std::string expected = Replaced(original, "CompatibleMode=\"1\"", "CompatibleMode=\"2\"");
    expected = Replaced(expected, "CompatibleEXE32=\"Compat\\Widgets.dll\"", "CompatibleEXE32=\"" + c.written + "\"");
    EXPECT_EQ(*fs.Contents(kWidgets), expected) << c.path;
  }

  ASSERT_TRUE(project->SetCompatibleOleServer("").ok());
  EXPECT_EQ(project->CompatibleOleServer(), "");
  std::string expected = Replaced(original, "CompatibleMode=\"1\"", "CompatibleMode=\"0\"");
  EXPECT_EQ(project->Serialize(), Replaced(expected, "CompatibleEXE32=\"Compat\\Widgets.dll\"\r\n", ""));
}

TEST_F(HeadlessSave, MissingCompatibilityLinesFollowThePathBlockWithTheFilesLineBreaks) {
  const auto project = Open(kTiny);
  ASSERT_TRUE(project->SetCompatibleOleServer("C:\\Src\\Tiny\\Compat\\Tiny.exe").ok());
  ASSERT_TRUE(project->Save().ok());
  // The [Extra] section's own CompatibleMode is not the project's.
  EXPECT_EQ(*fs.Contents(kTiny),
            "Type=Exe\nForm=Main.frm\nStartup=\"frmMain\"\nExeName32=\"Tiny.exe\"\nPath32=\"out\"\n"
            "CompatibleMode=\"2\"\nCompatibleEXE32=\"Compat\\Tiny.exe\"\nName=\"Tiny\"\nMajorVer=1\n\n"
            "[Extra]\nCompatibleMode=\"1\"");
}

TEST_F(HeadlessSave, AddedAndRemovedItemsTouchOnlyTheirLines) {
  const auto project = Open(kTiny);
  Recorder components;
  const auto componentEvents = ide.Events().VBComponentsEvents(project, components);
  fs.AddFile("C:\\Src\\Tiny\\cVerify.cls", Source("cVerifyInstallation"));
  fs.AddFile("C:\\Src\\Shared\\Dial.ctl", Source("AlignmentHelper"));
  fs.AddFile("C:\\Windows\\System32\\tlbinf32.dll", "MZ");
  auto info = testing::tlb::Library("TLI", "{8B217740-717D-11CE-AB5B-D41203C10000}", 1, 0);
  info.helpString = "TypeLib Information";
  typelibs.Add("C:\\Windows\\System32\\tlbinf32.dll", info);

  ASSERT_TRUE(project->AddComponentFromFile("C:\\Src\\Tiny\\cVerify.cls").ok());
  const auto added = project->AddComponentFromFile("C:\\Src\\Shared\\Dial.ctl");
  ASSERT_TRUE(added.ok());
  EXPECT_FALSE(project->AddComponentFromFile("C:\\Src\\Tiny\\cVerify.cls").ok()) << "the name is taken";
  EXPECT_FALSE(project->AddComponentFromFile("C:\\Src\\Tiny\\Nowhere.cls").ok());
  const auto reference = project->AddReferenceFromFile("C:\\Windows\\System32\\tlbinf32.dll");
  ASSERT_TRUE(reference.ok());
  EXPECT_EQ(*(*reference)->Name(), "TLI");
  EXPECT_FALSE(project->AddReferenceFromFile("C:\\Windows\\System32\\tlbinf32.dll").ok()) << "same GUID";

  EXPECT_EQ(project->Serialize(),
            "Type=Exe\nReference=*\\G{8B217740-717D-11CE-AB5B-D41203C10000}#1.0#0#..\\..\\Windows\\System32\\"
            "tlbinf32.dll#TypeLib Information\nForm=Main.frm\nClass=cVerifyInstallation; cVerify.cls\n"
            "UserControl=..\\Shared\\Dial.ctl\nStartup=\"frmMain\"\nExeName32=\"Tiny.exe\"\nPath32=\"out\"\n"
            "Name=\"Tiny\"\nMajorVer=1\n\n[Extra]\nCompatibleMode=\"1\"");

  ASSERT_TRUE(project->RemoveComponent(**added).ok());
  EXPECT_FALSE(project->RemoveComponent(**added).ok());
  EXPECT_EQ(project->Serialize().find("Dial.ctl"), std::string::npos);
  EXPECT_EQ(components.heard,
            (std::vector<std::string>{"Added cVerifyInstallation", "Added AlignmentHelper", "Removed AlignmentHelper"}));
  EXPECT_EQ(recorder.heard, (std::vector<std::string>{"AfterAddFile Tiny 2 C:\\Src\\Tiny\\cVerify.cls",
                                                      "AfterAddFile Tiny 7 C:\\Src\\Shared\\Dial.ctl",
                                                      "AfterRemoveFile Tiny 7 C:\\Src\\Shared\\Dial.ctl"}));
}

TEST_F(HeadlessSave, FailedWritesLeaveTheFileAndReportTheError) {
  const auto project = Open(kWidgets);
  ASSERT_TRUE(project->SetCompatibleOleServer("C:\\Src\\Widgets\\Compat\\New.dll").ok());
  const auto pathsBefore = fs.Paths();
  fs.FailNext(testing::FsOp::kRename, "", rt::errnum::kPermissionDenied);
  const rt::Status saved = project->Save();
  EXPECT_EQ(saved.code(), rt::errnum::kPermissionDenied);
  EXPECT_EQ(*fs.Contents(kWidgets), FixtureBytes("Widgets.vbp"));
  EXPECT_EQ(fs.Paths(), pathsBefore) << "no temporary file is left behind";
  EXPECT_EQ(recorder.heard, std::vector<std::string>{"AfterWriteFile Widgets 3 " + std::string(kWidgets) + " 70"});
}

TEST_F(HeadlessSave, SaveAsMovesTheProjectToTheNewFile) {
  const auto project = Open(kTiny);
  fs.AddFolder("C:\\Copies");
  ASSERT_TRUE(project->SaveAs("C:\\Copies\\Tiny.vbp").ok());
  EXPECT_EQ(project->FileName(), "C:\\Copies\\Tiny.vbp");
  EXPECT_EQ(*fs.Contents("C:\\Copies\\Tiny.vbp"), FixtureBytes("Tiny.vbp"));
  EXPECT_EQ(project->BuildFileName(), "C:\\Copies\\out\\Tiny.exe");
}

}  // namespace
}  // namespace sentrune::headless::test
