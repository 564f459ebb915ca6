// Sentrune.dll as the system and the IDE use it: a copy of it registered
// through its own export, created by ProgID through COM, connected through
// IDispatch and through the vtables, and unregistered again.
#include "platform/win32/windows_api.h"

#include <gtest/gtest.h>
#include <oleauto.h>

#include <algorithm>
#include <filesystem>
#include <initializer_list>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "extensibility.h"
#include "support/temp_folder.h"

namespace sentrune::addin {
namespace {

namespace fs = std::filesystem;

const wchar_t* const kClsid = L"{E5C3286C-C6E0-4EAD-A24B-2156ECB4EE02}";
const std::wstring kAddins = L"Software\\Microsoft\\Visual Basic\\6.0\\Addins\\";
const IID kExtensibility2 = {0xB65AD801, 0xABAF, 0x11D0, {0xBB, 0x8B, 0x00, 0xA0, 0xC9, 0x0F, 0x27, 0x44}};
const IID kExtensibility = {0x0002E151, 0x0000, 0x0000, {0xC0, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x46}};

std::optional<std::wstring> Text(HKEY root, const std::wstring& key, const wchar_t* name = nullptr) {
  wchar_t text[1024];
  DWORD size = sizeof text;
  if (RegGetValueW(root, key.c_str(), name, RRF_RT_REG_SZ, nullptr, text, &size) != ERROR_SUCCESS) return {};
  return text;
}

std::optional<DWORD> Number(HKEY root, const std::wstring& key, const wchar_t* name) {
  DWORD number = 0;
  DWORD size = sizeof number;
  if (RegGetValueW(root, key.c_str(), name, RRF_RT_REG_DWORD, nullptr, &number, &size) != ERROR_SUCCESS) return {};
  return number;
}

bool KeyExists(HKEY root, const std::wstring& key) {
  HKEY opened = nullptr;
  if (RegOpenKeyExW(root, key.c_str(), 0, KEY_READ, &opened) != ERROR_SUCCESS) return false;
  RegCloseKey(opened);
  return true;
}

bool SamePath(const std::wstring& a, const std::wstring& b) {
  return CompareStringOrdinal(a.c_str(), -1, b.c_str(), -1, TRUE) == CSTR_EQUAL;
}

// Stands for the IDE's VBE object: counts the references the add-in holds.
class FakeApplication : public IDispatch {
 public:
  LONG references = 1;

  HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** object) override {
    *object = IsEqualIID(iid, IID_IUnknown) || IsEqualIID(iid, IID_IDispatch) ? this : nullptr;
    if (*object == nullptr) return E_NOINTERFACE;
    AddRef();
    return S_OK;
  }
  ULONG STDMETHODCALLTYPE AddRef() override { return static_cast<ULONG>(++references); }
  ULONG STDMETHODCALLTYPE Release() override { return static_cast<ULONG>(--references); }
  HRESULT STDMETHODCALLTYPE GetTypeInfoCount(UINT*) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE GetTypeInfo(UINT, LCID, ITypeInfo**) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE GetIDsOfNames(REFIID, LPOLESTR*, UINT, LCID, DISPID*) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE Invoke(DISPID, REFIID, LCID, WORD, DISPPARAMS*, VARIANT*, EXCEPINFO*, UINT*) override {
    return E_NOTIMPL;
  }
};

// A copy of the DLL in a folder of its own, loaded in a single-threaded
// apartment; whatever a case registers is unregistered after it.
class ComServer : public ::testing::Test {
 protected:
  void SetUp() override {
    ASSERT_TRUE(SUCCEEDED(CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED)));
    wchar_t program[MAX_PATH];
    GetModuleFileNameW(nullptr, program, MAX_PATH);
    dll_ = (fs::path(folder_.path()) / "Sentrune.dll").make_preferred();
    fs::copy_file(fs::path(program).parent_path() / "Sentrune.dll", dll_);
    module_ = LoadLibraryW(dll_.c_str());
    ASSERT_NE(module_, nullptr) << GetLastError();
  }
  void TearDown() override {
    if (module_ != nullptr) {
      EXPECT_EQ(Export("DllUnregisterServer"), S_OK);
    }
    CoUninitialize();
    if (module_ != nullptr) FreeLibrary(module_);
  }

