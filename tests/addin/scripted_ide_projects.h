#pragma once
// VBProjects, _VBProject, VBComponents/VBComponent and References/Reference
// as views over the headless IDE's projects, which are real .vbp files.
//
// The notes give the DISPIDs of VBE, _VBProject, VBComponents (Item, Count,
// AddFile, Remove) and References (Item, Count). The rest are this
// harness's own choice: _VBProject SaveAs 0x89;
// VBProjects Item 0 and Count 0xA (as VBComponents); VBComponent Name 0x30,
// Type 0x31; Reference Name 0x60020000 up to Type 0x60020007 in the order
// of kReferenceMembers. VBComponent answers only IDispatch (no IID in the
// notes); VBProjects and the other collections likewise.
#include <memory>

#include "platform/ide.h"
#include "scripted_ide_object.h"
#include "scripted_ide_state.h"

namespace sentrune::testing::ide {

inline constexpr IID kIidVBProject = {0x0002E106, 0, 0, {0xC0, 0, 0, 0, 0, 0, 0, 0x46}};

ScriptedObject* NewProjects(std::shared_ptr<IdeState> state);
// The object of that project or component: the one handed out before while
// it is still held, a new one otherwise. Null for Nothing.
ScriptedObject* NewProject(platform::ProjectPtr project);
ScriptedObject* NewComponent(platform::ComponentPtr component);

}  // namespace sentrune::testing::ide
