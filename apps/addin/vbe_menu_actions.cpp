#include "vbe_menu_actions.h"

#include "files/association_fixer.h"
#include "files/path_fixer.h"
#include "files/reference_list.h"
#include "platform/win32/win32_registry.h"
#include "verify/insert_components.h"

namespace sentrune::addin {

MenuActions IdeMenuActions() {
  MenuActions actions;
  actions.ShowReferences = [](Connect& connect) {
    if (connect.gobjVBInstance == nullptr || connect.options() == nullptr) return;
    ReferenceList(connect.state(), *connect.options(), *connect.gobjVBInstance).Show();
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
  return actions;
}

}  // namespace sentrune::addin