  HRESULT Export(const char* name) {
    auto function = reinterpret_cast<HRESULT(STDAPICALLTYPE*)()>(
        reinterpret_cast<void (*)()>(GetProcAddress(module_, name)));
    return function != nullptr ? function() : E_NOTIMPL;
  }
  HRESULT GetClassObject(REFCLSID clsid, REFIID iid, void** object) {
    auto function = reinterpret_cast<HRESULT(STDAPICALLTYPE*)(REFCLSID, REFIID, void**)>(
        reinterpret_cast<void (*)()>(GetProcAddress(module_, "DllGetClassObject")));
    return function(clsid, iid, object);
  }
  // A new object through COM, as the IDE makes it from the registry.
  IDispatch* Create() {
    CLSID clsid;
    IDispatch* object = nullptr;
    if (Export("DllRegisterServer") != S_OK || FAILED(CLSIDFromProgID(L"Sentrune.Connect", &clsid))) return nullptr;
    CoCreateInstance(clsid, nullptr, CLSCTX_INPROC_SERVER, IID_IDispatch, reinterpret_cast<void**>(&object));
    return object;
  }

  testing::TempFolder folder_;
  fs::path dll_;
  HMODULE module_ = nullptr;
};

TEST_F(ComServer, RegistersWhereComAndTheIdeLookAndUnregistersOnlyItsOwn) {
  const std::wstring other = kAddins + L"Other.Connect";
  ASSERT_EQ(RegSetKeyValueW(HKEY_CURRENT_USER, other.c_str(), L"FriendlyName", REG_SZ, L"Other", 12), ERROR_SUCCESS);
  ASSERT_EQ(Export("DllRegisterServer"), S_OK);

  const std::wstring clsidKey = std::wstring(L"CLSID\\") + kClsid;
  EXPECT_EQ(Text(HKEY_CLASSES_ROOT, L"Sentrune.Connect\\CLSID"), kClsid);
  EXPECT_EQ(Text(HKEY_CLASSES_ROOT, clsidKey + L"\\ProgID"), L"Sentrune.Connect");
  const std::wstring server = Text(HKEY_CLASSES_ROOT, clsidKey + L"\\InprocServer32").value_or(L"<missing>");
  EXPECT_TRUE(SamePath(server, dll_.native())) << server;
  EXPECT_EQ(Text(HKEY_CLASSES_ROOT, clsidKey + L"\\InprocServer32", L"ThreadingModel"), L"Apartment");
  const std::wstring ours = kAddins + L"Sentrune.Connect";
  EXPECT_EQ(Text(HKEY_CURRENT_USER, ours, L"FriendlyName"), L"Sentrune - Bindkeeper");
  EXPECT_EQ(Text(HKEY_CURRENT_USER, ours, L"Description"),
            L"Sentrune - Bindkeeper. Stop compatibility problems before they start.");
  EXPECT_EQ(Number(HKEY_CURRENT_USER, ours, L"LoadBehavior"), 1u);
  EXPECT_EQ(Number(HKEY_CURRENT_USER, ours, L"CommandLineSafe"), 0u);

  ASSERT_EQ(Export("DllUnregisterServer"), S_OK);
  EXPECT_FALSE(KeyExists(HKEY_CLASSES_ROOT, L"Sentrune.Connect"));
  EXPECT_FALSE(KeyExists(HKEY_CLASSES_ROOT, clsidKey));
  EXPECT_FALSE(KeyExists(HKEY_CURRENT_USER, ours));
  EXPECT_EQ(Text(HKEY_CURRENT_USER, other, L"FriendlyName"), L"Other");
  RegDeleteTreeW(HKEY_CURRENT_USER, other.c_str());
}

