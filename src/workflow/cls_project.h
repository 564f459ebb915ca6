#pragma once
// clsProject: the add-in's listener on one open project. Its component
// events feed activity tracking; its file events start the two halves of
// the build workflow, whose steps get the context the sink makes for the
// event.
#include <cstdint>
#include <memory>
#include <string>

#include "platform/ide.h"
#include "workflow/build_report.h"
#include "workflow/step_context.h"
#include "workflow/workflow_services.h"

namespace sentrune {

class clsProject {
 public:
  // The services must outlive the sink. Traces its creation.
  explicit clsProject(WorkflowServices& services);
  // Traces its end; the subscriptions end with it.
  ~clsProject();
  clsProject(const clsProject&) = delete;
  clsProject& operator=(const clsProject&) = delete;

  // CProject (Set): with a project, takes its name and subscribes to its
  // component and file events (a previous project's subscriptions end);
  // with nothing, unsubscribes and forgets the project.
  void SetCProject(const platform::ProjectPtr& project);
  // The project, or nothing.
  const platform::ProjectPtr& CProject() const { return project_; }
  // The name taken when the project was set; empty without a project.
  const std::string& ProjectName() const { return name_; }

  // The IDE's constant name of a vbext_FileType, for the trace; empty for a
  // value the IDE does not define.
  static std::string FileTypeName(int fileType);

  // Reports the component with this project to activity tracking: a
  // component only when it is not the one reported last, nothing every time.
  void NotifyActiveComponent(const platform::ComponentPtr& component);

  void CompEvents_ItemActivated(const platform::ComponentPtr& component);
  void CompEvents_ItemAdded(const platform::ComponentPtr& component);
  void CompEvents_ItemReloaded(const platform::ComponentPtr& component);
  void CompEvents_ItemRemoved(const platform::ComponentPtr& component);
  void CompEvents_ItemRenamed(const platform::ComponentPtr& component, const std::string& oldName);
  void CompEvents_ItemSelected(const platform::ComponentPtr& component);

  void FileCTLEvents_BeforeLoadFile();
  // Before the IDE overwrites the project's own component: backup, then the
  // pre-compile comparison. Never cancels the write.
  void FileCTLEvents_RequestWriteFile(const std::string& fileName, bool& cancel);
  // After a write: the project file gets the workspace-file step, a
  // successful component write the after-compile chain.
  void FileCTLEvents_AfterWriteFile(int fileType, const std::string& fileName, int16_t result);

  // What the build steps work with on this project, the options as they are
  // now, reporting into this sink's report. Only while it has a project.
  StepContext MakeStepContext();

  // What the builds since the last take did.
  const BuildReport& Report() const { return report_; }
  BuildReport TakeBuildReport();

 private:
  class ComponentSink;
  class FileSink;

  void TraceComponentEvent(const char* event, const platform::ComponentPtr& component);
  bool IsOwnBuildTarget(const std::string& fileName) const;
  // The chain after a build that wrote its component.
  void RunStepsAfterBuild();

  WorkflowServices& services_;
  platform::ProjectPtr project_;
  std::string name_;
  uintptr_t lastComponent_ = 0;
  BuildReport report_;
  std::unique_ptr<ComponentSink> componentSink_;
  std::unique_ptr<FileSink> fileSink_;
  // Declared last: they end before the sinks they deliver to.
  std::unique_ptr<platform::Subscription> CompEvents;
  std::unique_ptr<platform::Subscription> FileCTLEvents;
};

}  // namespace sentrune
