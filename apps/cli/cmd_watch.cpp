// `sentrune watch`: time tracking for a developer who edits the project's
// files outside the IDE, fed to the add-in as the IDE's poll would feed it.
#include <chrono>
#include <ctime>
#include <filesystem>
#include <map>
#include <memory>
#include <ostream>

#include "commands.h"
#include "edit_follower.h"
#include "host/connect.h"
#include "host_platform.h"
#include "open_project.h"
#include "platform/headless/headless_ide.h"
#include "session.h"
#include "settings/options_handler.h"
#include "tracking/activity_tracker.h"
#include "tracking/jet351.h"

namespace sentrune::cli {
namespace {

double SteadySeconds() {
  return std::chrono::duration<double>(std::chrono::steady_clock::now().time_since_epoch()).count();
}

std::string Clock() {
  const std::time_t now = std::time(nullptr);
  char text[16];
  std::strftime(text, sizeof text, "%H:%M:%S", std::localtime(&now));
  return text;
}

class Watcher {
 public:
  Watcher(Session& session, platform::ProjectPtr project) : session_(session), project_(std::move(project)) {}

  // Each component's source file, by host path; false when there is none.
  bool MapFiles(platform::FileWatch& watch) {
    for (const platform::ComponentPtr& component : project_->VBComponents()) {
      const std::vector<std::string> names = component->FileNames();
      if (names.empty()) continue;
      const std::string host = session_.ToHostPath(names.front());
      const std::string folder = std::filesystem::path(host).parent_path().string();
      if (const rt::Status added = watch.AddFolder(folder); !added.ok()) {
        session_.err << "sentrune: " << added.error().description << '\n';
        continue;
      }
      files_[host] = component;
    }
    return !files_.empty();
  }

  void Apply(const FollowerEvent& event) {
    ActivityTracker& tracker = *session_.connect().tracker();
    switch (event.kind) {
      case FollowerEvent::kActive: {
        const platform::ComponentPtr component = Find(event.component);
        (void)session_.ide().ActivateComponent(component);
        tracker.TrackActivity(project_, component);
        session_.out << Clock() << "  " << event.component << '\n';
        break;
      }
      case FollowerEvent::kIdle:
        session_.ide().SetActiveWindow(std::nullopt);
        tracker.ComponentManager(nullptr);
        // The poll leaves the last job counting; a pause is not work.
        if (clsJet351* jet = tracker.JetClass()) jet->ComponentName("");
        session_.out << Clock() << "  (no component: 5 minutes without a change)\n";
        break;
      case FollowerEvent::kSave:
        Save();
        break;
    }
  }

  // The component a changed host file belongs to; empty for other files.
  std::string ComponentOf(const std::string& hostPath) const {
    const auto found = files_.find(hostPath);
    return found == files_.end() ? std::string() : found->second->Name();
  }

  void Save() {
    if (clsJet351* jet = session_.connect().tracker()->JetClass()) jet->SaveTimerJobs();
  }

 private:
  platform::ComponentPtr Find(const std::string& name) const {
    for (const auto& [path, component] : files_)
      if (component->Name() == name) return component;
    return nullptr;
  }

  Session& session_;
  platform::ProjectPtr project_;
  std::map<std::string, platform::ComponentPtr> files_;
};

// Totals are kept only with TrackTime on and only in an existing database,
// which otherwise the first build with history would create: a watch that
// could not keep what it gathers refuses to start.
bool KeepsTotals(Session& session) {
  clsJet351* jet = session.connect().tracker()->JetClass();
  if (!session.options().options().TrackTime || jet == nullptr) {
    session.Fail("time tracking is off; turn it on with `sentrune options set TrackTime Yes`");
    return false;
  }
  const bool missing = !session.state().files().GetAttributes(jet->CurrentDBName()).ok();
  // One whose totals could not be loaded keeps none (named as the command ends).
  if (!missing) return !session.state().failedDatabases.contains(jet->CurrentDBName());
  if (jet->CreateIfMissing() != 0) {
    session.Stop("cannot create the tracking database " + session.ToHostPath(jet->CurrentDBName()));
    return false;
  }
  session.out << "Created the tracking database " << session.ToHostPath(jet->CurrentDBName()) << '\n';
  return true;
}

void Watch(Session& session, const std::string& argument) {
  const platform::ProjectPtr project = OpenOneProject(session, argument);
  if (!project) return;
  rt::Result<std::unique_ptr<platform::FileWatch>> watch = session.host().WatchFiles();
  if (!watch.ok()) return session.Stop(watch.error().description);
  Watcher watcher(session, project);
  if (!watcher.MapFiles(**watch)) return session.Fail("no component file of " + argument + " can be watched");
  session.connect().tracker()->TrackActivity(project, nullptr);
  if (!KeepsTotals(session)) return;
  session.out << "Watching " << project->Name() << " (Ctrl-C ends, saving the totals)\n";

  const std::unique_ptr<StopRequest> stop = session.host().CatchStop();
  EditFollower follower(SteadySeconds());
  while (!stop->Requested()) {
    const rt::Result<std::vector<std::string>> changed = (*watch)->Wait(1000);
    if (!changed.ok()) {
      session.Stop(changed.error().description);
      break;
    }
    std::vector<FollowerEvent> events;
    for (const std::string& path : *changed) {
      const std::string component = watcher.ComponentOf(path);
      if (component.empty()) continue;
      for (const FollowerEvent& event : follower.Changed(component, SteadySeconds())) events.push_back(event);
    }
    for (const FollowerEvent& event : follower.Tick(SteadySeconds())) events.push_back(event);
    for (const FollowerEvent& event : events) watcher.Apply(event);
  }
  watcher.Save();
  session.out << "Stopped; totals saved.\n";
}

}  // namespace

void SetUpWatch(CLI::App& command, Session& session) {
  command.footer(
      "A component counts as being edited from the moment its source file is written until\n"
      "another component's file is, or until 5 minutes pass without a change. Totals go to the\n"
      "project's tracking database every minute and when the watch ends (Ctrl-C). Needs the\n"
      "option TrackTime on; `sentrune times` shows the totals.");
  command.add_option("project", RunWith(command, session, Watch), "The .vbp file")->required();
}

}  // namespace sentrune::cli
