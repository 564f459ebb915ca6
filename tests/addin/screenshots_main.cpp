// Pictures of the add-in's dialogs for its documentation: Sentrune.dll is
// loaded into the scripted IDE on a copy of the Widgets example and used as
// a developer would use it; each dialog is caught into a PNG as it comes up,
// then answered.
//   addin_screenshots OUTPUT_FOLDER
#include "platform/win32/windows_api.h"

#include <shellapi.h>

#include <atomic>
#include <chrono>
#include <cstdio>
#include <filesystem>
#include <memory>
#include <regex>
#include <string>
#include <system_error>
#include <utility>

#include "platform/win32/win32_text.h"
#include "scripted_ide_addin.h"
#include "scripted_ide_boxes.h"
#include "scripted_ide_command_bars.h"
#include "scripted_ide_controls.h"
#include "scripted_ide_fire.h"
#include "scripted_ide_projects.h"
#include "scripted_ide_vbe.h"
#include "screen_capture.h"
#include "support/temp_folder.h"

namespace sentrune::testing::ide {
namespace {

namespace fs = std::filesystem;

// The options of `sentrune demo` (every step of an ActiveX DLL without
// asking, builds copied to "Release\"), except that the release copy is
// asked about first; the installation's diagnostics come up at the
// connection, and time is tracked. A standard EXE's setting marks this as
// not a first run, which would write the start values over these.
std::string Options(const std::string& releaseFolder) {
  std::string settings = "[Settings]\r\nStandard_EXE_CreateBackup=2\r\n";
  for (const char* step : {"CreateBackup", "CompareCompsBefore", "ManageComp", "CompareCompsAfter",
                           "UpdateCompatIfReqd", "CreateSnapshot", "BackupComponents"})
    settings += std::string("ActiveX_DLL_") + step + "=1\r\n";
  return settings + "ActiveX_DLL_CopyComponents=2\r\nActiveX_DLL_ReleaseFolder=" + releaseFolder +
         "\\\r\nBackupFileCount=1\r\nShowDiagnostics=1\r\nTrackHistory=1\r\nTrackTime=1\r\n";
}

// The seconds the elapsed-times view shows for a component; -1 when it is
// not listed.
int SecondsOf(const std::wstring& view, const std::wstring& component) {
  const std::wregex row(component + L"\\s+(\\d+):(\\d\\d):(\\d\\d)");
  std::wsmatch match;
  if (!std::regex_search(view, match, row)) return -1;
  return std::stoi(match[1]) * 3600 + std::stoi(match[2]) * 60 + std::stoi(match[3]);
}

// The developer's own folder, where the pictures show the project: made
// for the run and removed after it; one that was there before is left
// alone, and the run fails.
class Workspace {
 public:
  explicit Workspace(fs::path root) : root_(std::move(root)) {
    std::error_code failed;
    made_ = fs::create_directory(root_, failed);
  }
  // Snapshots are read-only: their files are made writable to be removed.
  ~Workspace() {
    if (!made_) return;
    std::error_code ignored;
    for (const auto& entry : fs::recursive_directory_iterator(root_, ignored))
      SetFileAttributesW(entry.path().c_str(), FILE_ATTRIBUTE_NORMAL);
    fs::remove_all(root_, ignored);
  }
  Workspace(const Workspace&) = delete;
  Workspace& operator=(const Workspace&) = delete;

  bool made() const { return made_; }
  fs::path operator/(const std::string& relative) const { return (root_ / relative).make_preferred(); }

 private:
  fs::path root_;
  bool made_ = false;
};

class Shots {
 public:
  explicit Shots(fs::path output) : output_(std::move(output)) {}

  // Every picture in turn; false when one of them was not written.
  bool Take() {
    if (!Load()) return false;
    ClickAndShoot(L"&Show References", "references.png", IDOK);
    ClickAndShoot(L"Sentrune &Options", "options.png", IDOK);
    // Two builds chosen in turn are compared; one alone is shown.
    developer_.AnswerFile(Path("Widgets/builds/Widgets-1.0.dll"));
    developer_.AnswerFile(Path("Widgets/builds/Widgets-2.0.dll"));
    ClickAndShoot(L"&Inspect Components", "comparison.png", IDOK);
    developer_.AnswerFile(Path("Widgets/builds/Widgets-2.0.dll"));
    developer_.Answer({IDCANCEL});
    ClickAndShoot(L"&Inspect Components", "typelib-tree.png", IDOK);
    // Its help declined.
    ClickAndShoot(L"Abo&ut", "about.png", IDNO);
    Build();
    Track();
    return addin_->Disconnect() == S_OK && !failed_;
  }

 private:
  // The example and the options in a fresh folder; the add-in registered,
  // the IDE started on the example's project, the add-in connected, its
  // diagnostics caught on the way.
  bool Load() {
    if (!workspace_.made()) return Fail("C:\\Projects is there already");
    fs::copy(fs::path(SENTRUNE_SOURCE_DIR) / "examples/Widgets", Path("Widgets"), fs::copy_options::recursive);
    folder_.Write("addin/Sentrune.ini", Options(win32::Narrow(Path("Release").wstring())));
    addin_ = std::make_unique<LoadedAddin>(fs::path(folder_.path()) / "addin");
    ide_ = std::make_unique<ScriptedIde>();
    if (addin_->Register() != S_OK || !addin_->Listed() || addin_->Create() != S_OK) return Fail("registration");
    if (ide_->mainWindow() == nullptr) return Fail("no display for the IDE's main window");
    if (!ide_->Open(win32::Narrow(Path("Widgets/Widgets.vbp").wstring())).ok()) return Fail("opening Widgets.vbp");
    developer_.AnswerWith(Shoot("install-details.png", IDOK));
    if (addin_->Connect(ide_->vbe()) != S_OK) return Fail("connection");
    return Expect("install-details.png");
  }

