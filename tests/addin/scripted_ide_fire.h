#pragma once
// Raising the IDE's events: each sink advised for the event's dispinterface
// and subject is called through IDispatch::Invoke with the event's DISPID,
// its arguments last-first, as the IDE calls them, and by-reference
// Booleans as VT_BYREF|VT_BOOL, so that what a sink writes back is seen.
#include <string>
#include <utility>
#include <vector>

#include "scripted_ide_object.h"
#include "scripted_ide_state.h"

namespace sentrune::testing::ide {

// `arguments` in the event's order (only borrowed). S_OK, or the first
// failure a sink returned; every sink is called either way.
HRESULT Fire(IdeState& state, const IID& iid, const void* target, DISPID id, std::vector<VARIANT> arguments);
// The sinks advised right now for that dispinterface and subject.
size_t AdvisedSinks(const IdeState& state, const IID& iid, const void* target);

// _dispVBProjectsEvents.ItemAdded, for a project opened after the add-in.
HRESULT FireProjectAdded(IdeState& state, IDispatch* project);
// ItemRemoved, raised while the project is still open; ItemRenamed after.
HRESULT FireProjectRemoved(IdeState& state, IDispatch* project);
HRESULT FireProjectRenamed(IdeState& state, IDispatch* project, const std::wstring& oldName);
// _dispVBComponentsEvents.ItemSelected (4) or ItemActivated (5), to the
// sinks of the component's project.
HRESULT FireComponentEvent(IdeState& state, IDispatch* project, DISPID id, IDispatch* component);
// _dispVBFileControlEvents: RequestWriteFile returns the Cancel flag left.
bool FireRequestWriteFile(IdeState& state, IDispatch* project, const std::wstring& fileName);
HRESULT FireAfterWriteFile(IdeState& state, IDispatch* project, LONG fileType, const std::wstring& fileName,
                           SHORT result);
// _dispCommandBarControlEvents.Click: returns {handled, cancelDefault}.
std::pair<bool, bool> FireClick(IdeState& state, IDispatch* control);

}  // namespace sentrune::testing::ide
