// `sentrune history`: the builds a project's tracking database recorded,
// and with --compat how far back its component stayed binary compatible.
#include <algorithm>
#include <nlohmann/json.hpp>
#include <optional>
#include <ostream>

#include "commands.h"
#include "open_project.h"
#include "read_model.h"
#include "runtime/vb_format.h"
#include "session.h"
#include "settings/options_handler.h"
#include "tracking/jet351.h"
#include "typelib/frm_tlb_info.h"
#include "typelib/tlb_json.h"
#include "workflow/compat_history.h"
#include "workflow/step_support.h"

namespace sentrune::cli {
namespace {

using Json = nlohmann::ordered_json;

struct HistoryArgs {
  std::string project;
  bool json = false;
  bool compat = false;
};

void PrintJson(Session& session, const Json& json) {
  session.out << json.dump(2, ' ', false, Json::error_handler_t::replace) << '\n';
}

std::string When(const rt::DateTime& time) { return rt::Format(time, "yyyy-mm-dd hh:nn:ss"); }

void ListBuilds(Session& session, const platform::VBProject& project, bool json) {
  clsJet351 jet(session.state());
  jet.SetCurrentDBName(TrackingDatabaseName(project));
  const std::vector<BuildHistoryRecord> builds = jet.BuildHistory();
  // Named as the command ends; its builds are unknown, not none.
  if (session.state().failedDatabases.contains(jet.CurrentDBName())) return;
  if (json) {
    Json list = Json::array();
    for (const BuildHistoryRecord& b : builds)
      list.push_back({{"id", b.id}, {"file", session.ToHostPath(b.fileName)}, {"date", b.fileDate}});
    return PrintJson(session, {{"project", project.Name()}, {"builds", std::move(list)}});
  }
  if (builds.empty()) {
    session.out << "No builds recorded for " << project.Name()
                << ": each build made with `sentrune build` or under the add-in is recorded.\n";
    return;
  }
  session.out << "Builds of " << project.Name() << " (" << builds.size() << "):\n";
  for (const BuildHistoryRecord& b : builds)
    session.out << "  " << b.id << "  " << b.fileDate << "  " << session.ToHostPath(b.fileName) << '\n';
}

// The walk as it goes: one line per copy, and the differences that broke
// compatibility under the copy that broke it.
class CompatText {
 public:
  CompatText(Session& session, const std::vector<DatedCopy>& copies) : session_(session), copies_(copies) {}

  void Step(const CompatStep& step) {
    const DatedCopy& copy = copies_[step.newer];
    if (!step.error.empty()) {
      Line(copy, "unreadable") << "    " << step.error << '\n';
      session_.exitCode = kExitStopped;
      return;
    }
    if (!step.older) {
      Line(copy, "oldest").flush();
      return;
    }
    const CompatLevel level = CompatibilityLevel(step.differences);
    Line(copy, CompatLevelName(level)).flush();
    if (level != CompatLevel::kIncompatible) return;
    lastBreak_ = step;
    for (const TlbDifference& d : step.differences)
      session_.out << "    --> " << ForTerminal(d.text) << '\n';
  }

  void Summary() const {
    if (copies_.size() < 2) {
      session_.out << "One copy only: nothing to compare it with.\n";
      return;
    }
    if (!lastBreak_) {
      session_.out << "No break: every copy is compatible with the one before, back to "
                   << When(copies_.front().written) << ".\n";
      return;
    }
    const DatedCopy& broke = copies_[lastBreak_->newer];
    session_.out << "Binary compatibility last broke at " << session_.ToHostPath(broke.path) << " ("
                 << When(broke.written) << "), against " << session_.ToHostPath(copies_[*lastBreak_->older].path)
                 << ".\n";
  }

 private:
  std::ostream& Line(const DatedCopy& copy, const char* verdict) {
    std::string column = verdict;
    column.resize(std::max<size_t>(column.size(), 12), ' ');
    return session_.out << "  " << When(copy.written) << "  " << column << "  " << session_.ToHostPath(copy.path)
                        << '\n';
  }

  Session& session_;
  const std::vector<DatedCopy>& copies_;
  std::optional<CompatStep> lastBreak_;
};

Json CompatStepJson(Session& session, const std::vector<DatedCopy>& copies, const CompatStep& step) {
  const DatedCopy& copy = copies[step.newer];
  Json j{{"file", session.ToHostPath(copy.path)}, {"date", When(copy.written)}};
  if (!step.error.empty()) {
    j["error"] = step.error;
    return j;
  }
  if (!step.older) return j;
  j["against"] = session.ToHostPath(copies[*step.older].path);
  j["level"] = CompatLevelName(CompatibilityLevel(step.differences));
  j["count"] = step.differences.size();
  j["differences"] = DifferencesJson(step.differences);
  return j;
}

void WalkCompat(Session& session, const platform::VBProject& project, bool json) {
  const std::vector<DatedCopy> copies = CompatTimeline(session.state(), session.options().options(), project);
  const bool ignoreMinor = frmTLBInfo::StoredIgnoreMinor(session.options());
  if (json) {
    Json walk = Json::array();
    WalkCompatTimeline(session.state(), copies, ignoreMinor, [&](const CompatStep& step) {
      if (!step.error.empty()) session.exitCode = kExitStopped;
      walk.push_back(CompatStepJson(session, copies, step));
    });
    return PrintJson(session, {{"project", project.Name()}, {"copies", std::move(walk)}});
  }
  if (copies.empty()) {
    session.out << "No dated copies of " << session.ToHostPath(project.BuildFileName())
                << ": models go to Compat\\ and backups to the backup folder beside it as it is built.\n";
    return;
  }
  session.out << "Copies of " << session.ToHostPath(project.BuildFileName()) << ", oldest first:\n";
  CompatText text(session, copies);
  WalkCompatTimeline(session.state(), copies, ignoreMinor, [&](const CompatStep& step) { text.Step(step); });
  text.Summary();
}

void History(Session& session, const HistoryArgs& args) {
  const platform::ProjectPtr project = OpenOneProject(session, args.project);
  if (!project) return;
  if (args.compat) return WalkCompat(session, *project, args.json);
  ListBuilds(session, *project, args.json);
}

}  // namespace

void SetUpHistory(CLI::App& command, Session& session) {
  command.footer(
      "Builds come from the project's tracking database (.stn beside the .vbp).\n"
      "--compat walks the dated copies of the project's component, models in Compat\\ and\n"
      "backups in the backup folder (History\\), oldest first, then the component itself, and\n"
      "compares each with the one before: a copy marked incompatible broke binary\n"
      "compatibility, with the differences that broke it below it. Lines appear as the walk goes.\n"
      "A copy that cannot be read is marked unreadable.\n"
      "With --json: {project, copies: [{file, date, and against, level, count and differences\n"
      "(as compare --json gives them) for each copy compared, or error}]}.");
  HistoryArgs& args = RunWith(command, session, History);
  command.add_option("project", args.project, "The .vbp file")->required();
  command.add_flag("--compat", args.compat, "Walk the dated copies and show where compatibility broke");
  command.add_flag("--json", args.json, "Print the builds (or the walk) as JSON");
}

}  // namespace sentrune::cli
