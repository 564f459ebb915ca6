#pragma once
// Which component a developer is editing, judged from when its source file
// last changed: the last file changed is being edited until another one
// changes, or until a long pause means nobody is. Times are seconds on any
// steady clock, so a test can drive it without waiting.
#include <string>
#include <vector>

namespace sentrune::cli {

struct FollowerEvent {
  enum Kind { kActive, kIdle, kSave };
  Kind kind;
  std::string component;  // for kActive
  bool operator==(const FollowerEvent&) const = default;
};

class EditFollower {
 public:
  static constexpr double kIdleSeconds = 5 * 60;
  static constexpr double kSaveSeconds = 60;

  explicit EditFollower(double start) : lastChange_(start), lastSave_(start) {}

  // A file of `component` changed at `now`. What time passing has caused
  // comes first, then the switch when it is another component.
  std::vector<FollowerEvent> Changed(const std::string& component, double now);
  // Time has passed without a change: the pause ending the edit, and a save
  // due every kSaveSeconds.
  std::vector<FollowerEvent> Tick(double now);
  // Empty when nobody is editing.
  const std::string& Active() const { return active_; }

 private:
  std::string active_;
  double lastChange_;
  double lastSave_;
};

}  // namespace sentrune::cli
