#pragma once
// VBE.Events of the headless IDE: holds every subscription and delivers the
// events the IDE's objects raise.
#include <functional>
#include <memory>
#include <utility>

#include "platform/headless/sink_list.h"
#include "platform/ide.h"

namespace sentrune::headless {

class EventHub : public platform::Events {
 public:
  // The predicates tell whether a project is open and a control not
  // deleted; targets that are not raise no events.
  EventHub(std::function<bool(const platform::VBProject*)> isOpenProject,
           std::function<bool(const platform::CommandBarControl*)> isLiveControl);

  std::unique_ptr<platform::Subscription> VBProjectsEvents(platform::VBProjectsEventsSink& sink) override;
  std::unique_ptr<platform::Subscription> VBComponentsEvents(const platform::ProjectPtr& project,
                                                             platform::VBComponentsEventsSink& sink) override;
  std::unique_ptr<platform::Subscription> FileControlEvents(const platform::ProjectPtr& project,
                                                            platform::FileControlEventsSink& sink) override;
  std::unique_ptr<platform::Subscription> CommandBarEvents(const platform::ControlPtr& control,
                                                           platform::CommandBarEventsSink& sink) override;

  // Called when a project is closed or a control deleted.
  void ForgetProject(const platform::VBProject* project) {
    components_->Forget(project);
    files_->Forget(project);
  }
  void ForgetControl(const platform::CommandBarControl* control) { clicks_->Forget(control); }

  template <class Fn>
  void ProjectsEvent(Fn&& fn) { projects_->Fire(nullptr, std::forward<Fn>(fn)); }
  template <class Fn>
  void ComponentsEvent(const platform::VBProject* project, Fn&& fn) {
    components_->Fire(project, std::forward<Fn>(fn));
  }
  template <class Fn>
  void FileControlEvent(const platform::VBProject* project, Fn&& fn) {
    files_->Fire(project, std::forward<Fn>(fn));
  }
  template <class Fn>
  void CommandBarEvent(const platform::CommandBarControl* control, Fn&& fn) {
    clicks_->Fire(control, std::forward<Fn>(fn));
  }

 private:
  std::function<bool(const platform::VBProject*)> isOpenProject_;
  std::function<bool(const platform::CommandBarControl*)> isLiveControl_;
  std::shared_ptr<SinkList<platform::VBProjectsEventsSink>> projects_;
  std::shared_ptr<SinkList<platform::VBComponentsEventsSink>> components_;
  std::shared_ptr<SinkList<platform::FileControlEventsSink>> files_;
  std::shared_ptr<SinkList<platform::CommandBarEventsSink>> clicks_;
};

}  // namespace sentrune::headless
