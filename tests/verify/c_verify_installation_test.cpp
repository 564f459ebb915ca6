// The verifier of installed components, and the install details form that
// compares components and logs a verification run.
#include "verify/c_verify_installation.h"

#include <gtest/gtest.h>

#include "support/expected_file.h"
#include "verify/frm_install_details.h"
#include "verify/verify_world.h"

namespace sentrune::testing {
namespace {

constexpr const char* kGuid = "{AAAAAAAA-0000-0000-0000-000000000001}";

struct Verifier : VerifyWorld {
  explicit Verifier(bool withRegistry = true) : v(state, withRegistry ? &registry : nullptr) { v.SetSilent(true); }
  int32_t Check(const std::string& tlb, const std::string& file, const std::string& path = "") {
    return v.ProcessItem("Lib", kGuid, tlb, file, path);
  }
  cVerifyInstallation v;
};

TEST(VerifyInstallation, OnlyTheFirstRegisteredVersionAndLocaleCount) {
  Verifier w;
  w.Register(kGuid, "1.0", "C:\\Lib\\Old.dll");
  w.Register(kGuid, "1.0", "C:\\Lib\\Other.dll", "9");
  w.Register(kGuid, "2.0", "C:\\Lib\\New.dll");
  w.AddLibrary("C:\\Lib\\Old.dll", kGuid, 1, 0);
  w.AddLibrary("C:\\Lib\\New.dll", kGuid, 2, 0);
  EXPECT_EQ(w.Check("1.0", "6.0", "C:\\Elsewhere\\Lib.dll"), 0);
  EXPECT_EQ(w.typelibs.loaded, std::vector<std::string>{"C:\\Lib\\Old.dll"});
  EXPECT_EQ(w.Check("2.0", "6.0", "C:\\Elsewhere\\Lib.dll"), 48);
  EXPECT_TRUE(w.v.ErrText().starts_with("The TypeLib version of the registered component is too low."));
  EXPECT_TRUE(w.v.ErrText().ends_with(":\r\n1.0"));
  EXPECT_TRUE(w.env.Programs().Ran().empty());
}

TEST(VerifyInstallation, VersionsCompareByTheirLeadingNumberAndGuidsWithoutCase) {
  Verifier w;
  w.Register(kGuid, "1.a", "C:\\Lib\\Lib.dll\\2");
  w.typelibs.Add("C:\\Lib\\Lib.dll\\2", tlb::Library("Lib", "{aaaaaaaa-0000-0000-0000-000000000001}", 1, 10));
  w.env.Files().AddFile("C:\\Lib\\Lib.dll", "MZ");
  w.versions.Set("C:\\Lib\\Lib.dll", {0x00060001, 0x00610052});  // 6.1.97.82
  EXPECT_EQ(w.Check("1.2", "1.0"), 48) << "1.10 reads as 1.1";
  EXPECT_EQ(w.Check("1.1", "6.1.98.0"), 0) << "both read as 6.1";
  EXPECT_EQ(w.versions.asked.back(), "C:\\Lib\\Lib.dll") << "the resource suffix is not part of the file";
  EXPECT_EQ(w.Check("1.1", "6.2"), 48);
  EXPECT_TRUE(w.v.ErrText().starts_with("The File version of the registered component is too low."));

  w.typelibs.Add("C:\\Lib\\Lib.dll\\2", tlb::Library("Lib", "{BBBBBBBB-0000-0000-0000-000000000001}", 9, 0));
  EXPECT_EQ(w.Check("1.0", "1.0"), 16);
  EXPECT_TRUE(w.v.ErrText().ends_with(":\r\n{BBBBBBBB-0000-0000-0000-000000000001}"));
}

TEST(VerifyInstallation, UnregisteredComponentIsRegisteredFromItsPathThenLoaded) {
  Verifier w(false);
  w.AddLibrary("C:\\App\\Grid.ocx", kGuid, 1, 0);
  w.AddLibrary("C:\\App\\Server.EXE", kGuid, 1, 0);
  w.env.Files().AddFolder("C:\\App\\Folder.dll");
  EXPECT_EQ(w.Check("1.0", "1.0", "C:\\App\\Grid.ocx"), 0);
  EXPECT_EQ(w.Check("1.0", "1.0", "C:\\App\\Server.EXE"), 0);
  EXPECT_EQ(w.Check("1.0", "1.0", "C:\\App\\Folder.dll"), 53);
  EXPECT_EQ(w.v.ProcessItem("Gone", kGuid, "1.0", "1.0", "C:\\App\\Gone.dll"), 53);
  EXPECT_EQ(w.v.ErrText(), "Component 'Gone' not found on disk or in registry.");
  EXPECT_EQ(w.env.Programs().Ran(),
            (std::vector<std::string>{"Regsvr32 /s \"C:\\App\\Grid.ocx\"", "C:\\App\\Server.EXE /Regserver"}));
  EXPECT_TRUE(w.ui.boxes.empty()) << "silent";
  w.v.SetSilent(false);
  EXPECT_EQ(w.Check("1.0", "1.0", "C:\\App\\Gone.dll"), 53);
  ASSERT_EQ(w.ui.boxes.size(), 1u);
  EXPECT_EQ(w.ui.boxes[0].style, 16);

  // A registration that names an unreadable file is not retried from the path.
  Verifier r;
  r.Register(kGuid, "1.0", "C:\\Lib\\Missing.dll");
  r.AddLibrary("C:\\App\\Grid.ocx", kGuid, 1, 0);
  EXPECT_EQ(r.Check("1.0", "1.0", "C:\\App\\Grid.ocx"), 53);
  EXPECT_TRUE(r.env.Programs().Ran().empty());
}

// Records the events and aborts the run at the one named.
struct RecordingListener : VerifyInstallationEvents {
  void BeforeVerify(const std::string& name, bool& aborted) override { Record("before " + name, aborted); }
  void AfterVerify(const std::string& name, int32_t code, bool& aborted) override {
    Record("after " + name + " " + std::to_string(code), aborted);
  }
  void Record(const std::string& event, bool& aborted) {
    events.push_back(event);
    aborted = event == abortAt;
  }
  std::string abortAt;
  std::vector<std::string> events;
};

// The whole run is checked through the diagnostics below.
TEST(VerifyInstallation, VerifyAllRunsTheBuiltInListUntilAborted) {
  Verifier w;
  w.InstallOle();
  RecordingListener before, after;
  before.abortAt = "before Microsoft Windows Common Controls 6.0 (SP6)";
  after.abortAt = "after OLE Automation 0";
  for (RecordingListener* listener : {&before, &after}) {
    w.v.SetEvents(listener);
    w.v.VerifyAll(true);
  }
  EXPECT_EQ(before.events, (std::vector<std::string>{"before OLE Automation", "after OLE Automation 0",
                                                     "before Microsoft DAO 3.51 Object Library",
                                                     "after Microsoft DAO 3.51 Object Library 53", before.abortAt}));
  EXPECT_EQ(after.events, (std::vector<std::string>{"before OLE Automation", after.abortAt}));
  EXPECT_TRUE(w.ui.boxes.empty());
}

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
  w.InstallOle();
  frmInstallDetails form(w.state);
  form.AppendText("stale");
  EXPECT_EQ(form.ShowDiagnostics(&w.registry), 4);
  EXPECT_TRUE(w.ui.boxes.empty());
  ASSERT_EQ(w.ui.forms.size(), 1u);
  EXPECT_EQ(w.ui.forms[0].caption, frmInstallDetails::kDiagnosticsCaption);
  ExpectMatchesFile(w.ui.forms[0].text, "verify/diagnostics.txt");
}

}  // namespace
}  // namespace sentrune::testing
