#include "verify/frm_install_details.h"

#include <gtest/gtest.h>

#include "typelib/typelib_world.h"

namespace sentrune::testing {
namespace {

TEST(CompareComps, CountsDifferencesIgnoringMinorOnesWithDetails) {
  TypelibWorld world;
  platform::TlbLibrary model = WidgetsLibrary();
  model.minorVersion = 3;
  model.helpString = "old";
  model.guid = "{99999999-0000-0000-0000-000000000001}";
  world.AddComponent("C:\\Build\\Widgets.dll", WidgetsLibrary());
  world.AddComponent("C:\\Model\\Widgets.dll", model);
  frmInstallDetails form(world.state);
  form.AppendText("stale");
  EXPECT_EQ(form.CompareComps("C:\\Build\\Widgets.dll", "C:\\Model\\Widgets.dll"), 1);
  EXPECT_EQ(form.Text(),
            "1 Differences Found.\r\n--> GUID Doesn't Match\r\nGUID (A) = {11111111-0000-0000-0000-000000000001}"
            "\r\nGUID (B) = {99999999-0000-0000-0000-000000000001}\r\n");

  model.guid = WidgetsLibrary().guid;
  world.AddComponent("C:\\Model\\Widgets.dll", model);
  EXPECT_EQ(form.CompareComps("C:\\Build\\Widgets.dll", "C:\\Model\\Widgets.dll"), 0);
  EXPECT_EQ(form.Text(), "");
}

TEST(CompareComps, ReturnsTheReadersErrorWithoutTouchingTheText) {
  TypelibWorld world;
  world.AddComponent("C:\\Build\\Widgets.dll", WidgetsLibrary());
  frmInstallDetails form(world.state);
  form.AppendText("kept");
  EXPECT_EQ(form.CompareComps("C:\\Build\\Widgets.dll", "C:\\Model\\Missing.dll"), 53);
  EXPECT_EQ(form.CompareComps("C:\\Nope.dll", "C:\\Build\\Widgets.dll"), 53);
  EXPECT_EQ(form.Text(), "kept");
  EXPECT_EQ(world.ui.boxes.size(), 2u);
}

TEST(InstallDetails, VerificationLogAndHelp) {
  TypelibWorld world;
  frmInstallDetails form(world.state);
  bool aborted = false;
  form.mobjVerInstall_BeforeVerify("Widgets", aborted);
  form.mobjVerInstall_AfterVerify("Widgets", 0, aborted);
  form.mobjVerInstall_BeforeVerify("Gadgets", aborted);
  form.mobjVerInstall_AfterVerify("Gadgets", 53, aborted);
  form.mobjVerInstall_BeforeVerify("Aborted", aborted);
  EXPECT_EQ(form.Text(),
            "Verifying Widgets\r\nVerifying Widgets - Completed: Success\r\n"
            "Verifying Gadgets\r\nVerifying Gadgets - Completed: Fail\r\nVerifying Aborted\r\n");
  form.Show("Verification");
  ASSERT_EQ(world.ui.forms.size(), 1u);
  EXPECT_EQ(world.ui.forms[0].caption, "Verification");
  EXPECT_EQ(world.ui.forms[0].text, form.Text());
  form.cmdHelp_Click();
  ASSERT_EQ(world.ui.boxes.size(), 1u);
  EXPECT_EQ(world.ui.boxes[0].prompt, "Sorry, No help available at this time.");
  EXPECT_EQ(world.ui.boxes[0].title, "Sentrune");
}

}  // namespace
}  // namespace sentrune::testing
