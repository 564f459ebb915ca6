#include <gtest/gtest.h>

#include "seed_templates.h"
#include "verify/c_verify_installation.h"
#include "verify/frm_install_details.h"
#include "verify/verify_world.h"

namespace sentrune::testing {
namespace {

TEST(Diagnostics, LogsEveryComponentWithTheFailuresMessageAndShowsNoBox) {
  VerifyWorld w;
  const VerifyItem& ole = BuiltInVerifyList()[0];
  w.Register(ole.guid, "2.0", "C:\\Windows\\System32\\stdole2.tlb");
  w.AddLibrary("C:\\Windows\\System32\\stdole2.tlb", ole.guid, 2, 0, {0x00030032, 0x13960000});
  frmInstallDetails form(w.state);
  form.AppendText("stale");
  EXPECT_EQ(form.ShowDiagnostics(&w.registry), 4);
  std::string expected = "Verifying OLE Automation\r\nVerifying OLE Automation - Completed: Success\r\n";
  for (size_t i = 1; i < BuiltInVerifyList().size(); ++i) {
    const std::string& name = BuiltInVerifyList()[i].componentName;
    expected += "Verifying " + name + "\r\nVerifying " + name + " - Completed: Fail\r\nComponent '" + name +
                "' not found on disk or in registry.\r\n";
  }
  EXPECT_EQ(form.Text(), expected);
  EXPECT_TRUE(w.ui.boxes.empty());
  ASSERT_EQ(w.ui.forms.size(), 1u);
  EXPECT_EQ(w.ui.forms[0].caption, frmInstallDetails::kDiagnosticsCaption);
  EXPECT_EQ(w.ui.forms[0].text, expected);
}

TEST(SeedAddinFolder, CopiesOnlyTheMissingTemplates) {
  FakeEnv env;
  FakeFileSystem& files = env.Files();
  files.AddFile("C:\\Share\\VerifyClassTemplate.txt", "template");
  files.AddFile("C:\\Share\\AlignmentHelper.ctl", "control");
  files.AddFile("C:\\Addin\\AlignmentHelper.ctl", "the user's own");
  EXPECT_EQ(cli::SeedAddinFolder(files, "C:\\Addin\\", "C:\\Share"),
            std::vector<std::string>{"VerifyClassTemplate.txt"});
  EXPECT_EQ(files.Contents("C:\\Addin\\VerifyClassTemplate.txt"), "template");
  EXPECT_EQ(files.Contents("C:\\Addin\\AlignmentHelper.ctl"), "the user's own");
  EXPECT_TRUE(cli::SeedAddinFolder(files, "C:\\Addin", "C:\\Share").empty());
}

}  // namespace
}  // namespace sentrune::testing
