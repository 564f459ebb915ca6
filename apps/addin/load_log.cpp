#include "load_log.h"

#include <cstdio>
#include <utility>

#include "runtime/vb_format.h"
#include "workflow/build_report_text.h"

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

void LoadLog::NoteBuild(const BuildEnd& build) {
  if (build.result != 0) {
    Note("Build of " + build.project + ": " + build.fileName + " was not written (the IDE's result " +
         std::to_string(build.result) + "); nothing was done after it.");
    return;
  }
  Note("Build of " + build.project + ": " + build.fileName);
  for (const std::string& line : DescribeBuild(build.report)) Note("  " + line);
}

void LoadLog::NoteFault(const Fault& fault) {
  char where[64];
  std::snprintf(where, sizeof where, "exception 0x%08lX at Sentrune.dll+0x%llX", static_cast<unsigned long>(fault.code),
                static_cast<unsigned long long>(fault.offset));
  Note(std::string("The add-in stopped a fault in its own code (") + where +
       ") before it reached the IDE, and carried on. Save your work; if the add-in misbehaves, restart the IDE.");
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
