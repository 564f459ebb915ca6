// `sentrune verify`, `verify-class`, `add-align-control` and `details`: the
// installation verifier and the commands that insert its sources.
#include <CLI/CLI.hpp>
#include <ostream>

#include "commands.h"
#include "platform/headless/headless_ide.h"
#include "runtime/text.h"
#include "session.h"
#include "settings/options_handler.h"
#include "verify/c_verify_installation.h"
#include "verify/frm_install_details.h"
#include "verify/insert_components.h"
#include "verify_registry.h"

namespace sentrune::cli {
namespace {

// Prints the run as the details view logs it; a silent run shows no box, so
// each failure's message follows its line instead.
class PrintedLog : public VerifyInstallationEvents {
 public:
  PrintedLog(std::ostream& out, const cVerifyInstallation& verifier) : out_(out), verifier_(verifier) {}
  void BeforeVerify(const std::string& ComponentName, bool&) override { out_ << "Verifying " << ComponentName << '\n'; }
  void AfterVerify(const std::string& ComponentName, int32_t ErrorCode, bool&) override {
    out_ << "Verifying " << ComponentName << " - Completed: " << (ErrorCode == 0 ? "Success" : "Fail") << '\n';
    if (ErrorCode == 0) return;
    ++failures;
    if (verifier_.Silent()) out_ << rt::Replace(verifier_.ErrText(), "\r\n", "\n") << '\n';
  }
  int failures = 0;

 private:
  std::ostream& out_;
  const cVerifyInstallation& verifier_;
};

void Verify(Session& session, bool silent) {
  const std::unique_ptr<platform::Registry> registry = OpenVerifyRegistry(session.state().env(), &session.err);
  cVerifyInstallation verifier(session.state(), registry.get());
  PrintedLog log(session.out, verifier);
  verifier.SetEvents(&log);
  verifier.VerifyAll(silent);
  if (log.failures > 0) session.exitCode = kExitStopped;
}

void Details(Session& session) {
  const std::unique_ptr<platform::Registry> registry = OpenVerifyRegistry(session.state().env(), &session.err);
  frmInstallDetails form(session.state());
  if (form.ShowDiagnostics(registry.get()) > 0) session.exitCode = kExitStopped;
}

// Opens the project as the developer would before clicking the menu item.
bool OpenProject(Session& session, const std::string& argument) {
  const rt::Result<std::string> path = session.ToWindowsPath(argument);
  if (!path) {
    session.Fail(path.error().description);
    return false;
  }
  const auto opened = session.ide().Open(*path);
  if (!opened) {
    session.Fail(opened.error().description);
    return false;
  }
  return true;
}

void Finish(Session& session, InsertOutcome outcome) {
  if (outcome != InsertOutcome::kAdded) session.exitCode = kExitStopped;
}

}  // namespace

void AddVerifyCommand(CLI::App& app, Session& session) {
  auto silent = std::make_shared<bool>(false);
  CLI::App* command = app.add_subcommand(
      "verify", "Check that the components the add-in needs are registered and recent enough");
  command->add_flag("--silent", *silent, "Show no message box; print each failure under its line");
  command->footer(
      "Registrations are read from the Wine prefix (--wineprefix, else $WINEPREFIX or ~/.wine).\n"
      "Exit status 1 when any component failed.");
  command->callback([&session, silent] {
    if (session.Ready()) Verify(session, *silent);
  });
}

void AddVerifyClassCommand(CLI::App& app, Session& session) {
  auto project = std::make_shared<std::string>();
  CLI::App* command = app.add_subcommand(
      "verify-class", "Add or refresh the installation verification class in a project (and save it)");
  command->add_option("project", *project, "The project file (.vbp)")->required();
  command->callback([&session, project] {
    if (!session.Ready() || !OpenProject(session, *project)) return;
    const std::unique_ptr<platform::Registry> registry = OpenVerifyRegistry(session.state().env(), nullptr);
    Finish(session, InsertVerifyClass(session.state(), session.options().options(), session.ide(), registry.get()));
  });
}

void AddAlignControlCommand(CLI::App& app, Session& session) {
  auto project = std::make_shared<std::string>();
  CLI::App* command =
      app.add_subcommand("add-align-control", "Add the alignment user control to a project (and save it)");
  command->add_option("project", *project, "The project file (.vbp)")->required();
  command->callback([&session, project] {
    if (session.Ready() && OpenProject(session, *project))
      Finish(session, InsertAlignControl(session.state(), session.options().options(), session.ide()));
  });
}

void AddDetailsCommand(CLI::App& app, Session& session) {
  CLI::App* command =
      app.add_subcommand("details", "The diagnostics view: the verification run line by line");
  command->callback([&session] {
    if (session.Ready()) Details(session);
  });
}

}  // namespace sentrune::cli
