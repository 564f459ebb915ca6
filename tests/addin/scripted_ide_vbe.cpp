#include "scripted_ide_vbe.h"

#include <utility>

#include "platform/win32/win32_text.h"
#include "scripted_ide_command_bars.h"
#include "scripted_ide_events.h"
#include "scripted_ide_projects.h"

namespace sentrune::testing::ide {
namespace {

const IID kIidVBE = {0x0002E100, 0, 0, {0xC0, 0, 0, 0, 0, 0, 0, 0x46}};

enum : DISPID {
  kName = 0,
  kVersion = 0x64,
  kVBProjects = 0x6B,
  kCommandBars = 0x6C,
  kEvents = 0x6F,
  kActiveVBProject = 0xC9,
  kSelectedVBComponent = 0xCA,
  kActiveWindow = 0xCB,
  kMainWindow = 0xCC,
  kHWnd = 0x60020010,
};

const wchar_t kCaption[] = L"Microsoft Visual Basic [design]";

// The main window, or a code window of the IDE, which has no handle of
// its own here (HWnd 0).
class Window : public ScriptedObject {
 public:
  Window(std::wstring caption, HWND window)
      : ScriptedObject({{L"Caption", kName}, {L"HWnd", kHWnd}}, {}), caption_(std::move(caption)), window_(window) {}

 private:
  HRESULT Call(DISPID id, WORD, const Args&, VARIANT* result) override {
    if (id == kName) return ReturnText(result, caption_.c_str());
    // A handle fits a Long on either Windows, as the IDE's HWnd is one.
    if (id == kHWnd) return ReturnLong(result, static_cast<LONG>(reinterpret_cast<LONG_PTR>(window_)));
    return DISP_E_MEMBERNOTFOUND;
  }

  std::wstring caption_;
  HWND window_;
};

ScriptedObject* NewWindow(const std::shared_ptr<platform::Window>& window) {
  return window ? new Window(win32::Widen(window->Caption()), nullptr) : nullptr;
}

class Vbe : public ScriptedObject {
 public:
  Vbe(std::shared_ptr<IdeState> state, HWND window)
      : ScriptedObject({{L"Name", kName},
                        {L"Version", kVersion},
                        {L"VBProjects", kVBProjects},
                        {L"CommandBars", kCommandBars},
                        {L"Events", kEvents},
                        {L"ActiveVBProject", kActiveVBProject},
                        {L"SelectedVBComponent", kSelectedVBComponent},
                        {L"ActiveWindow", kActiveWindow},
                        {L"MainWindow", kMainWindow}},
                       {kIidVBE}),
        state_(std::move(state)),
        window_(window) {}

 private:
  HRESULT Call(DISPID id, WORD, const Args&, VARIANT* result) override {
    switch (id) {
      case kName: return ReturnText(result, L"Microsoft Visual Basic");
      case kVersion: return ReturnText(result, L"6.00");
      case kVBProjects: return ReturnObject(result, NewProjects(state_));
      case kCommandBars: return ReturnObject(result, NewCommandBars(state_));
      case kEvents: return ReturnObject(result, NewEvents(state_));
      case kActiveVBProject: return ReturnObject(result, NewProject(state_->projects->ActiveVBProject()));
      case kSelectedVBComponent: return ReturnObject(result, NewComponent(state_->projects->SelectedVBComponent()));
      case kActiveWindow: return ReturnObject(result, NewWindow(state_->projects->ActiveWindow()));
      case kMainWindow: return ReturnObject(result, new Window(kCaption, window_));
      default: return DISP_E_MEMBERNOTFOUND;
    }
  }

  std::shared_ptr<IdeState> state_;
  HWND window_;
};

}  // namespace

ScriptedIde::ScriptedIde(bool withAddInsBar)
    : headless_(std::make_shared<headless::HeadlessIde>(files_)), state_(std::make_shared<IdeState>()) {
  state_->projects = headless_;
  if (withAddInsBar) state_->bars.push_back({L"Add-Ins", {}});
  state_->bars.push_back({L"Standard", {}});
  window_ = CreateWindowExW(0, L"STATIC", kCaption, WS_OVERLAPPEDWINDOW, CW_USEDEFAULT, CW_USEDEFAULT, 640, 480,
                            nullptr, nullptr, GetModuleHandleW(nullptr), nullptr);
  vbe_ = new Vbe(state_, window_);
}

ScriptedIde::~ScriptedIde() {
  vbe_->Release();
  for (SinkRecord& sink : state_->sinks) {
    if (sink.sink != nullptr) std::exchange(sink.sink, nullptr)->Release();
  }
  if (window_ != nullptr) DestroyWindow(window_);
}

rt::Status ScriptedIde::Open(const std::string& path) {
  rt::Result<headless::HeadlessIde::OpenResult> opened = headless_->Open(path);
  if (!opened.ok()) return opened.error();
  return rt::Status::Ok();
}

ScriptedObject* ScriptedIde::Project(const std::string& name) { return NewProject(headless_->FindProject(name)); }

std::vector<std::shared_ptr<ControlRecord>> ScriptedIde::AddInsControls() const {
  std::vector<std::shared_ptr<ControlRecord>> present;
  for (const BarRecord& bar : state_->bars) {
    if (bar.name != L"Add-Ins") continue;
    for (const auto& control : bar.controls) {
      if (!control->deleted) present.push_back(control);
    }
  }
  return present;
}

}  // namespace sentrune::testing::ide
