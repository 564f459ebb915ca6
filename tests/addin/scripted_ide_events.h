#pragma once
// VBE.Events: the event sources the add-in attaches its sinks to. Each is
// an IConnectionPointContainer with one connection point, for its
// dispinterface; Advise and Unadvise are kept in the IDE's state, keyed by
// what the events are about (a project, a control, or the IDE itself).
//
// ReferencesEvents is left out: the notes do not give its dispinterface.
// The sources answer IDispatch and IConnectionPointContainer only, the
// notes naming no IIDs for them.
#include <memory>

#include "scripted_ide_object.h"
#include "scripted_ide_state.h"

namespace sentrune::testing::ide {

inline constexpr IID kIidProjectsEvents = {0x0002E190, 0, 0, {0xC0, 0, 0, 0, 0, 0, 0, 0x46}};
inline constexpr IID kIidComponentsEvents = {0x0002E193, 0, 0, {0xC0, 0, 0, 0, 0, 0, 0, 0x46}};
inline constexpr IID kIidFileControlEvents = {0x0002E141, 0, 0, {0xC0, 0, 0, 0, 0, 0, 0, 0x46}};
inline constexpr IID kIidControlEvents = {0x0002E198, 0, 0, {0xC0, 0, 0, 0, 0, 0, 0, 0x46}};

ScriptedObject* NewEvents(std::shared_ptr<IdeState> state);

}  // namespace sentrune::testing::ide