  // The first build of the project, as the compiler writes it, asks before
  // the release copy.
  void Build() {
    ScriptedObject* project = ide_->Project("Widgets");
    const fs::path buildFile = Path("Widgets/bin/Widgets.dll");
    fs::create_directories(buildFile.parent_path());
    fs::copy_file(Path("Widgets/builds/Widgets-1.0.dll"), buildFile, fs::copy_options::overwrite_existing);
    developer_.AnswerWith(Shoot("file-handler.png", IDYES));
    if (project == nullptr || FireAfterWriteFile(ide_->state(), project, 4, buildFile.wstring(), 0) != S_OK)
      Fail("the build's events");
    if (project != nullptr) project->Release();
    Expect("file-handler.png");
  }

  // Widget is worked on for a few seconds, then Gadget for one: the view
  // is caught once it shows both.
  void Track() {
    const platform::ProjectPtr widgets = ide_->headless().FindProject("Widgets");
    ScriptedObject* project = ide_->Project("Widgets");
    if (!widgets || project == nullptr) {
      Fail("the project for tracking");
      return;
    }
    for (const auto& [name, seconds] : {std::pair{"Widget", 3}, std::pair{"Gadget", 1}}) {
      platform::ComponentPtr component;
      for (const platform::ComponentPtr& each : widgets->VBComponents())
        if (each->Name() == name) component = each;
      if (!component || !ide_->headless().ActivateComponent(component).ok()) {
        Fail(name);
        break;
      }
      ScriptedObject* activated = NewComponent(component);
      FireComponentEvent(ide_->state(), project, 5, activated);
      activated->Release();
      if (!WaitForElapsed(win32::Widen(name), seconds, seconds == 1)) break;
    }
    project->Release();
    Expect("elapsed-times.png");
  }

  // Opens the elapsed-times view while the IDE's loop runs (the add-in's
  // timer counts from it) until the component has that many seconds; the
  // view that shows them is caught when `shoot` is set.
  bool WaitForElapsed(const std::wstring& component, int seconds, bool shoot) {
    const BoxAnswerer::Act shot = Shoot("elapsed-times.png", IDOK);
    std::atomic<bool> done = false;
    const auto deadline = std::chrono::steady_clock::now() + std::chrono::minutes(1);
    while (!done && std::chrono::steady_clock::now() < deadline) {
      MsgWaitForMultipleObjects(0, nullptr, FALSE, 200, QS_ALLINPUT);
      MSG message;
      while (PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE)) DispatchMessageW(&message);
      developer_.AnswerWith([&](HWND box) {
        if (SecondsOf(ContentOf(box), component) < seconds) return IDOK;
        done = true;
        return shoot ? shot(box) : IDOK;
      });
      if (!Click(L"Show &Elapsed Times")) return false;
    }
    return done || Fail("no elapsed time for " + win32::Narrow(component));
  }

  // Catches the box into the output folder, then presses the button.
  BoxAnswerer::Act Shoot(const std::string& name, int button) {
    const fs::path file = output_ / name;
    std::error_code ignored;
    fs::remove(file, ignored);
    return [this, file, button](HWND box) {
      if (capture_.Save(box, file))
        fprintf(stderr, "%s: %s\n", file.filename().string().c_str(), win32::Narrow(TextOf(box)).c_str());
      return button;
    };
  }

  void ClickAndShoot(const std::wstring& caption, const std::string& name, int button) {
    developer_.AnswerWith(Shoot(name, button));
    if (Click(caption)) Expect(name);
  }

  // Clicks the menu item of that caption (its "&" included), as the IDE
  // raises the click.
  bool Click(const std::wstring& caption) {
    for (const auto& control : ide_->state().added) {
      if (control->deleted || control->caption != caption) continue;
      ScriptedObject* item = NewControl(ide_->state_ptr(), control);
      FireClick(ide_->state(), item);
      item->Release();
      return true;
    }
    return Fail("no menu item " + win32::Narrow(caption));
  }

  fs::path Path(const std::string& relative) const { return workspace_ / relative; }
  bool Expect(const std::string& name) { return fs::exists(output_ / name) || Fail(name + " was not written"); }
  bool Fail(const std::string& what) {
    fprintf(stderr, "addin_screenshots: %s\n", what.c_str());
    failed_ = true;
    return false;
  }

  fs::path output_;
  ScreenCapture capture_;
  // The add-in's copy, out of the pictures.
  TempFolder folder_;
  Workspace workspace_{"C:\\Projects"};
  // Answers every box, so that none waits for ever.
  BoxAnswerer developer_;
  // Let go of before the IDE, as the IDE lets go of it.
  std::unique_ptr<ScriptedIde> ide_;
  std::unique_ptr<LoadedAddin> addin_;
  bool failed_ = false;
};

}  // namespace
}  // namespace sentrune::testing::ide

int main() {
  int count = 0;
  LPWSTR* arguments = CommandLineToArgvW(GetCommandLineW(), &count);
  if (arguments == nullptr || count != 2) {
    fprintf(stderr, "usage: addin_screenshots OUTPUT_FOLDER\n");
    return 2;
  }
  const std::filesystem::path output = arguments[1];
  LocalFree(arguments);
  std::filesystem::create_directories(output);
  if (FAILED(CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED))) return 1;
  bool taken = false;
  {
    sentrune::testing::ide::Shots shots(output);
    taken = shots.Take();
  }
  CoUninitialize();
  return taken ? 0 : 1;
}
