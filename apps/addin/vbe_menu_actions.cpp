#include "vbe_menu_actions.h"

#include "about_box.h"
#include "files/association_fixer.h"
#include "files/path_fixer.h"
#include "files/reference_list.h"
#include "platform/win32/win32_registry.h"
#include "settings/frm_options.h"
#include "typelib/frm_tlb_info.h"
#include "verify/insert_components.h"

namespace sentrune::addin {
namespace {

// The grid as text: the Ui has no editable window yet, so the options are
// shown, not changed, here.
void ShowOptionsForm(Connect& connect) {
  frmOptions form(*connect.options());
  form.Open();
  connect.state().ui().ShowForm(form.View());
  form.Close();
}

// Both components asked for in turn and compared; with only one chosen, its
// type library is shown.
void InspectComponentsForm(Connect& connect) {
  frmTLBInfo form(connect.state(), *connect.options());
  form.Form_Load();
  form.mnuSelectFile_Click(frmTLBInfo::kLeft);
  if (form.Model(frmTLBInfo::kLeft) != nullptr) form.mnuSelectFile_Click(frmTLBInfo::kRight);
  if (form.CommandsEnabled().runComparison) {
    form.mnuRunComparison_Click();
  } else if (form.Model(frmTLBInfo::kLeft) != nullptr) {
    connect.state().ui().ShowForm(form.View());
  }
  form.Form_Unload();
}

}  // namespace

MenuActions IdeMenuActions(const OpenDocument& open) {
  MenuActions actions;
  actions.ShowReferences = [](Connect& connect) {
    if (connect.gobjVBInstance == nullptr || connect.options() == nullptr) return;
    ReferenceList(connect.state(), *connect.options(), *connect.gobjVBInstance).Show();
  };
  actions.InspectComponents = [](Connect& connect) {
    if (connect.options() != nullptr) InspectComponentsForm(connect);
  };
  actions.InsertClass = [](Connect& connect) {
    if (connect.gobjVBInstance == nullptr || connect.options() == nullptr) return;
    win32::Win32Registry registry;
    InsertVerifyClass(connect.state(), connect.options()->options(), *connect.gobjVBInstance, &registry);
  };
  actions.InsertUserControl = [](Connect& connect) {
    if (connect.gobjVBInstance == nullptr || connect.options() == nullptr) return;
    InsertAlignControl(connect.state(), connect.options()->options(), *connect.gobjVBInstance);
  };
  actions.FixAbsPaths = [](Connect& connect) {
    if (connect.options() == nullptr) return;
    Parse4ABS(connect.state(), connect.options()->options());
  };
  actions.FixAssociations = [](Connect& connect) {
    win32::Win32Registry registry;
    lfncFixAssociations(connect.state(), registry);
  };
  actions.ShowOptions = [](Connect& connect) {
    if (connect.options() != nullptr) ShowOptionsForm(connect);
  };
  actions.ShowAbout = [open](Connect& connect) { ShowAboutBox(connect.state(), open); };
  return actions;
}

}  // namespace sentrune::addin
