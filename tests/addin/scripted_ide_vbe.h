#pragma once
// The scripted IDE: the VBE object an add-in is connected to, its
// command bars (an "Add-Ins" bar unless left out), its events, a hidden
// main window to own message boxes, and its projects, opened by the
// scenario from real .vbp files through the headless IDE.
//
// Wine without a display makes no windows: the main window is then null
// (HWnd 0) and a message box fails at once instead of waiting for an
// answer. The tests run under a virtual display for that; the scenarios
// that do not answer boxes still set options that ask nothing.
//
// Assumed where the notes are silent: VBE.Name is "Microsoft Visual Basic"
// and Version "6.00"; MainWindow is a Window with HWnd (0x60020010, a Long)
// and Caption (0); ActiveWindow (0xCB) is such a Window, for the headless
// IDE's active window, with HWnd 0.
#include <memory>
#include <string>

#include "platform/headless/headless_ide.h"
#include "platform/win32/win32_file_system.h"
#include "scripted_ide_object.h"
#include "scripted_ide_state.h"

namespace sentrune::testing::ide {

class ScriptedIde {
 public:
  explicit ScriptedIde(bool withAddInsBar = true);
  ~ScriptedIde();
  ScriptedIde(const ScriptedIde&) = delete;
  ScriptedIde& operator=(const ScriptedIde&) = delete;

  // The VBE, held by the IDE itself: one reference is the IDE's.
  ScriptedObject* vbe() const { return vbe_; }
  IdeState& state() const { return *state_; }
  const std::shared_ptr<IdeState>& state_ptr() const { return state_; }
  headless::HeadlessIde& headless() const { return *headless_; }
  HWND mainWindow() const { return window_; }

  // Opens a .vbp by full Windows path; fails as the headless IDE fails.
  rt::Status Open(const std::string& path);
  // A new view of an open project, found by name, or null.
  ScriptedObject* Project(const std::string& name);
  // The controls on the "Add-Ins" bar that were not deleted.
  std::vector<std::shared_ptr<ControlRecord>> AddInsControls() const;

 private:
  win32::Win32FileSystem files_;
  std::shared_ptr<headless::HeadlessIde> headless_;
  std::shared_ptr<IdeState> state_;
  HWND window_ = nullptr;
  ScriptedObject* vbe_ = nullptr;
};

}  // namespace sentrune::testing::ide
