#include "platform/headless/event_hub.h"

namespace sentrune::headless {

EventHub::EventHub(std::function<bool(const platform::VBProject*)> isOpenProject,
                   std::function<bool(const platform::CommandBarControl*)> isLiveControl)
    : isOpenProject_(std::move(isOpenProject)),
      isLiveControl_(std::move(isLiveControl)),
      projects_(std::make_shared<SinkList<platform::VBProjectsEventsSink>>()),
      components_(std::make_shared<SinkList<platform::VBComponentsEventsSink>>()),
      files_(std::make_shared<SinkList<platform::FileControlEventsSink>>()),
      clicks_(std::make_shared<SinkList<platform::CommandBarEventsSink>>()) {}

std::unique_ptr<platform::Subscription> EventHub::VBProjectsEvents(platform::VBProjectsEventsSink& sink) {
  return projects_->Add(nullptr, sink);
}

std::unique_ptr<platform::Subscription> EventHub::VBComponentsEvents(
    const platform::ProjectPtr& project, platform::VBComponentsEventsSink& sink) {
  if (!project || !isOpenProject_(project.get())) return nullptr;
  return components_->Add(project.get(), sink);
}

std::unique_ptr<platform::Subscription> EventHub::FileControlEvents(const platform::ProjectPtr& project,
                                                                    platform::FileControlEventsSink& sink) {
  if (!project || !isOpenProject_(project.get())) return nullptr;
  return files_->Add(project.get(), sink);
}

std::unique_ptr<platform::Subscription> EventHub::CommandBarEvents(const platform::ControlPtr& control,
                                                                   platform::CommandBarEventsSink& sink) {
  if (!control || !isLiveControl_(control.get())) return nullptr;
  return clicks_->Add(control.get(), sink);
}

}  // namespace sentrune::headless
