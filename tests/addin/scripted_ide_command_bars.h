#pragma once
// VBE.CommandBars as Office 8 shows it to an add-in: CommandBars(name), a
// bar's Controls, Controls.Add(Type, ...) and each control's properties and
// Delete, every change kept in the IDE's state.
//
// The notes give no DISPIDs for these (they differ between Office
// versions, so clients look names up); the ones here are this harness's
// own. CommandBars and CommandBar answer only IDispatch, their IIDs not
// being in the notes.
#include <memory>

#include "scripted_ide_object.h"
#include "scripted_ide_state.h"

namespace sentrune::testing::ide {

ScriptedObject* NewCommandBars(std::shared_ptr<IdeState> state);
ScriptedObject* NewControl(std::shared_ptr<IdeState> state, std::shared_ptr<ControlRecord> control);

}  // namespace sentrune::testing::ide
