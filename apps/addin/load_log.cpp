#include "load_log.h"

#include <utility>

#include "runtime/vb_format.h"

namespace sentrune::addin {
namespace {

constexpr int16_t kOpenForEachWrite = 1;
constexpr int32_t kAppend = 1;

}  // namespace

LoadLog::LoadLog(AddinState& state) : state_(state), writer_(state) {
  // Without a name the writer would fall back to a folder of its own.
  if (!state.gstrLogFile.empty()) writer_.InitializeLog(state.gstrLogFile, kOpenForEachWrite, kAppend);
}

LoadLog::~LoadLog() { writer_.CloseLog(); }

void LoadLog::Note(const std::string& what) {
  if (!writer_.LogInitialized()) return;
  writer_.WriteLogEntries(std::vector<std::string>{rt::Format(state_.env().Time().Now(), "hh:nn:ss"), what});
}

MenuActions Logged(MenuActions actions, LoadLog& log) {
  const auto note = [&log](std::function<void(Connect&)>& action, const char* command) {
    if (!action) return;
    action = [&log, command, run = std::move(action)](Connect& connect) {
      log.Note("Menu: " + std::string(command));
      run(connect);
    };
  };
  note(actions.ShowReferences, "Show References");
  note(actions.InspectComponents, "Inspect Components");
  note(actions.InsertClass, "Add/Refresh verification class");
  note(actions.InsertUserControl, "Add alignment control");
  note(actions.FixAbsPaths, "Fix ABS Paths");
  note(actions.FixAssociations, "Fix VB Associations");
  note(actions.ShowOptions, "Sentrune Options");
  note(actions.ShowAbout, "About");
  return actions;
}

}  // namespace sentrune::addin
