#pragma once
// frmInstallDetails: the text window that follows a verification run line by
// line, shows the differences between two components' type libraries, and
// carries other reports (the path fixer's).
#include <cstdint>
#include <string>

#include "state/addin_state.h"
#include "platform/registry.h"

namespace sentrune {

class OptionsHandler;

class frmInstallDetails {
 public:
  explicit frmInstallDetails(AddinState& state) : state_(state) {}

  // Compares FileA (this) with FileB (Other), ignoring minor differences and
  // with details, and writes the differences into the text. The count of
  // differences, or the reader's error number when a file cannot be read
  // (the text is then left alone).
  int32_t CompareComps(const std::string& FileA, const std::string& FileB);

  // The verifier's events.
  void mobjVerInstall_BeforeVerify(const std::string& ComponentName, bool& Aborted);
  void mobjVerInstall_AfterVerify(const std::string& ComponentName, int32_t ErrorCode, bool& Aborted);

  void AppendText(const std::string& text) { text_ += text; }
  void ClearText() { text_.clear(); }
  const std::string& Text() const { return text_; }

  // Shows the text modally under `caption`.
  void Show(const std::string& caption);
  void cmdHelp_Click();

  // The diagnostics view: verifies the add-in's own dependencies silently
  // through `registry` (null: none), following the run line by line with
  // each failure's message under its line. RunDiagnostics appends to the
  // text and returns the number of components that failed; ShowDiagnostics
  // starts from an empty text and shows the result.
  int32_t RunDiagnostics(platform::Registry* registry);
  int32_t ShowDiagnostics(platform::Registry* registry);
  static constexpr const char* kDiagnosticsCaption = "Sentrune Diagnostics";

  // The remembered size ("DiffDetails_Height", "DiffDetails_Width"); -1
  // keeps the designed size.
  void LoadSize(OptionsHandler& options);
  void SaveSize(OptionsHandler& options) const;
  int32_t height = -1;
  int32_t width = -1;

 private:
  AddinState& state_;
  std::string text_;
};

}  // namespace sentrune