TEST_F(ComServer, OneObjectAnswersBothInterfacesAndKeepsTheDllLoadedWhileItLives) {
  IDispatch* object = Create();
  ASSERT_NE(object, nullptr);
  IUnknown* identity = nullptr;
  ASSERT_EQ(object->QueryInterface(IID_IUnknown, reinterpret_cast<void**>(&identity)), S_OK);
  for (const IID& iid : {kExtensibility2, kExtensibility}) {
    IUnknown* answered = nullptr;
    ASSERT_EQ(object->QueryInterface(iid, reinterpret_cast<void**>(&answered)), S_OK);
    IUnknown* same = nullptr;
    ASSERT_EQ(answered->QueryInterface(IID_IUnknown, reinterpret_cast<void**>(&same)), S_OK);
    EXPECT_EQ(same, identity);
    same->Release();
    answered->Release();
  }
  void* none = nullptr;
  EXPECT_EQ(object->QueryInterface(IID_IClassFactory, &none), E_NOINTERFACE);
  // Made over the platform of the DLL's own folder, not the program's.
  EXPECT_TRUE(fs::exists(dll_.parent_path() / "Sentrune_Log.txt"));
  EXPECT_TRUE(fs::is_directory(dll_.parent_path() / "Logs"));

  EXPECT_EQ(Export("DllCanUnloadNow"), S_FALSE);
  identity->Release();
  object->Release();
  EXPECT_EQ(Export("DllCanUnloadNow"), S_OK);

  // A server lock holds the DLL as an object does; the factory makes only ours.
  CLSID clsid;
  ASSERT_EQ(CLSIDFromString(kClsid, &clsid), S_OK);
  IClassFactory* factory = nullptr;
  EXPECT_EQ(GetClassObject(IID_IDispatch, IID_IClassFactory, reinterpret_cast<void**>(&factory)),
            CLASS_E_CLASSNOTAVAILABLE);
  ASSERT_EQ(GetClassObject(clsid, IID_IClassFactory, reinterpret_cast<void**>(&factory)), S_OK);
  EXPECT_EQ(factory->CreateInstance(factory, IID_IUnknown, &none), CLASS_E_NOAGGREGATION);
  ASSERT_EQ(factory->LockServer(TRUE), S_OK);
  factory->Release();
  EXPECT_EQ(Export("DllCanUnloadNow"), S_FALSE);
  ASSERT_EQ(GetClassObject(clsid, IID_IClassFactory, reinterpret_cast<void**>(&factory)), S_OK);
  ASSERT_EQ(factory->LockServer(FALSE), S_OK);
  factory->Release();
  EXPECT_EQ(Export("DllCanUnloadNow"), S_OK);
}

// A call's arguments in the method's order, held last-first as DISPPARAMS
// wants them. The values are only borrowed.
class Arguments {
 public:
  Arguments(std::initializer_list<VARIANT> inOrder) : values_(inOrder.begin(), inOrder.end()) {
    std::reverse(values_.begin(), values_.end());
  }
  DISPPARAMS params() { return {values_.data(), nullptr, static_cast<UINT>(values_.size()), 0}; }

 private:
  std::vector<VARIANT> values_;
};

VARIANT Object(IDispatch* object) {
  VARIANT value{};
  V_VT(&value) = VT_DISPATCH;
  V_DISPATCH(&value) = object;
  return value;
}

VARIANT Integer(SHORT number) {
  VARIANT value{};
  V_VT(&value) = VT_I2;  // converted to the mode's Long, as VB converts it
  V_I2(&value) = number;
  return value;
}

VARIANT Text(BSTR text) {
  VARIANT value{};
  V_VT(&value) = VT_BSTR;
  V_BSTR(&value) = text;
  return value;
}

