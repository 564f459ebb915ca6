#pragma once
// Connect: the add-in's entry class. The IDE (or the command-line host
// acting as it) initialises it, connects it and disconnects it; in between
// it keeps one project sink per open project and the parts every sink uses.
#include <functional>
#include <memory>
#include <string>

#include "state/addin_state.h"
#include "platform/ide.h"
#include "runtime/keyed_collection.h"
#include "settings/options_handler.h"
#include "tracking/activity_tracker.h"
#include "workflow/cls_project.h"
#include "workflow/frm_addin_main.h"
#include "workflow/workflow_services.h"

namespace sentrune {

class Connect;

// The add-in's menu, built by the host's menu code: Build adds the controls
// and wires their handlers; Remove deletes the controls, then releases the
// handlers. Both pass over their own failures.
class AddinMenu {
 public:
  virtual ~AddinMenu() = default;
  virtual void Build(Connect& connect) = 0;
  virtual void Remove() = 0;
};

class Connect {
 public:
  // The state must outlive the object; the IDE given at connection must
  // outlive the connection.
  explicit Connect(AddinState& state);
  // Disconnects when still connected.
  ~Connect();
  Connect(const Connect&) = delete;
  Connect& operator=(const Connect&) = delete;

  // Fixes this load's log file name and creates the log folder.
  void AddinInstance_Initialize();
  // Only the IDE is used: the add-in behaves the same in every connect mode.
  void AddinInstance_OnConnection(platform::VBE& application);
  // Passes over every failure and ends with no error pending.
  void AddinInstance_OnDisconnection();

  // Gives a project a sink, under its name (a sink of another project of
  // the same name is taken over). Nothing for nothing.
  void AddProjectSink(const platform::ProjectPtr& project);
  // The sink under that name (any case), or null. It lives until it is
  // removed or the add-in disconnects.
  clsProject* FindProjectSink(const std::string& name) const;
  void RemoveProjectSink(const std::string& name);

  void VBPEvents_ItemAdded(const platform::ProjectPtr& project);
  void VBPEvents_ItemRemoved(const platform::ProjectPtr& project);
  void VBPEvents_ItemRenamed(const platform::ProjectPtr& project, const std::string& oldName);
  void VBPEvents_ItemActivated(const platform::ProjectPtr& project);

  // Seams the host fills before connecting: the menu, and the installation
  // details dialog's diagnostics view opened when ShowDiagnostics is on.
  void SetMenu(std::unique_ptr<AddinMenu> menu) { menu_ = std::move(menu); }
  std::function<void(Connect&)> ShowDiagnostics;
  // Hears of each build's end with what the add-in did around it.
  std::function<void(const BuildEnd&)> BuildEnded;

  AddinState& state() const { return state_; }
  // Null while not connected.
  platform::VBE* gobjVBInstance = nullptr;
  rt::KeyedCollection<std::unique_ptr<clsProject>> gcolProjectSinks;
  OptionsHandler* options() const { return options_.get(); }
  ActivityTracker* tracker() const { return tracker_.get(); }
  frmAddinMain* mainForm() const { return mainForm_.get(); }
  // "magnify.exe" is in the system folder.
  bool MagnifierAvailable() const { return magnifier_; }

 private:
  class ProjectsSink;

  AddinState& state_;
  std::unique_ptr<OptionsHandler> options_;
  std::unique_ptr<ActivityTracker> tracker_;
  std::unique_ptr<frmAddinMain> mainForm_;
  std::unique_ptr<WorkflowServices> services_;
  std::unique_ptr<AddinMenu> menu_;
  bool magnifier_ = false;
  std::unique_ptr<ProjectsSink> projectsSink_;
  std::unique_ptr<platform::Subscription> VBPEvents;
};

}  // namespace sentrune
