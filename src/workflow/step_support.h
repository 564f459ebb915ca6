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
//
// They are stored as absolute paths in a database that travels with the
// project's folder when it is copied or moved, and that anyone may hand over
// crafted. So a remembered folder is used as it is only when it lies in the
// project's folder or below it, or when it was stored, or agreed to, while
// the project file was in the folder it is in now (the database keeps that
// folder beside each one, as name + ".ProjectFolder"). Any other is first
// shown to the user, with where the project now is: Yes uses it and
// remembers the agreement for this place; No leaves it unused, so that the
// step proposes its own folder.
class RememberedFolders {
 public:
  // The state must outlive this object.
  RememberedFolders(AddinState& state, const platform::VBProject& project);
  // Empty when nothing is stored or the user declined the folder.
  std::string Get(const std::string& name);
  void Store(const std::string& name, const std::string& folder);

 private:
  // Asks before `folder` is used; `storedFor` is where the project was
  // when it was stored, empty when unknown.
  bool Agreed(const std::string& name, const std::string& folder, const std::string& storedFor);

  AddinState& state_;
  std::string projectFolder_;
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