VARIANT Custom(SAFEARRAY** array) {
  VARIANT value{};
  V_VT(&value) = VT_ARRAY | VT_VARIANT | VT_BYREF;
  V_ARRAYREF(&value) = array;
  return value;
}

HRESULT Invoke(IDispatch* object, DISPID id, Arguments arguments, EXCEPINFO* exception = nullptr,
               UINT* bad = nullptr) {
  DISPPARAMS params = arguments.params();
  return object->Invoke(id, IID_NULL, 0, DISPATCH_METHOD, &params, nullptr, exception, bad);
}

TEST_F(ComServer, ConnectsThroughIDispatchByNameAndThroughTheVtables) {
  IDispatch* object = Create();
  ASSERT_NE(object, nullptr);
  const std::pair<const wchar_t*, DISPID> names[] = {{L"onconnection", 1}, {L"ONDISCONNECTION", 2},
                                                     {L"OnAddInsUpdate", 3}, {L"OnStartupComplete", 4},
                                                     {L"OnBeginShutdown", 5}, {L"OnConnect", DISPID_UNKNOWN}};
  for (const auto& [name, expected] : names) {
    DISPID id = 0;
    LPOLESTR asked = const_cast<LPOLESTR>(name);
    EXPECT_EQ(object->GetIDsOfNames(IID_NULL, &asked, 1, 0, &id), expected > 0 ? S_OK : DISP_E_UNKNOWNNAME) << name;
    EXPECT_EQ(id, expected) << name;
  }

  FakeApplication application;
  SAFEARRAY* custom = SafeArrayCreateVector(VT_VARIANT, 0, 0);
  EXPECT_EQ(Invoke(object, 1, {Object(&application), Integer(1), Object(nullptr)}), DISP_E_BADPARAMCOUNT);
  EXPECT_EQ(Invoke(object, 6, {Custom(&custom)}), DISP_E_MEMBERNOTFOUND);
  BSTR startup = SysAllocString(L"startup");
  UINT bad = 99;
  EXPECT_EQ(Invoke(object, 1, {Object(&application), Text(startup), Object(nullptr), Custom(&custom)}, nullptr, &bad),
            DISP_E_TYPEMISMATCH);
  EXPECT_EQ(bad, 2u);
  SysFreeString(startup);
  EXPECT_EQ(application.references, 1);

  // Connected: the application is held until the disconnection.
  ASSERT_EQ(Invoke(object, 1, {Object(&application), Integer(1), Object(nullptr), Custom(&custom)}), S_OK);
  EXPECT_EQ(application.references, 2);
  EXPECT_EQ(Invoke(object, 4, {Custom(&custom)}), S_OK);
  EXPECT_EQ(Invoke(object, 2, {Integer(0), Custom(&custom)}), S_OK);
  EXPECT_EQ(application.references, 1);

  // No application: the method's failure comes back as an exception.
  EXCEPINFO exception{};
  EXPECT_EQ(Invoke(object, 1, {VARIANT{}, Integer(1), Object(nullptr), Custom(&custom)}, &exception),
            DISP_E_EXCEPTION);
  EXPECT_EQ(exception.scode, E_INVALIDARG);
  SysFreeString(exception.bstrSource);

  // The older interface's vtable; releasing the object releases the application.
  IDTExtensibility* older = nullptr;
  ASSERT_EQ(object->QueryInterface(kExtensibility, reinterpret_cast<void**>(&older)), S_OK);
  object->Release();
  EXPECT_EQ(older->OnConnection(&application, kStartup, nullptr, &custom), S_OK);
  EXPECT_EQ(older->OnStartupComplete(&custom), S_OK);
  EXPECT_EQ(application.references, 2);
  older->Release();
  EXPECT_EQ(application.references, 1);
  SafeArrayDestroy(custom);
}

}  // namespace
}  // namespace sentrune::addin
