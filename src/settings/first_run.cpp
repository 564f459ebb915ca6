#include "settings/frm_options.h"
#include "settings/options_handler.h"

namespace sentrune {

void LoadOptionsWithFirstRun(OptionsHandler& handler) {
  if (!handler.GetOption(OptionKey(static_cast<int>(ProjectType::kStandardExe), "CreateBackup")).empty()) {
    handler.LoadOptions();
    return;
  }
  // A store that never held options: write every option the dialog shows
  // with the value the option set holds now; the save reloads the set.
  frmOptions form(handler);
  form.FillGrid();
  form.SetChanged(true);
  (void)form.SaveSettings();
}

}  // namespace sentrune
