#include "scripted_ide_addin.h"

#include <oleauto.h>

namespace sentrune::testing::ide {
namespace {

namespace fs = std::filesystem;

const wchar_t kAddinKey[] = L"Software\\Microsoft\\Visual Basic\\6.0\\Addins\\Sentrune.Connect";
const IID kIidExtensibility2 = {0xB65AD801, 0xABAF, 0x11D0, {0xBB, 0x8B, 0x00, 0xA0, 0xC9, 0x0F, 0x27, 0x44}};

}  // namespace

LoadedAddin::LoadedAddin(const fs::path& folder) : custom_(SafeArrayCreateVector(VT_VARIANT, 0, 0)) {
  wchar_t program[MAX_PATH];
  GetModuleFileNameW(nullptr, program, MAX_PATH);
  dll_ = (folder / "Sentrune.dll").make_preferred();
  // Installed with the templates it adds to projects, as the build leaves it.
  for (const char* file : {"Sentrune.dll", "VerifyClassTemplate.txt", "AlignmentHelper.ctl"})
    fs::copy_file(fs::path(program).parent_path() / file, folder / file);
  // Held for the exports; COM's own load of the same file shares it.
  module_ = LoadLibraryW(dll_.c_str());
}

LoadedAddin::~LoadedAddin() {
  Release();
  (void)Export("DllUnregisterServer");
  SafeArrayDestroy(custom_);
  // COM keeps its own load of the DLL until CoUninitialize.
  if (module_ != nullptr) FreeLibrary(module_);
}

HRESULT LoadedAddin::Register() { return Export("DllRegisterServer"); }

bool LoadedAddin::Listed() const {
  wchar_t name[256];
  DWORD size = sizeof name;
  return RegGetValueW(HKEY_CURRENT_USER, kAddinKey, L"FriendlyName", RRF_RT_REG_SZ, nullptr, name, &size) ==
         ERROR_SUCCESS;
}

HRESULT LoadedAddin::Create() {
  CLSID clsid;
  HRESULT answer = CLSIDFromProgID(L"Sentrune.Connect", &clsid);
  IUnknown* object = nullptr;
  if (SUCCEEDED(answer))
    answer = CoCreateInstance(clsid, nullptr, CLSCTX_INPROC_SERVER, IID_IUnknown, reinterpret_cast<void**>(&object));
  if (FAILED(answer)) return answer;
  answer = object->QueryInterface(kIidExtensibility2, reinterpret_cast<void**>(&addin_));
  object->Release();
  return answer;
}

HRESULT LoadedAddin::Connect(IDispatch* vbe) {
  if (addin_ == nullptr) return E_POINTER;
  const HRESULT answer = addin_->OnConnection(vbe, addin::kAfterStartup, nullptr, &custom_);
  return FAILED(answer) ? answer : addin_->OnStartupComplete(&custom_);
}

HRESULT LoadedAddin::Disconnect() {
  if (addin_ == nullptr) return E_POINTER;
  const HRESULT answer = addin_->OnBeginShutdown(&custom_);
  const HRESULT disconnected = addin_->OnDisconnection(addin::kUserClosed, &custom_);
  return FAILED(answer) ? answer : disconnected;
}

void LoadedAddin::Release() {
  if (addin_ != nullptr) addin_->Release();
  addin_ = nullptr;
}

HRESULT LoadedAddin::CanUnloadNow() const { return Export("DllCanUnloadNow"); }

HRESULT LoadedAddin::Export(const char* name) const {
  if (module_ == nullptr) return E_HANDLE;
  auto function = reinterpret_cast<HRESULT(STDAPICALLTYPE*)()>(
      reinterpret_cast<void (*)()>(GetProcAddress(module_, name)));
  return function != nullptr ? function() : E_NOTIMPL;
}

}  // namespace sentrune::testing::ide
