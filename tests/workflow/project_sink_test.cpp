// The project sink apart from builds: component events, its subscriptions
// and the workspace file after a save.
#include <gtest/gtest.h>

#include "workflow_world.h"

namespace sentrune::testing {
namespace {

TEST(ProjectSink, ComponentEventsAreTracedAndReachTrackingOncePerComponent) {
  WorkflowWorld w;
  const platform::ComponentPtr widget = w.project->VBComponents().front();
  const auto trackerCalls = [&] { return w.TraceStarting({"'ComponentManager"}).size(); };
  const size_t from = w.TraceLines().size();
  const size_t before = trackerCalls();
  ASSERT_TRUE(w.ide.SelectComponent(widget).ok());
  ASSERT_TRUE(w.ide.ActivateComponent(widget).ok());
  ASSERT_TRUE(w.ide.SelectComponent(widget).ok());
  EXPECT_EQ(trackerCalls(), before + 1);
  w.sink->NotifyActiveComponent(nullptr);
  w.sink->NotifyActiveComponent(nullptr);
  EXPECT_EQ(trackerCalls(), before + 3);

  w.sink->CompEvents_ItemRenamed(widget, "OldWidget");
  // Before the component has a window there is no caption to trace.
  EXPECT_EQ(w.TraceStarting({"'[Widgets]:CompEvents_ItemRenamed", "OldName", "gobjVBInstance", "Not a valid"}, from),
            (Strings{"Not a valid window", "gobjVBInstance.ActiveWindow.Caption = Widgets - Widget (Code)",
                     "'[Widgets]:CompEvents_ItemRenamed 50589", "OldName : OldWidget"}));
}

TEST(ProjectSink, ClearingTheProjectEndsItsSubscriptions) {
  WorkflowWorld w;
  w.SetEveryStep(1);
  w.sink->SetCProject(nullptr);
  EXPECT_EQ(w.sink->ProjectName(), "");
  w.Build("1.0", kFirstBuild);
  EXPECT_TRUE(w.TraceStarting({"'clsProject:FileCTLEvents"}).empty());
  EXPECT_EQ(w.project->CompatibleOleServer(), "");
  w.sink->SetCProject(w.project);
  w.Build("1.0", kFirstBuild);
  EXPECT_FALSE(w.project->CompatibleOleServer().empty());
}

TEST(ProjectSink, SavingTheProjectClearsItsWorkspaceFileWhenAskedTo) {
  const std::string workspace = "C:\\Src\\Widgets\\Widgets.vbw";
  for (const bool clear : {false, true}) {
    WorkflowWorld w;
    w.options.ClearVBW = clear;
    w.files().AddFile(workspace, "Widget = 0, 0, 0, 0, C\r\n");
    // Read-only as source control leaves it.
    ASSERT_TRUE(w.files().SetAttributes(workspace, platform::kAttrArchive | platform::kAttrReadOnly).ok());
    ASSERT_TRUE(w.project->Save().ok());
    EXPECT_EQ(w.files().Exists(workspace), !clear);
  }
}

}  // namespace
}  // namespace sentrune::testing
