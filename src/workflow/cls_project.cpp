#include "workflow/cls_project.h"

#include <array>
#include <exception>
#include <functional>

#include "files/file_functions.h"
#include "state/msgbox.h"
#include "runtime/text.h"
#include "workflow/workflow_steps.h"

namespace sentrune {
namespace {

// The IDE must never see a failure from an add-in event: whatever escapes a
// handler is shown and dropped here.
void Guarded(AddinState& state, const char* handler, const std::function<void()>& body) {
  try {
    body();
  } catch (const std::exception& failure) {
    state.err.Raise(rt::errnum::kInvalidProcedureCall, handler, failure.what());
    lfncMsgBoxEX(state, "Error " + std::to_string(state.err.number()) + "\r\n" + state.err.description(),
                 platform::mb::kCritical, std::string("clsProject:") + handler);
    state.err.Clear();
  }
}

}  // namespace

class clsProject::ComponentSink : public platform::VBComponentsEventsSink {
 public:
  explicit ComponentSink(clsProject& owner) : owner_(owner) {}
  void ItemAdded(const platform::ComponentPtr& c) override {
    Run("CompEvents_ItemAdded", [&] { owner_.CompEvents_ItemAdded(c); });
  }
  void ItemRemoved(const platform::ComponentPtr& c) override {
    Run("CompEvents_ItemRemoved", [&] { owner_.CompEvents_ItemRemoved(c); });
  }
  void ItemRenamed(const platform::ComponentPtr& c, const std::string& oldName) override {
    Run("CompEvents_ItemRenamed", [&] { owner_.CompEvents_ItemRenamed(c, oldName); });
  }
  void ItemSelected(const platform::ComponentPtr& c) override {
    Run("CompEvents_ItemSelected", [&] { owner_.CompEvents_ItemSelected(c); });
  }
  void ItemActivated(const platform::ComponentPtr& c) override {
    Run("CompEvents_ItemActivated", [&] { owner_.CompEvents_ItemActivated(c); });
  }
  void ItemReloaded(const platform::ComponentPtr& c) override {
    Run("CompEvents_ItemReloaded", [&] { owner_.CompEvents_ItemReloaded(c); });
  }

 private:
  void Run(const char* handler, const std::function<void()>& body) {
    Guarded(owner_.services_.state, handler, body);
  }
  clsProject& owner_;
};

class clsProject::FileSink : public platform::FileControlEventsSink {
 public:
  explicit FileSink(clsProject& owner) : owner_(owner) {}
  void BeforeLoadFile(const platform::ProjectPtr&, std::vector<std::string>&) override {
    Guarded(owner_.services_.state, "FileCTLEvents_BeforeLoadFile",
            [&] { owner_.FileCTLEvents_BeforeLoadFile(); });
  }
  void RequestWriteFile(const platform::ProjectPtr&, const std::string& fileName, bool& cancel) override {
    Guarded(owner_.services_.state, "FileCTLEvents_RequestWriteFile",
            [&] { owner_.FileCTLEvents_RequestWriteFile(fileName, cancel); });
  }
  void AfterWriteFile(const platform::ProjectPtr&, int fileType, const std::string& fileName,
                      int16_t result) override {
    Guarded(owner_.services_.state, "FileCTLEvents_AfterWriteFile",
            [&] { owner_.FileCTLEvents_AfterWriteFile(fileType, fileName, result); });
  }

