#pragma once
// The base of every object the scripted IDE hands out: IDispatch by a table
// of names (matched without regard to case) and DISPIDs, the interfaces it
// answers, and a count of the objects alive, so that a scenario can check
// that the add-in released everything it was given.
#include "platform/win32/windows_api.h"

#include <oaidl.h>

#include <optional>
#include <string>
#include <vector>

namespace sentrune::testing::ide {

// Objects of the scripted IDE alive right now.
LONG LiveObjects();

struct Member {
  const wchar_t* name;
  DISPID id;
};

// A member call's arguments in the method's order (DISPPARAMS holds them
// last-first); a property put's value comes last.
using Args = std::vector<VARIANT*>;

class ScriptedObject : public IDispatch {
 public:
  // Starts with one reference, the one handed out.
  ScriptedObject(std::vector<Member> members, std::vector<IID> iids);
  virtual ~ScriptedObject();
  ScriptedObject(const ScriptedObject&) = delete;
  ScriptedObject& operator=(const ScriptedObject&) = delete;

  LONG references() const { return references_; }
  // What events raised for this object are keyed by (a project, a control).
  virtual const void* Target() const { return this; }
  // The scripted object behind an IDispatch of this IDE, or null.
  static ScriptedObject* From(IUnknown* object);

  HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** object) override;
  ULONG STDMETHODCALLTYPE AddRef() override;
  ULONG STDMETHODCALLTYPE Release() override;
  HRESULT STDMETHODCALLTYPE GetTypeInfoCount(UINT* count) override;
  HRESULT STDMETHODCALLTYPE GetTypeInfo(UINT, LCID, ITypeInfo** info) override;
  HRESULT STDMETHODCALLTYPE GetIDsOfNames(REFIID, LPOLESTR* names, UINT count, LCID, DISPID* ids) override;
  HRESULT STDMETHODCALLTYPE Invoke(DISPID id, REFIID, LCID, WORD flags, DISPPARAMS* params, VARIANT* result,
                                   EXCEPINFO*, UINT*) override;

 protected:
  // DISP_E_MEMBERNOTFOUND for a member the object does not have.
  virtual HRESULT Call(DISPID id, WORD flags, const Args& args, VARIANT* result) = 0;
  // Further interfaces (already AddRef'd), or null.
  virtual void* Interface(REFIID) { return nullptr; }

 private:
  std::vector<Member> members_;
  std::vector<IID> iids_;
  LONG references_ = 1;
};

// An object with no members of its own that stands for another interface
// (IConnectionPoint, IEnumVARIANT ...), answered for `extraIid`, whose
// IUnknown is the scripted object's.
template <typename Extra>
class ScriptedWith : public ScriptedObject, public Extra {
 public:
  explicit ScriptedWith(const IID& extraIid) : ScriptedObject({}, {}), extraIid_(extraIid) {}

  HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** object) override {
    return ScriptedObject::QueryInterface(iid, object);
  }
  ULONG STDMETHODCALLTYPE AddRef() override { return ScriptedObject::AddRef(); }
  ULONG STDMETHODCALLTYPE Release() override { return ScriptedObject::Release(); }

 protected:
  HRESULT Call(DISPID, WORD, const Args&, VARIANT*) override { return DISP_E_MEMBERNOTFOUND; }
  void* Interface(REFIID iid) override {
    if (!IsEqualIID(iid, extraIid_)) return nullptr;
    AddRef();
    return static_cast<Extra*>(this);
  }

 private:
  IID extraIid_;
};

// Argument conversions as VB makes them; nothing when the argument is
// missing or does not convert.
std::optional<std::wstring> TextArg(const Args& args, size_t index);
std::optional<LONG> LongArg(const Args& args, size_t index);
std::optional<bool> BoolArg(const Args& args, size_t index);
// The scripted object an object argument stands for, or null.
ScriptedObject* ObjectArg(const Args& args, size_t index);

// Results: `object` gives its reference to the caller (null is Nothing).
HRESULT ReturnObject(VARIANT* result, ScriptedObject* object);
HRESULT ReturnText(VARIANT* result, const std::wstring& text);
HRESULT ReturnLong(VARIANT* result, LONG number);
HRESULT ReturnBool(VARIANT* result, bool value);

bool IsGet(WORD flags);
bool IsPut(WORD flags);

}  // namespace sentrune::testing::ide
