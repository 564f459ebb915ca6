// The add-in's lifecycle over the headless IDE: what connection sets up, how
// sinks follow the IDE's projects, and the order of disconnection.
#include <gtest/gtest.h>

#include <algorithm>

#include "host_world.h"

namespace sentrune::testing {
namespace {

class RecordingMenu : public AddinMenu {
 public:
  explicit RecordingMenu(std::vector<std::string>& log) : log_(log) {}
  void Build(Connect& connect) override {
    connect_ = &connect;
    log_.push_back(std::string("build, options stored: ") +
                   (connect.options()->GetOption("Standard_EXE_CreateBackup").empty() ? "no" : "yes"));
  }
  void Remove() override {
    log_.push_back(std::string("remove, shutting down: ") + (connect_->state().gblnShuttingDown ? "yes" : "no") +
                   ", timer: " + (connect_->mainForm()->tmrActiveWindow.Enabled ? "on" : "off") +
                   ", sinks: " + std::to_string(connect_->gcolProjectSinks.size()));
  }

 private:
  std::vector<std::string>& log_;
  Connect* connect_ = nullptr;
};

// Initialisation names this load's log file; connection loads the options
// before building the menu and starts the timer; disconnection takes everything down in order and passes over a
// pending error; a later connection loads what is stored.
TEST(Connect, TheLifecycleInOrder) {
  // Declared before the world: its Connect disconnects (and so writes to
  // the log) when it is destroyed.
  std::vector<std::string> log;
  int diagnostics = 0;
  HostWorld w;
  w.connect.SetMenu(std::make_unique<RecordingMenu>(log));
  w.connect.ShowDiagnostics = [&](Connect&) { ++diagnostics; };
  w.Open("C:\\A\\Widgets.vbp", "Widgets");
  w.connect.AddinInstance_Initialize();
  EXPECT_EQ(w.files().GetAttributes("C:\\Addin\\Logs").value_or(0), platform::kAttrDirectory);
  EXPECT_EQ(w.state.gstrLogFile, "C:\\Addin\\Logs\\Sentrune 040506-140309.txt");
  EXPECT_EQ(w.TraceLines().back(), "'Connect:AddinInstance_Initialize 50589");
  w.connect.AddinInstance_OnConnection(w.ide);
  // A first run stores the start values before the menu exists.
  EXPECT_EQ(log, std::vector<std::string>{"build, options stored: yes"});
  EXPECT_FALSE(w.connect.MagnifierAvailable());
  EXPECT_EQ(diagnostics, 0);
  EXPECT_TRUE(w.connect.mainForm()->tmrActiveWindow.Enabled);

  w.connect.options()->SaveOption("ShowDiagnostics", "1");
  const long connected = static_cast<long>(w.TraceLines().size());
  w.state.err.Raise(rt::errnum::kFileNotFound);
  w.connect.AddinInstance_OnDisconnection();
  EXPECT_EQ(log.back(), "remove, shutting down: yes, timer: off, sinks: 1");
  const std::vector<std::string> lines = w.TraceLines();
  const auto at = [&](const std::string& prefix) {
    return std::find_if(lines.begin() + connected, lines.end(),
                        [&](const std::string& line) { return line.starts_with(prefix); }) -
           lines.begin();
  };
  EXPECT_LT(at("'ComponentManager"), at("'ProjectManager"));
  EXPECT_LT(at("'ProjectManager"), at("'clsProject:Class_Terminate"));
  EXPECT_LT(at("'clsProject:Class_Terminate"), static_cast<long>(lines.size()));
  EXPECT_EQ(w.connect.gobjVBInstance, nullptr);
  EXPECT_EQ(w.connect.gcolProjectSinks.size(), 0u);
  EXPECT_TRUE(w.state.gblnShuttingDown);
  EXPECT_FALSE(w.state.err.pending());

  w.files().AddFile("C:\\Windows\\System32\\magnify.exe", "");
  w.connect.AddinInstance_OnConnection(w.ide);
  EXPECT_EQ(diagnostics, 1);
  EXPECT_TRUE(w.connect.MagnifierAvailable());
  EXPECT_NE(w.files().Contents("C:\\Addin\\Sentrune.ini")->find("ShowDiagnostics=1"), std::string::npos);
}

TEST(Connect, SinksFollowTheIdesProjectsByName) {
  HostWorld w;
  w.connect.AddinInstance_OnConnection(w.ide);
  EXPECT_EQ(w.connect.gcolProjectSinks.size(), 0u);
  const platform::ProjectPtr first = w.Open("C:\\A\\Widgets.vbp", "Widgets");
  ASSERT_NE(w.connect.FindProjectSink("widgets"), nullptr);
  EXPECT_EQ(w.connect.FindProjectSink("widgets")->CProject(), first);

  // Same name: one sink, which follows the project given to it last.
  const platform::ProjectPtr second = w.Open("C:\\B\\Widgets.vbp", "Widgets");
  EXPECT_EQ(w.connect.gcolProjectSinks.size(), 1u);
  EXPECT_EQ(w.connect.FindProjectSink("Widgets")->CProject(), second);

  ASSERT_TRUE(w.ide.RenameProject(second, "Gadgets").ok());
  EXPECT_EQ(w.connect.FindProjectSink("Widgets"), nullptr);
  const clsProject* gadgets = w.connect.FindProjectSink("Gadgets");
  ASSERT_NE(gadgets, nullptr);
  EXPECT_EQ(gadgets->CProject(), second);
  EXPECT_EQ(gadgets->ProjectName(), "Gadgets");
  ASSERT_TRUE(w.ide.Close(second).ok());
  EXPECT_EQ(w.connect.gcolProjectSinks.size(), 0u);

  // Projects open before connection get their sinks at connection.
  w.connect.AddinInstance_OnDisconnection();
  w.Open("C:\\C\\Tools.vbp", "Tools");
  w.connect.AddinInstance_OnConnection(w.ide);
  EXPECT_EQ(w.connect.gcolProjectSinks.size(), 2u);
  EXPECT_NE(w.connect.FindProjectSink("Tools"), nullptr);
  EXPECT_EQ(w.connect.FindProjectSink("Widgets")->CProject(), first);
}

}  // namespace
}  // namespace sentrune::testing
