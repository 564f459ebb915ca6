#include "host/connect.h"

#include <exception>

#include "files/file_functions.h"
#include "state/msgbox.h"
#include "runtime/vb_format.h"
#include "runtime/winpath.h"

namespace sentrune {
namespace {

// From the options onward a failing connection step is passed over, and
// every disconnection step is: the IDE must load and unload whatever happens.
void PassOver(AddinState& state, const std::function<void()>& step) {
  try {
    step();
  } catch (const std::exception&) {
    state.err.Clear();
  }
}

}  // namespace

class Connect::ProjectsSink : public platform::VBProjectsEventsSink {
 public:
  explicit ProjectsSink(Connect& owner) : owner_(owner) {}
  void ItemAdded(const platform::ProjectPtr& p) override {
    Run([&] { owner_.VBPEvents_ItemAdded(p); });
  }
  void ItemRemoved(const platform::ProjectPtr& p) override {
    Run([&] { owner_.VBPEvents_ItemRemoved(p); });
  }
  void ItemRenamed(const platform::ProjectPtr& p, const std::string& oldName) override {
    Run([&] { owner_.VBPEvents_ItemRenamed(p, oldName); });
  }
  void ItemActivated(const platform::ProjectPtr& p) override {
    Run([&] { owner_.VBPEvents_ItemActivated(p); });
  }

 private:
  void Run(const std::function<void()>& handler) { PassOver(owner_.state_, handler); }
  Connect& owner_;
};

Connect::Connect(AddinState& state) : state_(state) {}

Connect::~Connect() {
  if (gobjVBInstance) AddinInstance_OnDisconnection();
}

void Connect::AddinInstance_Initialize() {
  const std::string logFolder = state_.env().ModuleFolder() + "Logs\\";
  // A log folder that cannot be made shows up when the log is written.
  (void)lfncEnsureFolder(state_.files(), logFolder);
  state_.gstrLogFile =
      logFolder + "Sentrune " + rt::Format(state_.env().Time().Now(), "yymmdd-hhnnss") + ".txt";
  state_.trace({"'Connect:AddinInstance_Initialize", state_.Timer()});
}

void Connect::AddinInstance_OnConnection(platform::VBE& application) {
  try {
    gobjVBInstance = &application;
    state_.gblnShuttingDown = false;
    gcolProjectSinks.Clear();
    options_ = std::make_unique<OptionsHandler>(state_);
    options_->InitOptionDefaults();
    state_.gstrHelpFile = state_.env().ModuleFolder() + "Help\\Sentrune.chm";
    const std::string system = state_.env().SpecialFolderPath(platform::kFolderSystem);
    magnifier_ = !system.empty() && lfncFileExists(state_.files(), rt::AddBackslash(system) + "magnify.exe");
    tracker_ = std::make_unique<ActivityTracker>(state_, options_->options(), application);
    mainForm_ = std::make_unique<frmAddinMain>();
    services_ = std::make_unique<WorkflowServices>(
        WorkflowServices{state_, *options_, application, *tracker_, *mainForm_, BuildEnded});
  } catch (const std::exception& failure) {
    state_.err.Raise(rt::errnum::kInvalidProcedureCall, "Connect", failure.what());
    lfncMsgBoxEX(state_, "Error " + std::to_string(state_.err.number()) + "\r\n" + state_.err.description(),
                 platform::mb::kCritical, "Connect:AddinInstance_OnConnection");
    state_.err.Clear();
    return;
  }
  PassOver(state_, [&] { LoadOptionsWithFirstRun(*options_); });
  PassOver(state_, [&] {
    if (menu_) menu_->Build(*this);
  });
  PassOver(state_, [&] {
    projectsSink_ = std::make_unique<ProjectsSink>(*this);
    VBPEvents = application.Events().VBProjectsEvents(*projectsSink_);
  });
  PassOver(state_, [&] {
    if (application.ActiveVBProject())
      for (const platform::ProjectPtr& project : application.VBProjects()) AddProjectSink(project);
  });
  PassOver(state_, [&] {
    tracker_->TrackActivity(application.ActiveVBProject(), application.SelectedVBComponent());
  });
  PassOver(state_, [&] {
    if (options_->options().ShowDiagnostics && ShowDiagnostics) ShowDiagnostics(*this);
  });
  frmAddinMain::Timer& timer = mainForm_->tmrActiveWindow;
  timer.Enabled = false;
  timer.Interval = 1500;
  timer.Enabled = true;
}

void Connect::AddinInstance_OnDisconnection() {
  state_.gblnShuttingDown = true;
  if (mainForm_) mainForm_->tmrActiveWindow.Enabled = false;
  PassOver(state_, [&] {
    if (!tracker_) return;
    tracker_->ComponentManager(nullptr);
    tracker_->ProjectManager(nullptr);
  });
  PassOver(state_, [&] {
    if (menu_) menu_->Remove();
  });
  PassOver(state_, [&] {
    VBPEvents.reset();
    projectsSink_.reset();
    gcolProjectSinks.Clear();
    gobjVBInstance = nullptr;
    services_.reset();
    tracker_.reset();
    mainForm_.reset();
  });
  PassOver(state_, [&] {
    options_.reset();
    gobjVBInstance = nullptr;
  });
  state_.err.Clear();
}

void Connect::AddProjectSink(const platform::ProjectPtr& project) {
  if (!project || !services_) return;
  const std::string name = project->Name();
  std::unique_ptr<clsProject>* sink = gcolProjectSinks.Find(name);
  if (!sink) {
    gcolProjectSinks.Add(name, std::make_unique<clsProject>(*services_));
    sink = gcolProjectSinks.Find(name);
  }
  if ((*sink)->CProject() != project) (*sink)->SetCProject(project);
}

clsProject* Connect::FindProjectSink(const std::string& name) const {
  const std::unique_ptr<clsProject>* sink = gcolProjectSinks.Find(name);
  return sink ? sink->get() : nullptr;
}

void Connect::RemoveProjectSink(const std::string& name) {
  std::unique_ptr<clsProject>* sink = gcolProjectSinks.Find(name);
  if (!sink) return;
  (*sink)->SetCProject(nullptr);
  gcolProjectSinks.Remove(name);
}

void Connect::VBPEvents_ItemAdded(const platform::ProjectPtr& project) {
  tracker_->TrackActivity(nullptr, nullptr);
  AddProjectSink(project);
}

void Connect::VBPEvents_ItemRemoved(const platform::ProjectPtr& project) {
  tracker_->TrackActivity(nullptr, nullptr);
  if (project) RemoveProjectSink(project->Name());
}

void Connect::VBPEvents_ItemRenamed(const platform::ProjectPtr& project, const std::string& oldName) {
  tracker_->TrackActivity(nullptr, nullptr);
  RemoveProjectSink(oldName);
  AddProjectSink(project);
}

void Connect::VBPEvents_ItemActivated(const platform::ProjectPtr& project) {
  tracker_->ProjectManager(project);
}

}  // namespace sentrune
