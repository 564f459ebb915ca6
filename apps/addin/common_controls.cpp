#include "common_controls.h"

#include "module.h"

namespace sentrune::addin {
namespace {

using InitControls = BOOL(WINAPI*)(const INITCOMMONCONTROLSEX*);
using CreateList = HIMAGELIST(WINAPI*)(int, int, UINT, int, int);

// A function of the library by name, typed. The cast goes through the
// generic function pointer type that GetProcAddress's result is made for.
template <typename Function>
Function Find(HMODULE library, const char* name) {
  if (library == nullptr) return nullptr;
  return reinterpret_cast<Function>(reinterpret_cast<void (*)()>(GetProcAddress(library, name)));
}

}  // namespace

CommonControls::CommonControls() {
  ACTCTXW manifest{};
  manifest.cbSize = sizeof manifest;
  manifest.dwFlags = ACTCTX_FLAG_HMODULE_VALID | ACTCTX_FLAG_RESOURCE_NAME_VALID;
  manifest.hModule = ThisModule();
  manifest.lpResourceName = MAKEINTRESOURCEW(2);  // ISOLATIONAWARE_MANIFEST_RESOURCE_ID
  context_ = CreateActCtxW(&manifest);
  active_ = context_ != INVALID_HANDLE_VALUE && ActivateActCtx(context_, &cookie_);
  // Loaded under the context, the name is the version 6 library.
  library_ = LoadLibraryW(L"comctl32.dll");
  if (auto init = Find<InitControls>(library_, "InitCommonControlsEx")) {
    const INITCOMMONCONTROLSEX classes{sizeof(INITCOMMONCONTROLSEX),
                                       ICC_STANDARD_CLASSES | ICC_LISTVIEW_CLASSES | ICC_TREEVIEW_CLASSES};
    init(&classes);
  }
}

CommonControls::~CommonControls() {
  if (library_ != nullptr) FreeLibrary(library_);
  if (active_) DeactivateActCtx(0, cookie_);
  if (context_ != INVALID_HANDLE_VALUE) ReleaseActCtx(context_);
}

HIMAGELIST CommonControls::CreateImageList(int width, int height) const {
  auto create = Find<CreateList>(library_, "ImageList_Create");
  return create ? create(width, height, ILC_COLOR32, 0, 1) : nullptr;
}

}  // namespace sentrune::addin
