#include "typelib/frm_tlb_info.h"

#include <exception>

#include "state/msgbox.h"
#include "runtime/vb_convert.h"
#include "settings/options_handler.h"

namespace sentrune {
namespace {

constexpr const char* kIgnoreMinorKey = "Main_IgnoreMinor";
constexpr const char* kShowDetailsKey = "Main_ShowDetails";
constexpr const char* kComponentFilter =
    "ActiveX Components (*.exe;*.ocx;*.dll;*.tlb;*.olb)|*.exe;*.ocx;*.dll;*.tlb;*.olb";

std::vector<platform::TreeNode> EmptyPane() { return {{"Root", "No TypeLib Selected", {}}}; }

bool StoredFlag(OptionsHandler& options, const char* key, bool fallback) {
  return rt::CBool(options.GetOption(key, fallback ? "True" : "False")).value_or(fallback);
}

int32_t StoredSize(OptionsHandler& options, const std::string& key) {
  return rt::CLng(options.GetOption(key, "-1")).value_or(-1);
}

const char* FlagText(bool flag) { return flag ? "True" : "False"; }

const char* SelectHandler(int pane) {
  return pane == frmTLBInfo::kLeft ? "mnuSelectFileLeft_Click" : "mnuSelectFileRight_Click";
}

}  // namespace

frmTLBInfo::frmTLBInfo(AddinState& state, OptionsHandler& options) : state_(state), options_(options) {
  panes_ = {EmptyPane(), EmptyPane()};
}

bool frmTLBInfo::StoredIgnoreMinor(OptionsHandler& options) { return StoredFlag(options, kIgnoreMinorKey, true); }

bool frmTLBInfo::StoredShowDetails(OptionsHandler& options) { return StoredFlag(options, kShowDetailsKey, false); }

void frmTLBInfo::Report(const std::string& handler, const std::string& what) {
  state_.err.Raise(rt::errnum::kInvalidProcedureCall, "frmTLBInfo", what);
  lfncMsgBoxEX(state_, "Error " + std::to_string(state_.err.number()) + "\r\n" + what, platform::mb::kCritical,
               "frmTLBInfo:" + handler);
  state_.err.Clear();
}

void frmTLBInfo::Form_Load() {
  height = StoredSize(options_, "Main_Height");
  width = StoredSize(options_, "Main_Width");
  splitterPos = StoredSize(options_, "Main_SplitterPos");
  ignoreMinor_ = StoredIgnoreMinor(options_);
  showDetails_ = StoredShowDetails(options_);
  panes_ = {EmptyPane(), EmptyPane()};
  models_ = {};
  subSetEnabled();
}

void frmTLBInfo::Form_Unload() {
  options_.SaveOption("Main_Height", std::to_string(height));
  options_.SaveOption("Main_Width", std::to_string(width));
  options_.SaveOption("Main_SplitterPos", std::to_string(splitterPos));
}

void frmTLBInfo::SelectFile(int pane) {
  const std::optional<std::string> file = state_.ui().OpenFile("Select a component to inspect.", kComponentFilter);
  if (file && !file->empty()) {
    auto model = std::make_unique<clsParseTLB>(state_);
    if (model->ParseTypeLib(*file) == 0) {
      model->BuildTree(panes_.at(pane));
      models_.at(pane) = std::move(model);
    }
  }
  subSetEnabled();
}

void frmTLBInfo::mnuSelectFile_Click(int pane) {
  try {
    SelectFile(pane);
  } catch (const std::exception& e) {
    Report(SelectHandler(pane), e.what());
  }
}

void frmTLBInfo::mnuRunComparison_Click() {
  try {
    if (!models_[kLeft] || !models_[kRight]) return;
    platform::FormView results;
    results.kind = platform::FormView::Kind::kText;
    results.caption = "Comparison Results";
    results.text = DifferencesText(models_[kLeft]->Compare(*models_[kRight], ignoreMinor_, showDetails_));
    state_.ui().ShowForm(results);
  } catch (const std::exception& e) {
    Report("mnuRunComparison_Click", e.what());
  }
}

void frmTLBInfo::mnuIgnoreMinorDiffs_Click() {
  ignoreMinor_ = !ignoreMinor_;
  options_.SaveOption(kIgnoreMinorKey, FlagText(ignoreMinor_));
}

void frmTLBInfo::mnuShowDetails_Click() {
  showDetails_ = !showDetails_;
  options_.SaveOption(kShowDetailsKey, FlagText(showDetails_));
}

void frmTLBInfo::subGenerateXML(int pane) {
  try {
    const clsParseTLB* shown = models_.at(pane).get();
    if (!shown) return;
    const std::optional<std::string> output = state_.ui().SaveFile("Select Name and Path for XML File",
                                                                   "XML Files (*.xml)|*.xml");
    if (!output || output->empty()) return;
    clsParseTLB model(state_);
    if (model.ParseTypeLib(shown->FilePath()) == 0) model.BuildXML(*output);
  } catch (const std::exception& e) {
    Report("subGenerateXML", e.what());
  }
}

void frmTLBInfo::subSetEnabled() {
  enabled_.generateXmlLeft = models_[kLeft] != nullptr;
  enabled_.generateXmlRight = models_[kRight] != nullptr;
  enabled_.runComparison = enabled_.generateXmlLeft && enabled_.generateXmlRight;
}

platform::FormView frmTLBInfo::View() const {
  platform::FormView view;
  view.kind = platform::FormView::Kind::kTree;
  view.caption = "frmTLBInfo";
  for (const auto& pane : panes_) view.tree.insert(view.tree.end(), pane.begin(), pane.end());
  return view;
}

}  // namespace sentrune
