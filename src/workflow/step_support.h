#pragma once
// What the build steps share: the option gate, their question and the
// folders each project remembers in its tracking database.
#include <array>
#include <cstdint>
#include <optional>
#include <string>

#include "files/frm_file_handler.h"
#include "state/addin_state.h"
#include "platform/ide.h"
#include "settings/option_set.h"
#include "tracking/jet351.h"

namespace sentrune {

// The step's value (0 No, 1 Yes, 2 Prompt) for the project's type; 0 for a
// type the options do not know.
int16_t StepValue(const std::array<int16_t, kProjectTypeCount>& option, const platform::VBProject& project);
inline constexpr int16_t kAskFirst = 2;

// The project's tracking database: the project file with its extension
// replaced by ".stn"; empty for a project never saved.
std::string TrackingDatabaseName(const platform::VBProject& project);

// The folders one project remembers ("CompBackupBase", "CompatBase", ...).
// A project never saved has no database and so remembers nothing.
class RememberedFolders {
 public:
  // The state must outlive this object.
  RememberedFolders(AddinState& state, const platform::VBProject& project);
  // Empty when nothing is stored.
  std::string Get(const std::string& name);
  void Store(const std::string& name, const std::string& folder);

 private:
  std::optional<clsJet351> jet_;
};

struct StepQuestion {
  std::string caption;
  std::string prompt;
  int32_t dialogType = 2;
  std::string source;
  std::string destination;
  // Lets the user edit the destination and browse for its folder, starting
  // at browseStartPath (the destination's folder when empty).
  bool editable = false;
  std::string browseStartPath{};
};

// Shows the question through frmFileHandlerEX; the form as it was closed
// (SelectedButton, DestinationFile).
frmFileHandlerEX AskStep(AddinState& state, const StepQuestion& question);

}  // namespace sentrune
