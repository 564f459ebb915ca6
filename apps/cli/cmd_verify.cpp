// `sentrune verify`, `verify-class`, `add-align-control` and `details`: the
// installation verifier and the commands that insert its sources.
#include <memory>
#include <ostream>

#include "commands.h"
#include "host_platform.h"
#include "open_project.h"
#include "platform/headless/headless_ide.h"
#include "runtime/text.h"
#include "session.h"
#include "settings/options_handler.h"
#include "verify/c_verify_installation.h"
#include "verify/frm_install_details.h"
#include "verify/insert_components.h"

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

struct VerifyArgs {
  bool silent = false;
};

void Verify(Session& session, const VerifyArgs& args) {
  if (!session.Ready()) return;
  const std::unique_ptr<platform::Registry> registry = session.hostEnv().OpenVerifyRegistry(&session.err);
  cVerifyInstallation verifier(session.state(), registry.get());
  PrintedLog log(session.out, verifier);
  verifier.SetEvents(&log);
  verifier.VerifyAll(args.silent);
  if (log.failures > 0) session.exitCode = kExitStopped;
}

void Details(Session& session) {
  if (!session.Ready()) return;
  const std::unique_ptr<platform::Registry> registry = session.hostEnv().OpenVerifyRegistry(&session.err);
  frmInstallDetails form(session.state());
  if (form.ShowDiagnostics(registry.get()) > 0) session.exitCode = kExitStopped;
}

// The add-in's boxes said why; this names the project for a script's log.
void Finish(Session& session, InsertOutcome outcome, const std::string& project, const std::string& what) {
  switch (outcome) {
    case InsertOutcome::kAdded:
      return;
    case InsertOutcome::kNothingToDo:
      return session.Stop(project + ": " + what + " was not added: there was nothing to add");
    case InsertOutcome::kDeclined:
      return session.Stop(project + ": " + what + " was kept as it was");
    case InsertOutcome::kFailed:
      return session.Stop(project + ": " + what + " could not be added");
  }
}

void VerifyClass(Session& session, const std::string& project) {
  if (!OpenProjectFile(session, project)) return;
  const std::unique_ptr<platform::Registry> registry = session.hostEnv().OpenVerifyRegistry(nullptr);
  Finish(session, InsertVerifyClass(session.state(), session.options().options(), session.ide(), registry.get()),
         project, "the verification class");
}

void AlignControl(Session& session, const std::string& project) {
  if (OpenProjectFile(session, project))
    Finish(session, InsertAlignControl(session.state(), session.options().options(), session.ide()), project,
           "the alignment control");
}

}  // namespace

void SetUpVerify(CLI::App& command, Session& session) {
  VerifyArgs& args = RunWith(command, session, Verify);
  command.add_flag("--silent", args.silent, "Show no message box; print each failure under its line");
  command.footer("Registrations are read from " + session.host().Help().registry);
}

void SetUpVerifyClass(CLI::App& command, Session& session) {
  command.add_option("project", RunWith(command, session, VerifyClass), "The project file (.vbp)")->required();
}

void SetUpAlignControl(CLI::App& command, Session& session) {
  command.add_option("project", RunWith(command, session, AlignControl), "The project file (.vbp)")->required();
}

void SetUpDetails(CLI::App& command, Session& session) {
  command.callback([&session] { Details(session); });
}

}  // namespace sentrune::cli
