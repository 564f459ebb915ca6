// The scripted IDE itself, held to the notes' contract: names and DISPIDs,
// collections, connection points and the argument order of its events.
#include "platform/win32/windows_api.h"

#include <gtest/gtest.h>
#include <ocidl.h>
#include <oleauto.h>

#include <filesystem>

#include "platform/win32/win32_text.h"
#include "scripted_ide_events.h"
#include "scripted_ide_fire.h"
#include "scripted_ide_vbe.h"
#include "support/temp_folder.h"

namespace sentrune::testing::ide {
namespace {

DISPID IdOf(IDispatch* object, const wchar_t* name) {
  DISPID id = DISPID_UNKNOWN;
  LPOLESTR asked = const_cast<LPOLESTR>(name);
  object->GetIDsOfNames(IID_NULL, &asked, 1, 0, &id);
  return id;
}

// Property get with arguments in the method's order; the result's object.
IDispatch* Get(IDispatch* object, const wchar_t* name, VARIANT argument = VARIANT{}) {
  DISPPARAMS params{&argument, nullptr, V_VT(&argument) == VT_EMPTY ? 0u : 1u, 0};
  VARIANT result;
  VariantInit(&result);
  if (FAILED(object->Invoke(IdOf(object, name), IID_NULL, 0, DISPATCH_PROPERTYGET | DISPATCH_METHOD, &params,
                            &result, nullptr, nullptr)))
    return nullptr;
  return V_VT(&result) == VT_DISPATCH ? V_DISPATCH(&result) : nullptr;
}

// A file-control sink that cancels every write it is asked about.
class CancellingSink : public IDispatch {
 public:
  int calls = 0;
  bool projectFirst = false;
  HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** object) override {
    const bool ours = IsEqualIID(iid, IID_IUnknown) || IsEqualIID(iid, kIidFileControlEvents);
    *object = ours ? this : nullptr;
    return ours ? S_OK : E_NOINTERFACE;
  }
  ULONG STDMETHODCALLTYPE AddRef() override { return 2; }
  ULONG STDMETHODCALLTYPE Release() override { return 1; }
  HRESULT STDMETHODCALLTYPE GetTypeInfoCount(UINT*) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE GetTypeInfo(UINT, LCID, ITypeInfo**) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE GetIDsOfNames(REFIID, LPOLESTR*, UINT, LCID, DISPID*) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE Invoke(DISPID id, REFIID, LCID, WORD, DISPPARAMS* params, VARIANT*, EXCEPINFO*,
                                   UINT*) override {
    ++calls;
    if (id != 0xB || params->cArgs != 3 || V_VT(&params->rgvarg[0]) != (VT_BYREF | VT_BOOL)) return E_INVALIDARG;
    projectFirst = V_VT(&params->rgvarg[2]) == VT_DISPATCH;
    *V_BOOLREF(&params->rgvarg[0]) = VARIANT_TRUE;
    return S_OK;
  }
};

TEST(ScriptedIde, AnswersAsTheNotesSayAndCountsWhatItHandsOut) {
  ASSERT_TRUE(SUCCEEDED(CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED)));
  {
    TempFolder folder;
    folder.Write("One.vbp", "Type=OleDll\r\nName=\"One\"\r\n");
    ScriptedIde ide;
    ASSERT_TRUE(ide.Open(win32::Narrow(std::filesystem::path(folder / "One.vbp").make_preferred().wstring())).ok());
    IDispatch* vbe = ide.vbe();
    EXPECT_EQ(IdOf(vbe, L"vbprojects"), 0x6B);
    EXPECT_EQ(IdOf(vbe, L"EVENTS"), 0x6F);
    EXPECT_EQ(IdOf(vbe, L"MainWindow"), 0xCC);
    EXPECT_EQ(IdOf(vbe, L"Addin"), DISPID_UNKNOWN);

    IDispatch* projects = Get(vbe, L"VBProjects");
    ASSERT_NE(projects, nullptr);
    VARIANT name;
    V_VT(&name) = VT_BSTR;
    V_BSTR(&name) = SysAllocString(L"one");
    IDispatch* byName = Get(projects, L"Item", name);
    VariantClear(&name);
    VARIANT first;
    V_VT(&first) = VT_I2;
    V_I2(&first) = 1;
    IDispatch* byIndex = Get(projects, L"Item", first);
    ASSERT_TRUE(byName && byIndex);
    EXPECT_EQ(ScriptedObject::From(byName)->Target(), ScriptedObject::From(byIndex)->Target());
    EXPECT_EQ(IdOf(byName, L"CompatibleOleServer"), 0x7E);

    // A sink advised on the project's file events hears RequestWriteFile
    // last argument first, and what it writes back is returned.
    IDispatch* events = Get(vbe, L"Events");
    VARIANT project;
    V_VT(&project) = VT_DISPATCH;
    V_DISPATCH(&project) = byName;
    IDispatch* source = Get(events, L"FileControlEvents", project);
    ASSERT_NE(source, nullptr);
    IConnectionPointContainer* container = nullptr;
    ASSERT_EQ(source->QueryInterface(IID_IConnectionPointContainer, reinterpret_cast<void**>(&container)), S_OK);
    IConnectionPoint* point = nullptr;
    EXPECT_NE(container->FindConnectionPoint(kIidProjectsEvents, &point), S_OK);
    ASSERT_EQ(container->FindConnectionPoint(kIidFileControlEvents, &point), S_OK);
    CancellingSink sink;
    DWORD cookie = 0;
    ASSERT_EQ(point->Advise(&sink, &cookie), S_OK);
    EXPECT_TRUE(FireRequestWriteFile(ide.state(), byIndex, L"One.dll"));
    EXPECT_TRUE(sink.projectFirst);
    EXPECT_EQ(point->Unadvise(cookie), S_OK);
    EXPECT_NE(point->Unadvise(cookie), S_OK);
    EXPECT_FALSE(FireRequestWriteFile(ide.state(), byIndex, L"One.dll"));
    EXPECT_EQ(sink.calls, 1);

    for (IUnknown* object : {static_cast<IUnknown*>(point), static_cast<IUnknown*>(container),
                             static_cast<IUnknown*>(source), static_cast<IUnknown*>(events),
                             static_cast<IUnknown*>(byName), static_cast<IUnknown*>(byIndex),
                             static_cast<IUnknown*>(projects)})
      object->Release();
    EXPECT_EQ(LiveObjects(), 1);
  }
  EXPECT_EQ(LiveObjects(), 0);
  CoUninitialize();
}

}  // namespace
}  // namespace sentrune::testing::ide
