// `sentrune options`: the options dialog on the command line.
#include <ostream>

#include "commands.h"
#include "platform/console/console_ui.h"
#include "session.h"
#include "settings/frm_options.h"
#include "settings/options_handler.h"

namespace sentrune::cli {
namespace {

struct OptionsArgs {
  std::string key;
  std::string value;
};

// The dialog's grid, with each row's store key added as a last column so
// that the user sees what `options set` takes.
void ShowGrid(Session& session) {
  if (!session.Ready()) return;
  frmOptions form(session.options());
  form.Open();
  platform::FormView view = form.View();
  for (const clsConfigItem& item : form.Items()) {
    const auto row = static_cast<size_t>(item.GridRow);
    if (row < view.rows.size()) view.rows[row].cells.push_back(item.CFGKey);
  }
  session.out << console::RenderForm(view);
  form.Close();
}

// The dialog's box has named the file; a script reads the exit status.
void NotSaved(Session& session) {
  session.Stop("the options were not saved: " +
               session.ToHostPath(session.options().iniManager().GetIniManager().Path()) + " cannot be written");
}

void SetOne(Session& session, const OptionsArgs& args) {
  if (!session.Ready()) return;
  frmOptions form(session.options());
  form.Open();
  if (const rt::Status set = form.SetValue(args.key, args.value); !set.ok()) {
    session.Fail(set.error().description);
    return;
  }
  if (form.SaveSettings() != 0) return NotSaved(session);
  session.out << args.key << " = " << form.CellText(args.key) << '\n';
}

void Reset(Session& session) {
  if (!session.Ready()) return;
  frmOptions form(session.options());
  form.Open();
  form.ResetToStartValues();
  if (form.SaveSettings() != 0) return NotSaved(session);
  session.out << "Every option has its start value again.\n";
}

}  // namespace

void SetUpOptions(CLI::App& command, Session& session) {
  command.footer(
      "Keys are the store keys: per project type ActiveX_DLL_CreateBackup and the like\n"
      "(prefixes Standard_EXE, ActiveX_EXE, ActiveX_DLL, ActiveX_OCX), general options by\n"
      "name (BackupFileCount). Yes/No options take Yes or No; step options Yes, No or Prompt.");
  CLI::App* set = command.add_subcommand("set", "Change one option: KEY VALUE");
  OptionsArgs& args = RunWith(*set, session, SetOne);
  set->add_option("key", args.key, "The option's store key")->required();
  set->add_option("value", args.value, "Its new value")->required();
  command.add_subcommand("reset", "Write every option's start value again")->callback([&session] { Reset(session); });
  command.require_subcommand(0, 1);
  // Runs after the chosen subcommand, if any.
  command.callback([&session, &command] {
    if (command.get_subcommands().empty()) ShowGrid(session);
  });
}

}  // namespace sentrune::cli
