// The install details form (comparisons and the verification log) and the
// diagnostics run from the form.
#include <gtest/gtest.h>


#include "verify/c_verify_installation.h"
#include "verify/frm_install_details.h"
#include "verify/verify_world.h"

namespace sentrune::testing {
namespace {

TEST(CompareComps, CountsDifferencesIgnoringMinorOnesWithDetailsAndKeepsTheTextOnErrors) {
  TypelibWorld world;
  platform::TlbLibrary model = WidgetsLibrary();
  model.minorVersion = 3;
  model.guid = "{99999999-0000-0000-0000-000000000001}";
  world.AddComponent("C:\\Build\\Widgets.dll", WidgetsLibrary());
  world.AddComponent("C:\\Model\\Widgets.dll", model);
  frmInstallDetails form(world.state);
  form.AppendText("stale");
  EXPECT_EQ(form.CompareComps("C:\\Build\\Widgets.dll", "C:\\Model\\Widgets.dll"), 1);
  EXPECT_TRUE(form.Text().starts_with("1 Differences Found.\r\n--> GUID Doesn't Match\r\n"));
  const std::string shown = form.Text();
  EXPECT_EQ(form.CompareComps("C:\\Build\\Widgets.dll", "C:\\Model\\Missing.dll"), 53);
  EXPECT_EQ(form.CompareComps("C:\\Nope.dll", "C:\\Build\\Widgets.dll"), 53);
  EXPECT_EQ(form.Text(), shown) << "a failed read leaves the text";
  EXPECT_EQ(world.ui.boxes.size(), 2u);

  model.guid = WidgetsLibrary().guid;
  world.AddComponent("C:\\Model\\Widgets.dll", model);
  EXPECT_EQ(form.CompareComps("C:\\Build\\Widgets.dll", "C:\\Model\\Widgets.dll"), 0);
  EXPECT_EQ(form.Text(), "");
}

TEST(InstallDetails, DiagnosticsLogEveryComponentWithTheFailuresMessageAndShowNoBox) {
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

}  // namespace
}  // namespace sentrune::testing
