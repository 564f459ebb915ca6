#include "tracking/activity_tracker.h"

#include "tracking/frm_timer_jobs.h"
#include "tracking/trace_block.h"
#include "tracking/tracking_schema.h"

namespace sentrune {

ActivityTracker::ActivityTracker(AddinState& state, const OptionSet& options, platform::VBE& ide,
                                 IdeUsability* usability)
    : state_(state), options_(options), ide_(ide) {
  if (usability == nullptr) ownUsability_ = std::make_unique<OpenProjectsUsability>(ide);
  usability_ = usability != nullptr ? usability : ownUsability_.get();
}

bool ActivityTracker::Usable(const platform::ProjectPtr& project) const {
  return project && usability_->Usable(*project);
}

bool ActivityTracker::Usable(const platform::ComponentPtr& component) const {
  return component && usability_->Usable(*component);
}

bool ActivityTracker::ProjectFileExists(const std::string& fileName) const {
  if (fileName.empty()) return false;
  const rt::Result<uint32_t> attributes = state_.files().GetAttributes(fileName);
  return attributes.ok() && !(*attributes & platform::kAttrDirectory);
}

clsJet351& ActivityTracker::GetJetClass() {
  if (!jetClass_) jetClass_ = std::make_unique<clsJet351>(state_);
  if (const platform::ProjectPtr active = ide_.ActiveVBProject()) {
    const std::string fileName = active->FileName();
    if (ProjectFileExists(fileName)) {
      const std::string path = TrackingDatabasePath(fileName);
      if (path != jetClass_->CurrentDBName()) jetClass_->SetCurrentDBName(path);
    }
  }
  return *jetClass_;
}

void ActivityTracker::SaveAndDropJetClass() {
  if (!jetClass_) return;
  jetClass_->SaveTimerJobs();
  jetClass_.reset();
}

void ActivityTracker::ProjectManager(const platform::ProjectPtr& project) {
  TraceBlock block(state_, 60, "'ProjectManager");
  if (!Usable(project)) {
    SaveAndDropJetClass();
    activeProject_.reset();
    return;
  }
  if (activeProject_ && activeProject_->Identity() == project->Identity()) {
    if (GetJetClass().CurrentDBObject() == nullptr)
      state_.trace({"'modTimerFunctions:ProjectManager - JetClass.CurrentDBObject Was Nothing"});
    return;
  }
  state_.trace({"'Resetting ActiveIDEProject"});
  activeProject_ = project;
  SaveAndDropJetClass();
  if (options_.TrackTime) GetJetClass().LoadTimerJobs();
}

void ActivityTracker::ComponentManager(const platform::ComponentPtr& component) {
  TraceBlock block(state_, 40, "'ComponentManager");
  if (!Usable(component)) {
    activeComponent_.reset();
    return;
  }
  if (activeComponent_ && activeComponent_->Identity() == component->Identity()) return;
  const std::string name = component->Name();
  state_.trace({"'Resetting ActiveIDEComponent. Was: " + (activeComponent_ ? activeComponent_->Name() : "Nothing") +
                ", Is: " + name});
  activeComponent_ = component;
  if (options_.TrackTime && jetClass_) {
    jetClass_->ComponentName(name);
    state_.trace({"'Setting mobjJetClass.ComponentName = " + name});
  }
}

void ActivityTracker::TrackActivity(const platform::ProjectPtr& project, const platform::ComponentPtr& component) {
  // Stale objects of a closed project: let go of the component before the
  // project's totals are saved and its database dropped.
  const bool staleBoth = project && component && !Usable(project) && !Usable(component);
  if (staleBoth) {
    ComponentManager(component);
    ProjectManager(project);
  } else {
    ProjectManager(project);
    ComponentManager(component);
  }
}

void ActivityTracker::ShowTimerJobs(OptionsHandler& options) {
  clsJet351& jetClass = GetJetClass();
  jetClass.SaveTimerJobs();
  frmTimerJobs form(state_, options);
  form.SetTheJetClass(&jetClass);
  form.Show();
}

}  // namespace sentrune
