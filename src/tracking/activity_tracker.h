#pragma once
// modTimerFunctions: follows which project and which component the developer
// works in and switches the stopwatches of the active project's clsJet351
// accordingly, saving their totals when the project changes or goes away.
#include <memory>
#include <string>

#include "state/addin_state.h"
#include "platform/ide.h"
#include "settings/option_set.h"
#include "tracking/ide_usability.h"
#include "tracking/jet351.h"

namespace sentrune {

class OptionsHandler;

class ActivityTracker {
 public:
  // The state, the option set (read on every call, so a changed TrackTime
  // counts at once) and the IDE must outlive the tracker, and so must
  // `usability` when given; without it, objects are judged by the IDE's
  // list of open projects.
  ActivityTracker(AddinState& state, const OptionSet& options, platform::VBE& ide,
                  IdeUsability* usability = nullptr);

  // mobjJetClass, created when there is none. When the IDE's active project
  // has a project file on disk, its database path becomes CurrentDBName
  // unless that holds it already.
  clsJet351& GetJetClass();
  // Null arguments mean no project or no component.
  void ProjectManager(const platform::ProjectPtr& project);
  void ComponentManager(const platform::ComponentPtr& component);
  // The entry point of the IDE's events and of the active-window poll.
  void TrackActivity(const platform::ProjectPtr& project, const platform::ComponentPtr& component);
  // Saves the totals, then shows the elapsed-times view of them.
  void ShowTimerJobs(OptionsHandler& options);

  const platform::ProjectPtr& ActiveIDEProject() const { return activeProject_; }
  const platform::ComponentPtr& ActiveIDEComponent() const { return activeComponent_; }
  // mobjJetClass; null when there is none.
  clsJet351* JetClass() const { return jetClass_.get(); }

 private:
  bool Usable(const platform::ProjectPtr& project) const;
  bool Usable(const platform::ComponentPtr& component) const;
  bool ProjectFileExists(const std::string& fileName) const;
  void SaveAndDropJetClass();

  AddinState& state_;
  const OptionSet& options_;
  platform::VBE& ide_;
  std::unique_ptr<OpenProjectsUsability> ownUsability_;
  IdeUsability* usability_;
  platform::ProjectPtr activeProject_;
  platform::ComponentPtr activeComponent_;
  std::unique_ptr<clsJet351> jetClass_;
};

}  // namespace sentrune
