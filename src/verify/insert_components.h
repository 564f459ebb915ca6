#pragma once
// The two menu commands that put the add-in's own sources into the active
// project: the verification class (made from the template and the project's
// references) and the alignment user control.
#include <string>

#include "state/addin_state.h"
#include "platform/ide.h"
#include "platform/registry.h"
#include "settings/option_set.h"

namespace sentrune {

enum class InsertOutcome {
  kAdded,        // added (or refreshed) and the project saved
  kNothingToDo,  // no project open, no dependency to verify, or the name is taken
  kDeclined,     // the user kept the existing class
  kFailed,       // a file could not be written or the project refused it
};

// The template files, in the add-in's folder.
inline constexpr const char* kVerifyClassTemplate = "VerifyClassTemplate.txt";
inline constexpr const char* kAlignControlTemplate = "AlignmentHelper.ctl";
// TypeLib Information, which the generated class needs.
inline constexpr const char* kTlbInfGuid = "{8B217740-717D-11CE-AB5B-D41203C10000}";

// InsertClassMenuHandler_Click for the IDE's active project: the class is
// written as <VerifyClass>.cls in the project's folder (or over the file of
// the class it refreshes) and added, with a reference to tlbinf32.dll when
// the project has none. tlbinf32.dll is looked up through `registry` (may be
// null), then in the system folder; when it cannot be added the user is told
// so and the class is added all the same.
InsertOutcome InsertVerifyClass(AddinState& state, const OptionSet& options, platform::VBE& ide,
                                platform::Registry* registry);

// InsertUserControlMenuHandler_Click: the control is copied into the
// project's folder as <AlignControl>.ctl, renamed and added. It is made
// Public in control projects, the only kind whose user controls the IDE
// lets be public.
InsertOutcome InsertAlignControl(AddinState& state, const OptionSet& options, platform::VBE& ide);

}  // namespace sentrune
