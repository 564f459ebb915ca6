#pragma once
// The IDE's root object as platform::VBE: its projects, the active project,
// component and window, its command bars and its Events object, and the
// handle of its main window, which owns the add-in's windows.
#include "platform/ide.h"
#include "vbe_dispatch.h"
#include "vbe_events.h"

namespace sentrune::addin {

class VbeWindow : public platform::Window {
 public:
  explicit VbeWindow(ComPtr<IDispatch> window) : window_(std::move(window), "Window") {}
  std::string Caption() const override { return window_.GetText("Caption").value_or(""); }

 private:
  DispatchObject window_;
};

class VbeApplication : public platform::VBE {
 public:
  // `vbe` is the IDE's VBE object as OnConnection hands it over.
  explicit VbeApplication(ComPtr<IDispatch> vbe);

  std::vector<platform::ProjectPtr> VBProjects() override;
  platform::ProjectPtr ActiveVBProject() override;
  platform::ComponentPtr SelectedVBComponent() override;
  std::shared_ptr<platform::Window> ActiveWindow() override;
  std::shared_ptr<platform::CommandBars> CommandBars() override;
  platform::Events& Events() override { return events_; }

  IDispatch* get() const { return vbe_.get(); }
  // MainWindow.HWnd; null when the IDE gives none.
  HWND MainWindowHandle() const;

 private:
  DispatchObject vbe_;
  VbeEvents events_;
};

}  // namespace sentrune::addin
