#include "edit_follower.h"

namespace sentrune::cli {

std::vector<FollowerEvent> EditFollower::Changed(const std::string& component, double now) {
  std::vector<FollowerEvent> events = Tick(now);
  lastChange_ = now;
  if (component != active_) {
    active_ = component;
    events.push_back({FollowerEvent::kActive, component});
  }
  return events;
}

std::vector<FollowerEvent> EditFollower::Tick(double now) {
  std::vector<FollowerEvent> events;
  if (!active_.empty() && now - lastChange_ >= kIdleSeconds) {
    active_.clear();
    events.push_back({FollowerEvent::kIdle, {}});
  }
  if (now - lastSave_ >= kSaveSeconds) {
    lastSave_ = now;
    events.push_back({FollowerEvent::kSave, {}});
  }
  return events;
}

}  // namespace sentrune::cli
