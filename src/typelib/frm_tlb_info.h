#pragma once
// frmTLBInfo: two component files side by side as trees, compared on demand
// and exported as XML. The form's logic and state live here; a Ui shows it.
#include <array>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "state/addin_state.h"
#include "platform/ui.h"
#include "typelib/parse_tlb.h"

namespace sentrune {

class OptionsHandler;

class frmTLBInfo {
 public:
  static constexpr int kLeft = 0;
  static constexpr int kRight = 1;

  frmTLBInfo(AddinState& state, OptionsHandler& options);

  // The check marks as stored (a fresh store: ignore minor, no details).
  static bool StoredIgnoreMinor(OptionsHandler& options);
  static bool StoredShowDetails(OptionsHandler& options);

  // Restores size, splitter and check marks; both panes show only
  // "No TypeLib Selected".
  void Form_Load();
  // Saves size and splitter.
  void Form_Unload();

  // Asks for a component and shows its type library in the pane; a cancelled
  // dialog or a failed read leaves the pane as it was.
  void mnuSelectFile_Click(int pane);
  // Compares the left model (this) with the right (Other) and shows the
  // "Comparison Results" text.
  void mnuRunComparison_Click();
  void mnuIgnoreMinorDiffs_Click();
  void mnuShowDetails_Click();
  // Asks for an XML file name and writes the pane's component there.
  void subGenerateXML(int pane);

  bool mnuIgnoreMinorDiffs() const { return ignoreMinor_; }
  bool mnuShowDetails() const { return showDetails_; }
  const std::vector<platform::TreeNode>& Pane(int pane) const { return panes_.at(pane); }
  const clsParseTLB* Model(int pane) const { return models_.at(pane).get(); }

  // subSetEnabled's result: what the commands may do now.
  struct Enabled {
    bool runComparison = false;
    bool generateXmlLeft = false;
    bool generateXmlRight = false;
  };
  const Enabled& CommandsEnabled() const { return enabled_; }

  // Both panes as one tree view, for a Ui that shows the form.
  platform::FormView View() const;

  int32_t height = -1;
  int32_t width = -1;
  int32_t splitterPos = -1;

 private:
  void subSetEnabled();
  void SelectFile(int pane);
  void Report(const std::string& handler, const std::string& what);

  AddinState& state_;
  OptionsHandler& options_;
  bool ignoreMinor_ = true;
  bool showDetails_ = false;
  std::array<std::vector<platform::TreeNode>, 2> panes_;
  std::array<std::unique_ptr<clsParseTLB>, 2> models_;
  Enabled enabled_;
};

}  // namespace sentrune
