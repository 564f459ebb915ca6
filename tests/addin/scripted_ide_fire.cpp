#include "scripted_ide_fire.h"

#include <oleauto.h>

#include <algorithm>

#include "scripted_ide_events.h"

namespace sentrune::testing::ide {
namespace {

VARIANT Object(IDispatch* object) {
  VARIANT value;
  VariantInit(&value);
  V_VT(&value) = VT_DISPATCH;
  V_DISPATCH(&value) = object;
  return value;
}

VARIANT Number(VARTYPE type, LONG number) {
  VARIANT value;
  VariantInit(&value);
  V_VT(&value) = VT_I4;
  V_I4(&value) = number;
  VariantChangeType(&value, &value, 0, type);
  return value;
}

VARIANT Text(BSTR text) {
  VARIANT value;
  VariantInit(&value);
  V_VT(&value) = VT_BSTR;
  V_BSTR(&value) = text;
  return value;
}

VARIANT Flag(VARIANT_BOOL* flag) {
  VARIANT value;
  VariantInit(&value);
  V_VT(&value) = VT_BYREF | VT_BOOL;
  V_BOOLREF(&value) = flag;
  return value;
}

const void* TargetOf(IDispatch* object) {
  const ScriptedObject* scripted = ScriptedObject::From(object);
  return scripted != nullptr ? scripted->Target() : nullptr;
}

}  // namespace

HRESULT Fire(IdeState& state, const IID& iid, const void* target, DISPID id, std::vector<VARIANT> arguments) {
  std::reverse(arguments.begin(), arguments.end());
  DISPPARAMS params{arguments.data(), nullptr, static_cast<UINT>(arguments.size()), 0};
  // A sink may unadvise, or advise others, while it is called.
  std::vector<DWORD> cookies;
  for (const SinkRecord& record : state.sinks) {
    if (record.sink != nullptr && IsEqualIID(record.iid, iid) && record.target == target)
      cookies.push_back(record.cookie);
  }
  HRESULT answer = S_OK;
  for (DWORD cookie : cookies) {
    auto record = std::find_if(state.sinks.begin(), state.sinks.end(),
                               [&](const SinkRecord& r) { return r.cookie == cookie && r.sink != nullptr; });
    if (record == state.sinks.end()) continue;
    IDispatch* sink = record->sink;
    sink->AddRef();
    const HRESULT called = sink->Invoke(id, IID_NULL, 0, DISPATCH_METHOD, &params, nullptr, nullptr, nullptr);
    sink->Release();
    if (FAILED(called) && SUCCEEDED(answer)) answer = called;
  }
  return answer;
}

size_t AdvisedSinks(const IdeState& state, const IID& iid, const void* target) {
  return static_cast<size_t>(std::count_if(state.sinks.begin(), state.sinks.end(), [&](const SinkRecord& r) {
    return r.sink != nullptr && IsEqualIID(r.iid, iid) && r.target == target;
  }));
}

HRESULT FireProjectAdded(IdeState& state, IDispatch* project) {
  return Fire(state, kIidProjectsEvents, nullptr, 1, {Object(project)});
}

HRESULT FireProjectRemoved(IdeState& state, IDispatch* project) {
  return Fire(state, kIidProjectsEvents, nullptr, 2, {Object(project)});
}

HRESULT FireProjectRenamed(IdeState& state, IDispatch* project, const std::wstring& oldName) {
  BSTR name = SysAllocString(oldName.c_str());
  const HRESULT answer = Fire(state, kIidProjectsEvents, nullptr, 3, {Object(project), Text(name)});
  SysFreeString(name);
  return answer;
}

HRESULT FireComponentEvent(IdeState& state, IDispatch* project, DISPID id, IDispatch* component) {
  return Fire(state, kIidComponentsEvents, TargetOf(project), id, {Object(component)});
}

bool FireRequestWriteFile(IdeState& state, IDispatch* project, const std::wstring& fileName) {
  BSTR name = SysAllocString(fileName.c_str());
  VARIANT_BOOL cancel = VARIANT_FALSE;
  (void)Fire(state, kIidFileControlEvents, TargetOf(project), 0xB, {Object(project), Text(name), Flag(&cancel)});
  SysFreeString(name);
  return cancel != VARIANT_FALSE;
}

HRESULT FireAfterWriteFile(IdeState& state, IDispatch* project, LONG fileType, const std::wstring& fileName,
                           SHORT result) {
  BSTR name = SysAllocString(fileName.c_str());
  const HRESULT answer = Fire(state, kIidFileControlEvents, TargetOf(project), 4,
                              {Object(project), Number(VT_I4, fileType), Text(name), Number(VT_I2, result)});
  SysFreeString(name);
  return answer;
}

std::pair<bool, bool> FireClick(IdeState& state, IDispatch* control) {
  VARIANT_BOOL handled = VARIANT_FALSE;
  VARIANT_BOOL cancel = VARIANT_FALSE;
  (void)Fire(state, kIidControlEvents, TargetOf(control), 1, {Object(control), Flag(&handled), Flag(&cancel)});
  return {handled != VARIANT_FALSE, cancel != VARIANT_FALSE};
}

}  // namespace sentrune::testing::ide
