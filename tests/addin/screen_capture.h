#pragma once
// A window as it shows on the screen, caught into a PNG file through GDI+,
// for pictures of the add-in's dialogs.
#include "platform/win32/windows_api.h"

#include <filesystem>

namespace sentrune::testing::ide {

// GDI+ is up while this lives; its PNG encoder is looked up once.
class ScreenCapture {
 public:
  ScreenCapture();
  ~ScreenCapture();
  ScreenCapture(const ScreenCapture&) = delete;
  ScreenCapture& operator=(const ScreenCapture&) = delete;

  // Has the window (of any thread) paint itself, frame and children
  // included, then copies what it painted into `file` (its close button's
  // cross mended where Wine lacks the font for it). False when GDI+ or its
  // encoder is missing, or the window or file could not be read or written.
  bool Save(HWND window, const std::filesystem::path& file) const;

 private:
  ULONG_PTR token_ = 0;
  CLSID png_{};
  bool ready_ = false;
};

}  // namespace sentrune::testing::ide
