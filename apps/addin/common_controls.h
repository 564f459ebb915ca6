#pragma once
// Version 6 of the common controls for the add-in's own windows. The IDE's
// process was made for the old controls, and its own windows keep them: the
// add-in's manifest (Sentrune.rc) is made the thread's activation context
// only while a scope of this kind is alive, so that the windows created
// meanwhile get the new look and the list view's and tree view's current
// features. The comctl32 that context names is loaded and initialised here
// too, and image lists come from it, since a list view accepts only image
// lists of its own version.
#include "platform/win32/windows_api.h"
#include <commctrl.h>

namespace sentrune::addin {

class CommonControls {
 public:
  // Activates the context on this thread; without the manifest (or on a
  // system that refuses it) the dialogs still show, with the old controls.
  CommonControls();
  ~CommonControls();
  CommonControls(const CommonControls&) = delete;
  CommonControls& operator=(const CommonControls&) = delete;

  // An image list of that size without images, or nothing when the
  // library has none to give. A list view given it destroys it with itself.
  HIMAGELIST CreateImageList(int width, int height) const;

 private:
  HANDLE context_ = INVALID_HANDLE_VALUE;
  ULONG_PTR cookie_ = 0;
  bool active_ = false;
  HMODULE library_ = nullptr;
};

}  // namespace sentrune::addin
