// The project sink apart from builds: component events, its subscriptions
// and the workspace file after a save.
#include <gtest/gtest.h>

#include <algorithm>

#include "workflow_world.h"

namespace sentrune::testing {
namespace {

TEST(ProjectSink, ComponentEventsReachTrackingOncePerComponent) {
  WorkflowWorld w;
  const platform::ComponentPtr widget = w.project->VBComponents().front();
  const auto trackerCalls = [&] {
    const Strings lines = w.TraceLines();
    return std::count_if(lines.begin(), lines.end(),
                         [](const std::string& line) { return line.starts_with("'ComponentManager"); });
  };
  const auto before = trackerCalls();
  ASSERT_TRUE(w.ide.SelectComponent(widget).ok());
  ASSERT_TRUE(w.ide.ActivateComponent(widget).ok());
  w.sink->CompEvents_ItemRenamed(widget, "OldWidget");
  EXPECT_EQ(trackerCalls(), before + 1);
  // No component is reported every time.
  w.sink->NotifyActiveComponent(nullptr);
  w.sink->NotifyActiveComponent(nullptr);
  EXPECT_EQ(trackerCalls(), before + 3);
}

TEST(ProjectSink, ClearingTheProjectEndsItsSubscriptions) {
  WorkflowWorld w;
  w.SetEveryStep(1);
  w.sink->SetCProject(nullptr);
  EXPECT_EQ(w.sink->ProjectName(), "");
  w.Build("1.0", kFirstBuild);
  EXPECT_EQ(w.TraceLines().back(), "'clsProject:CProject - VBProject Is Nothing 50589");
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