 private:
  clsProject& owner_;
};

clsProject::clsProject(WorkflowServices& services)
    : services_(services),
      componentSink_(std::make_unique<ComponentSink>(*this)),
      fileSink_(std::make_unique<FileSink>(*this)) {
  services_.state.trace({"'clsProject:Class_Initialize", services_.state.Timer()});
}

clsProject::~clsProject() {
  CompEvents.reset();
  FileCTLEvents.reset();
  services_.state.trace({"'clsProject:Class_Terminate", services_.state.Timer()});
}

void clsProject::SetCProject(const platform::ProjectPtr& project) {
  AddinState& state = services_.state;
  project_ = project;
  if (!project) {
    name_.clear();
    state.trace({"'clsProject:CProject - VBProject Is Nothing", state.Timer()});
    CompEvents.reset();
    FileCTLEvents.reset();
    return;
  }
  name_ = project->Name();
  state.trace({"'clsProject:CProject", name_, state.Timer()});
  CompEvents = services_.ide.Events().VBComponentsEvents(project, *componentSink_);
  FileCTLEvents = services_.ide.Events().FileControlEvents(project, *fileSink_);
}

std::string clsProject::FileTypeName(int fileType) {
  static constexpr std::array<const char*, 13> kNames{
      "vbext_ft_Form",         "vbext_ft_Module",    "vbext_ft_Class",  "vbext_ft_Project",
      "vbext_ft_Exe",          "vbext_ft_Frx",       "vbext_ft_Res",    "vbext_ft_UserControl",
      "vbext_ft_PropertyPage", "vbext_ft_DocObject", "vbext_ft_Binary", "vbext_ft_GroupProject",
      "vbext_ft_Designers"};
  return fileType >= 0 && fileType < static_cast<int>(kNames.size()) ? kNames[static_cast<size_t>(fileType)]
                                                                     : "";
}

void clsProject::NotifyActiveComponent(const platform::ComponentPtr& component) {
  if (component) {
    // Only a change of component is news; the IDE repeats its events.
    if (component->Identity() == lastComponent_) return;
    lastComponent_ = component->Identity();
  }
  services_.tracker.TrackActivity(project_, component);
}

void clsProject::TraceComponentEvent(const char* event, const platform::ComponentPtr& component) {
  AddinState& state = services_.state;
  state.trace({"'[" + name_ + "]:" + event, state.Timer()});
  if (component) state.trace({"VBComponent.Name :", component->Name()});
}

void clsProject::CompEvents_ItemActivated(const platform::ComponentPtr& component) {
  TraceComponentEvent("CompEvents_ItemActivated", component);
  NotifyActiveComponent(component);
}

void clsProject::CompEvents_ItemAdded(const platform::ComponentPtr& component) {
  TraceComponentEvent("CompEvents_ItemAdded", component);
  NotifyActiveComponent(component);
}

void clsProject::CompEvents_ItemReloaded(const platform::ComponentPtr& component) {
  TraceComponentEvent("CompEvents_ItemReloaded", component);
  NotifyActiveComponent(component);
}

void clsProject::CompEvents_ItemRemoved(const platform::ComponentPtr& component) {
  TraceComponentEvent("CompEvents_ItemRemoved", component);
  NotifyActiveComponent(component);
}

void clsProject::CompEvents_ItemRenamed(const platform::ComponentPtr& component, const std::string& oldName) {
  TraceComponentEvent("CompEvents_ItemRenamed", component);
  services_.state.trace({"OldName :", oldName});
  NotifyActiveComponent(component);
}

void clsProject::CompEvents_ItemSelected(const platform::ComponentPtr& component) {
  TraceComponentEvent("CompEvents_ItemSelected", component);
  const std::shared_ptr<platform::Window> window = services_.ide.ActiveWindow();
  services_.state.trace({window ? "gobjVBInstance.ActiveWindow.Caption = " + window->Caption()
                                : std::string("Not a valid window")});
  NotifyActiveComponent(component);
}

void clsProject::FileCTLEvents_BeforeLoadFile() {
  services_.state.trace({"'clsProject:FileCTLEvents_BeforeLoadFile", services_.state.Timer()});
}

bool clsProject::IsOwnBuildTarget(const std::string& fileName) const {
  // The IDE may announce the file by its short (8.3) name or in another
  // case than the project keeps it.
  const platform::FileSystem& fs = services_.state.files();
  const auto longLower = [&](const std::string& path) {
    return rt::LCase(fs.GetLongPathName(path).value_or(path));
  };
  return project_ && longLower(project_->BuildFileName()) == longLower(fileName);
}

StepContext clsProject::MakeStepContext() {
  return StepContext{services_.state, services_.options.options(), *project_, project_->BuildFileName(), report_,
                     services_.mainForm};
}

void clsProject::FileCTLEvents_RequestWriteFile(const std::string& fileName, bool& cancel) {
  AddinState& state = services_.state;
  state.trace({"'clsProject:FileCTLEvents_RequestWriteFile", state.Timer()});
  state.trace({"'[" + name_ + "]:FileCTLEvents_RequestWriteFile", state.Timer()});
  state.trace({"FileName : " + fileName});
  state.trace({std::string("Cancel : ") + (cancel ? "True" : "False")});
  // A first build has nothing to back up or compare.
  if (!lfncFileExists(state.files(), fileName) || !IsOwnBuildTarget(fileName)) return;
  StepContext step = MakeStepContext();
  state.trace({"Running lErrorCode = lfncBackupComponentEX(Me)"});
  if (step.Record("lfncBackupComponentEX", lfncBackupComponentEX(step)) != 0) return;
  state.trace({"Running Call lfncCompBeforeEX(Me)"});
  step.Record("lfncCompBeforeEX", lfncCompBeforeEX(step));
}

void clsProject::FileCTLEvents_AfterWriteFile(int fileType, const std::string& fileName, int16_t result) {
  AddinState& state = services_.state;
  state.trace({"'clsProject:FileCTLEvents_AfterWriteFile", state.Timer()});
  state.trace({"'[" + name_ + "]:FileCTLEvents_AfterWriteFile", state.Timer()});
  state.trace({"FileType: " + FileTypeName(fileType)});
  state.trace({"FileName: " + fileName});
  state.trace({"Result  : " + std::to_string(result)});
  if (!project_) return;
  if (fileType == platform::vbext_ft_Project) {
    if (!lfncFileExists(state.files(), project_->FileName())) return;
    StepContext step = MakeStepContext();
    lfncClearWorkspaceFileEX(step);
    return;
  }
  if (fileType != platform::vbext_ft_Exe) return;
  if (result == 0) RunStepsAfterBuild();
  if (services_.buildEnded) services_.buildEnded(BuildEnd{name_, fileName, result, TakeBuildReport()});
}

void clsProject::RunStepsAfterBuild() {
  AddinState& state = services_.state;
  StepContext step = MakeStepContext();
  int32_t lErrorCode = 0;
  if (project_->Type() != platform::vbext_pt_StandardExe) {
    state.trace({"Running lErrorCode = lfncManageCompatEX(Me)"});
    lErrorCode = step.Record("lfncManageCompatEX", lfncManageCompatEX(step));
  }
  if (lErrorCode != 0) return;
  state.trace({"Running Call lfncProcessPerOptions(Me)"});
  lfncProcessPerOptions(step);
}

BuildReport clsProject::TakeBuildReport() {
  BuildReport taken = std::move(report_);
  report_ = BuildReport{};
  return taken;
}

}  // namespace sentrune
