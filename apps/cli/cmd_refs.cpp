// `sentrune refs`: the reference list of a project or of every project of a
// group, as text columns, as JSON or saved as a CSV file.
#include <algorithm>
#include <nlohmann/json.hpp>
#include <ostream>

#include "commands.h"
#include "files/reference_list.h"
#include "platform/console/console_ui.h"
#include "platform/headless/group_file.h"
#include "platform/headless/headless_ide.h"
#include "runtime/text.h"
#include "runtime/winpath.h"
#include "open_project.h"
#include "session.h"

namespace sentrune::cli {
namespace {

struct RefsArgs {
  std::string file;
  std::string project;
  std::string csv;
  bool json = false;
};

// The grid with its header row; the kind, a picture in the form, becomes a
// last text column.
void PrintGrid(Session& session, const ReferenceList& list) {
  platform::FormView view = list.View();
  std::vector<std::string> header(view.headers);
  header.push_back("Kind");
  for (size_t i = 0; i < view.rows.size(); ++i) view.rows[i].cells.push_back(list.Rows()[i].reference.kind);
  view.rows.insert(view.rows.begin(), platform::GridRow{0, false, std::move(header)});
  session.out << console::RenderForm(view);
}

// The rows as the grid holds them, each with the reference's own facts.
void PrintJson(Session& session, const ReferenceList& list) {
  nlohmann::ordered_json rows = nlohmann::ordered_json::array();
  for (const ReferenceRow& row : list.Rows()) {
    const ReferenceRecord& r = row.reference;
    rows.push_back({{"number", row.number}, {"project", row.project}, {"name", r.name},
                    {"description", r.description}, {"fullPath", r.fullPath}, {"guid", r.guid},
                    {"version", std::to_string(r.major) + "." + std::to_string(r.minor)}, {"broken", r.broken},
                    {"kind", r.kind}});
  }
  session.out << rows.dump(2, ' ', false, nlohmann::ordered_json::error_handler_t::replace) << '\n';
}

// The members of a group that could not be opened, each named with why:
// none of the group opened is bad input, some missing a run that could not
// do all its work.
void ReportMissingMembers(Session& session, const std::string& group,
                          const headless::HeadlessIde::OpenResult& opened) {
  if (opened.problems.empty()) return;
  const auto members = headless::ReadGroupFile(session.state().files(), group);
  size_t problem = 0;
  for (size_t i = 0; members.ok() && i < members->size() && problem < opened.problems.size(); ++i) {
    const std::string& file = (*members)[i].fileName;
    const bool open = std::any_of(opened.projects.begin(), opened.projects.end(),
                                  [&](const auto& p) { return rt::IEquals(p->FileName(), file); });
    if (open) continue;
    session.err << "sentrune: the group's project " << rt::GetFileTitle(file)
                << " cannot be opened: " << opened.problems[problem++].description << '\n';
  }
  for (; problem < opened.problems.size(); ++problem)
    session.err << "sentrune: " << opened.problems[problem].description << '\n';
  session.exitCode = opened.projects.empty() ? kExitBadInput : kExitStopped;
}

void SaveCsv(Session& session, ReferenceList& list, const std::string& argument) {
  const rt::Result<std::string> target = session.ToWindowsPath(argument);
  if (!target.ok()) return session.Fail(target.error().description);
  if (list.SaveList(*target) != 0) return session.Fail("the reference list was not saved to '" + argument + "'");
  session.out << session.ToHostPath(list.SavedFile()) << '\n';
}

void Refs(Session& session, const RefsArgs& args) {
  const std::optional<headless::HeadlessIde::OpenResult> opened = OpenProjectFile(session, args.file);
  if (!opened) return;
  ReportMissingMembers(session, *session.ToWindowsPath(args.file), *opened);
  if (opened->projects.empty()) return;

  ReferenceList list(session.state(), session.options(), session.ide());
  list.Fill();
  if (!args.project.empty() && !list.SelectProject(args.project))
    return session.Fail("'" + args.file + "' has no project named '" + args.project + "'");
  if (!args.csv.empty()) return SaveCsv(session, list, args.csv);
  if (args.json) return PrintJson(session, list);
  PrintGrid(session, list);
}

}  // namespace

void SetUpRefs(CLI::App& command, Session& session) {
  command.footer(
      "Without --project a group lists every project's references in turn; a member of the\n"
      "group that cannot be opened is named on stderr. Controls (the project's Object= lines) are listed as the IDE's\n"
      "References holds them, as type library references.\n"
      "--csv writes the list to OUT (\".csv\" added to a name without extension), replacing it,\n"
      "and prints its name. The file is the add-in's log format: a \" --- Begin Log ---\" line\n"
      "and a \"Model: ...,Serial Number: ...,Date: ...,Time: ...\" line, the header row, one\n"
      "row per reference (fields quoted where they hold a comma or quote), then \" --- End Log ---\".\n"
      "--json prints the rows with each reference's name, version, broken flag and kind.");
  RefsArgs& args = RunWith(command, session, Refs);
  command.add_option("file", args.file, "The .vbp or .vbg file")->required();
  command.add_option("--project", args.project, "List only this project's references")->type_name("NAME");
  auto* csv = command.add_option("--csv", args.csv, "Save the list as CSV")->type_name("OUT");
  command.add_flag("--json", args.json, "Print the rows as JSON")->excludes(csv);
}

}  // namespace sentrune::cli
