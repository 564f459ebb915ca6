// `sentrune refs`: the reference list of a project or of every project of a
// group, as text columns or saved as a CSV file.
#include <ostream>

#include "commands.h"
#include "files/reference_list.h"
#include "platform/console/console_ui.h"
#include "platform/headless/headless_ide.h"
#include "session.h"

namespace sentrune::cli {
namespace {

struct RefsArgs {
  std::string file;
  std::string project;
  std::string csv;
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

void SaveCsv(Session& session, ReferenceList& list, const std::string& argument) {
  const rt::Result<std::string> target = session.ToWindowsPath(argument);
  if (!target.ok()) return session.Fail(target.error().description);
  if (list.SaveList(*target) != 0) return session.Fail("the reference list was not saved to '" + argument + "'");
  session.out << session.ToHostPath(list.SavedFile()) << '\n';
}

void Refs(Session& session, const RefsArgs& args) {
  if (!session.Ready()) return;
  const rt::Result<std::string> path = session.ToWindowsPath(args.file);
  if (!path.ok()) return session.Fail(path.error().description);
  AddinState& state = session.state();
  headless::HeadlessIde ide(state.files(), &state.platform.typelibs);
  const auto opened = ide.Open(*path);
  if (!opened.ok()) return session.Fail(opened.error().description);
  for (const rt::VbError& problem : opened->problems) session.err << "sentrune: " << problem.description << '\n';

  ReferenceList list(state, session.options(), ide);
  list.Fill();
  if (!args.project.empty() && !list.SelectProject(args.project))
    return session.Fail("'" + args.file + "' has no project named '" + args.project + "'");
  if (args.csv.empty()) return PrintGrid(session, list);
  SaveCsv(session, list, args.csv);
}

}  // namespace

void SetUpRefs(CLI::App& command, Session& session) {
  command.footer(
      "Without --project a group lists every project's references in turn.\n"
      "--csv writes the list (header row first) to OUT, replacing it, and prints its name.");
  RefsArgs& args = RunWith(command, session, Refs);
  command.add_option("file", args.file, "The .vbp or .vbg file")->required();
  command.add_option("--project", args.project, "List only this project's references")->type_name("NAME");
  command.add_option("--csv", args.csv, "Save the list as CSV")->type_name("OUT");
}

}  // namespace sentrune::cli
