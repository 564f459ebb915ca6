#include "verify/frm_install_details.h"

#include "state/msgbox.h"
#include "runtime/vb_convert.h"
#include "settings/options_handler.h"
#include "typelib/parse_tlb.h"
#include "verify/c_verify_installation.h"

namespace sentrune {
namespace {

int32_t StoredSize(OptionsHandler& options, const std::string& key) {
  return rt::CLng(options.GetOption(key, "-1")).value_or(-1);
}

// Holds the verifier as the form's mobjVerInstall and hands its events to the
// form's handlers, adding the failure's message that a silent run keeps back.
class DiagnosticsListener : public VerifyInstallationEvents {
 public:
  DiagnosticsListener(frmInstallDetails& form, cVerifyInstallation& verifier) : form_(form), verifier_(verifier) {}
  void BeforeVerify(const std::string& ComponentName, bool& Aborted) override {
    form_.mobjVerInstall_BeforeVerify(ComponentName, Aborted);
  }
  void AfterVerify(const std::string& ComponentName, int32_t ErrorCode, bool& Aborted) override {
    form_.mobjVerInstall_AfterVerify(ComponentName, ErrorCode, Aborted);
    if (ErrorCode == 0) return;
    ++failures;
    form_.AppendText(verifier_.ErrText() + "\r\n");
  }
  int32_t failures = 0;

 private:
  frmInstallDetails& form_;
  cVerifyInstallation& verifier_;
};

}  // namespace

int32_t frmInstallDetails::RunDiagnostics(platform::Registry* registry) {
  cVerifyInstallation verifier(state_, registry);
  DiagnosticsListener listener(*this, verifier);
  verifier.SetEvents(&listener);
  verifier.VerifyAll(true);
  return listener.failures;
}

int32_t frmInstallDetails::ShowDiagnostics(platform::Registry* registry) {
  ClearText();
  const int32_t failures = RunDiagnostics(registry);
  Show(kDiagnosticsCaption);
  return failures;
}

int32_t frmInstallDetails::CompareComps(const std::string& FileA, const std::string& FileB) {
  clsParseTLB a(state_);
  if (const int32_t error = a.ParseTypeLib(FileA); error != 0) return error;
  clsParseTLB b(state_);
  if (const int32_t error = b.ParseTypeLib(FileB); error != 0) return error;
  ClearText();
  const std::vector<std::string> differences = a.Compare(b, true, true);
  if (!differences.empty()) AppendText(DifferencesText(differences));
  return static_cast<int32_t>(differences.size());
}

void frmInstallDetails::mobjVerInstall_BeforeVerify(const std::string& ComponentName, bool&) {
  AppendText("Verifying " + ComponentName + "\r\n");
}

void frmInstallDetails::mobjVerInstall_AfterVerify(const std::string& ComponentName, int32_t ErrorCode, bool&) {
  AppendText("Verifying " + ComponentName + " - Completed: " + (ErrorCode == 0 ? "Success" : "Fail") + "\r\n");
}

void frmInstallDetails::Show(const std::string& caption) {
  platform::FormView view;
  view.kind = platform::FormView::Kind::kText;
  view.caption = caption;
  view.text = text_;
  state_.ui().ShowForm(view);
}

void frmInstallDetails::cmdHelp_Click() {
  lfncMsgBoxEX(state_, "Sorry, No help available at this time.", platform::mb::kOkOnly, "Sentrune");
}

void frmInstallDetails::LoadSize(OptionsHandler& options) {
  height = StoredSize(options, "DiffDetails_Height");
  width = StoredSize(options, "DiffDetails_Width");
}

void frmInstallDetails::SaveSize(OptionsHandler& options) const {
  options.SaveOption("DiffDetails_Height", std::to_string(height));
  options.SaveOption("DiffDetails_Width", std::to_string(width));
}

}  // namespace sentrune
