#pragma once
// This load's log, the file the core named at initialisation in the
// add-in's "Logs\" folder: the menu commands the user gave while connected,
// one timed line each, and what each build did, written through the core's
// log file writer so that a person can follow what the add-in did.
#include <string>

#include "fault_trap.h"
#include "host/addin_menu.h"
#include "logging/csv_file_writer.h"
#include "state/addin_state.h"
#include "workflow/build_report.h"

namespace sentrune::addin {

class LoadLog {
 public:
  // Opens the log for appending, so that a second connection in the same
  // load carries on the same file.
  explicit LoadLog(AddinState& state);
  // Ends the log with its footer.
  ~LoadLog();
  LoadLog(const LoadLog&) = delete;
  LoadLog& operator=(const LoadLog&) = delete;

  void Note(const std::string& what);
  // A build the IDE made, with the add-in's steps around it.
  void NoteBuild(const BuildEnd& build);
  // A fault the add-in's trap stopped before it reached the IDE.
  void NoteFault(const Fault& fault);

 private:
  AddinState& state_;
  clsCSVFileWriter writer_;
};

// The same actions, each noting its command in the log before it runs.
MenuActions Logged(MenuActions actions, LoadLog& log);

}  // namespace sentrune::addin
