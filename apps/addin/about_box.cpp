#include "about_box.h"

#include "platform/win32/windows_api.h"
#include <shellapi.h>

#include "addin_ids.h"
#include "files/file_functions.h"
#include "platform/win32/win32_text.h"
#include "state/msgbox.h"

namespace sentrune::addin {

void ShowAboutBox(AddinState& state, const OpenDocument& open) {
  namespace mb = platform::mb;
  const std::string text = std::string("Sentrune ") + SENTRUNE_VERSION + "\r\n\r\n" + kDescription +
                           "\r\n\r\nOpen the help?";
  if (lfncMsgBoxEX(state, text, mb::kYesNo + mb::kInformation, "About Sentrune") != mb::kYes) return;
  const std::string& help = state.gstrHelpFile;
  if (!help.empty() && lfncFileExists(state.files(), help) && open(help)) return;
  lfncMsgBoxEX(state, "Sorry, No help available at this time.", mb::kOkOnly, "Sentrune");
}

bool OpenWithShell(const std::string& path) {
  const HINSTANCE result =
      ShellExecuteW(nullptr, L"open", win32::Widen(path).c_str(), nullptr, nullptr, SW_SHOWNORMAL);
  // Above 32 is success, as the shell has always reported it.
  return reinterpret_cast<INT_PTR>(result) > 32;
}

}  // namespace sentrune::addin
