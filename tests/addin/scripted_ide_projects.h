#pragma once
// VBProjects, _VBProject, VBComponents/VBComponent and References/Reference
// as views over the headless IDE's projects, which are real .vbp files.
//
// The notes give the DISPIDs of VBE, _VBProject, VBComponents (Item, Count)
// and References (Item, Count). The rest are this harness's own choice:
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
// Null for a null project (Nothing).
ScriptedObject* NewProject(platform::ProjectPtr project);
ScriptedObject* NewComponent(platform::ComponentPtr component);

}  // namespace sentrune::testing::ide
