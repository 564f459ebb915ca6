// Sentrune.dll in the scripted IDE: registered, created and connected as
// the IDE does it, then driven only through the IDE's object model and
// events, as a developer's session in VB6 would drive it.
#include "platform/win32/windows_api.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <cwchar>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <memory>
#include <optional>
#include <regex>
#include <string>
#include <utility>
#include <vector>

#include "host/addin_menu.h"
#include "platform/win32/win32_text.h"
#include "scripted_ide_command_bars.h"
#include "scripted_ide_events.h"
#include "scripted_ide_fire.h"
#include "scripted_ide_projects.h"
#include "scripted_ide_session.h"

namespace sentrune::testing::ide {
namespace {

std::vector<std::wstring> Captions(const std::vector<std::shared_ptr<ControlRecord>>& controls) {
  std::vector<std::wstring> captions;
  for (const auto& control : controls) {
    if (!control->deleted) captions.push_back(control->caption);
  }
  return captions;
}

TEST_F(Session, ConnectsAndPutsItsMenuOnTheAddInsBar) {
  WriteOptions("Standard_EXE_CreateBackup=2\r\nVerifyClass=cCheck\r\nAlignControl=Aligner\r\nTrackTime=0\r\n");
  ASSERT_NO_FATAL_FAILURE(Start());
  const auto bar = ide_->AddInsControls();
  ASSERT_EQ(bar.size(), 1u);
  const std::shared_ptr<ControlRecord> top = bar[0];
  EXPECT_EQ(top->type, 10);
  EXPECT_EQ(top->caption, L"&Sentrune");
  EXPECT_TRUE(top->beginGroup);

  // The items as the menu model lists them for these options (no
  // magnifier here), the utilities in their own pop-up.
  std::vector<std::wstring> items, utilities;
  std::vector<bool> groups, utilityGroups;
  for (const MenuEntry& entry : MenuEntries("cCheck", "Aligner", false)) {
    (entry.inUtilities ? utilities : items).push_back(win32::Widen(entry.caption));
    (entry.inUtilities ? utilityGroups : groups).push_back(entry.beginGroup);
  }
  ASSERT_EQ(Captions(top->controls), items);
  std::shared_ptr<ControlRecord> elapsed, utilitiesPopup;
  for (size_t i = 0; i < items.size(); ++i) {
    EXPECT_EQ(top->controls[i]->beginGroup, groups[i]) << i;
    if (top->controls[i]->type == 10) utilitiesPopup = top->controls[i];
    if (top->controls[i]->caption == L"Show &Elapsed Times") elapsed = top->controls[i];
  }
  ASSERT_TRUE(utilitiesPopup && elapsed);
  ASSERT_EQ(Captions(utilitiesPopup->controls), utilities);
  for (size_t i = 0; i < utilities.size(); ++i) EXPECT_EQ(utilitiesPopup->controls[i]->beginGroup, utilityGroups[i]);

  // Every control but the utilities pop-up, which only opens, hears its
  // clicks; opening the menu refreshes it from the options.
  for (const auto& control : ide_->state().added)
    EXPECT_EQ(AdvisedSinks(ide_->state(), kIidControlEvents, control.get()), control == utilitiesPopup ? 0u : 1u)
        << std::wstring(control->caption);
  EXPECT_TRUE(elapsed->enabled);
  ScriptedObject* menu = NewControl(ide_->state_ptr(), top);
  EXPECT_EQ(FireClick(ide_->state(), menu), std::make_pair(true, false));
  menu->Release();
  EXPECT_FALSE(elapsed->enabled);
  EXPECT_EQ(addin_->Disconnect(), S_OK);
}

TEST_F(Session, FollowsProjectsAndDisconnectsLeavingNothingBehind) {
  folder_.Write("One.vbp", "Type=OleDll\r\nName=\"One\"\r\nExeName32=\"One.dll\"\r\n");
  folder_.Write("Two.vbp", "Type=OleDll\r\nName=\"Two\"\r\nExeName32=\"Two.dll\"\r\n");
  ide_ = std::make_unique<ScriptedIde>();
  ASSERT_TRUE(ide_->Open(WindowsPath("One.vbp")).ok());
  ASSERT_NO_FATAL_FAILURE(Start());
  EXPECT_EQ(AdvisedSinks(ide_->state(), kIidProjectsEvents, nullptr), 1u);

  // The project open at the connection and one opened after it, which the
  // add-in hears of, both have their builds followed.
  ASSERT_TRUE(ide_->Open(WindowsPath("Two.vbp")).ok());
  ScriptedObject* two = ide_->Project("Two");
  ASSERT_NE(two, nullptr);
  EXPECT_EQ(FireProjectAdded(ide_->state(), two), S_OK);
  for (const char* name : {"One", "Two"}) {
    const platform::ProjectPtr project = ide_->headless().FindProject(name);
    EXPECT_EQ(AdvisedSinks(ide_->state(), kIidFileControlEvents, project.get()), 1u) << name;
  }

  // Renamed, Two's events are heard again under the new name; removed, One's
  // are no longer.
  const platform::ProjectPtr renamed = ide_->headless().FindProject("Two");
  ASSERT_TRUE(ide_->headless().RenameProject(renamed, "Three").ok());
  EXPECT_EQ(FireProjectRenamed(ide_->state(), two, L"Two"), S_OK);
  EXPECT_EQ(AdvisedSinks(ide_->state(), kIidFileControlEvents, renamed.get()), 1u);
  EXPECT_EQ(std::count_if(ide_->state().sinks.begin(), ide_->state().sinks.end(),
                          [&](const SinkRecord& sink) { return sink.target == renamed.get(); }),
            4)
      << "file and component events, each advised again";
  two->Release();
  const platform::ProjectPtr removed = ide_->headless().FindProject("One");
  ScriptedObject* one = ide_->Project("One");
  EXPECT_EQ(FireProjectRemoved(ide_->state(), one), S_OK);
  one->Release();
  ASSERT_TRUE(ide_->headless().Close(removed).ok());
  EXPECT_EQ(AdvisedSinks(ide_->state(), kIidFileControlEvents, removed.get()), 0u);
  EXPECT_EQ(AdvisedSinks(ide_->state(), kIidComponentsEvents, removed.get()), 0u);
  ASSERT_FALSE(ide_->AddInsControls().empty());

  EXPECT_EQ(addin_->Disconnect(), S_OK);
  EXPECT_TRUE(ide_->AddInsControls().empty());
  ExpectAllReleased();
  EXPECT_EQ(addin_->CanUnloadNow(), S_FALSE);
  addin_->Release();
  EXPECT_EQ(addin_->CanUnloadNow(), S_OK);
}

TEST_F(Session, StaysLoadedInAFailingIde) {
  // No "Add-Ins" bar: the add-in connects without a menu.
  CopyWidgetsAskingNothing();
  ide_ = std::make_unique<ScriptedIde>(false);
  ASSERT_TRUE(ide_->Open(WindowsPath("Widgets/Widgets.vbp")).ok());
  ASSERT_NO_FATAL_FAILURE(Start());
  EXPECT_TRUE(ide_->state().added.empty());

  // The IDE forgets the Unadvise calls and raises a first build's events
  // after the disconnection: the add-in answers them without an error and
  // without setting up a model.
  std::vector<SinkRecord> forgotten;
  for (const SinkRecord& sink : ide_->state().sinks) {
    if (sink.sink == nullptr) continue;
    sink.sink->AddRef();
    forgotten.push_back(sink);
  }
  ASSERT_FALSE(forgotten.empty());
  EXPECT_EQ(addin_->Disconnect(), S_OK);
  ExpectAllReleased();
  ide_->state().sinks.insert(ide_->state().sinks.end(), forgotten.begin(), forgotten.end());
  ScriptedObject* widgets = ide_->Project("Widgets");
  ASSERT_NE(widgets, nullptr);
  const fs::path buildFile = fs::path(WindowsPath("Widgets/bin/Widgets.dll"));
  fs::create_directories(buildFile.parent_path());
  ASSERT_TRUE(CopyFileW(fs::path(WindowsPath("Widgets/builds/Widgets-1.0.dll")).c_str(), buildFile.c_str(), FALSE));
  EXPECT_EQ(FireAfterWriteFile(ide_->state(), widgets, 4, buildFile.wstring(), 0), S_OK);
  widgets->Release();
  for (SinkRecord& sink : ide_->state().sinks) {
    if (sink.sink != nullptr) std::exchange(sink.sink, nullptr)->Release();
  }
  EXPECT_EQ(ide_->headless().FindProject("Widgets")->CompatibleOleServer(), "");
  EXPECT_FALSE(fs::exists(buildFile.parent_path() / "Compat"));

  // And it connects again afterwards.
  EXPECT_EQ(addin_->Connect(ide_->vbe()), S_OK);
  EXPECT_EQ(addin_->Disconnect(), S_OK);
  ExpectAllReleased();
}

// The three builds of the Widgets example, as `sentrune demo` tells them,
// played by the IDE's file events: the compiler's write is a copy of the
// stored build over the project's build file, each dated ten seconds after
// the one before, since backups and models are named after that time.
class Builds : public Session {
 protected:
  struct Build {
    const char* file;
    std::wstring stamp;  // the build file's local time as the add-in names files after it
  };

  void SetUp() override {
    ASSERT_NO_FATAL_FAILURE(Session::SetUp());
    CopyWidgetsAskingNothing();
  }

  // Writes the build file as the compiler does, between the IDE's events.
  void Play(IDispatch* project, const fs::path& buildFile, Build& build, const FILETIME& time) {
    if (fs::exists(buildFile)) {
      EXPECT_FALSE(FireRequestWriteFile(ide_->state(), project, buildFile.wstring())) << build.file;
    }
    fs::create_directories(buildFile.parent_path());
    const fs::path stored = (fs::path(folder_.path()) / "Widgets/builds" / build.file).make_preferred();
    ASSERT_TRUE(CopyFileW(stored.c_str(), buildFile.c_str(), FALSE)) << GetLastError();
    HANDLE file = CreateFileW(buildFile.c_str(), FILE_WRITE_ATTRIBUTES, 0, nullptr, OPEN_EXISTING, 0, nullptr);
    ASSERT_NE(file, INVALID_HANDLE_VALUE);
    EXPECT_TRUE(SetFileTime(file, nullptr, nullptr, &time));
    CloseHandle(file);
    build.stamp = Stamp(time);
    EXPECT_EQ(FireAfterWriteFile(ide_->state(), project, 4, buildFile.wstring(), 0), S_OK) << build.file;
  }

  static std::wstring Stamp(const FILETIME& time) {
    FILETIME local;
    SYSTEMTIME t;
    FileTimeToLocalFileTime(&time, &local);
    FileTimeToSystemTime(&local, &t);
    wchar_t text[32];
    swprintf(text, 32, L"%04u.%02u.%02u-%02u.%02u.%02u", t.wYear, t.wMonth, t.wDay, t.wHour, t.wMinute, t.wSecond);
    return text;
  }

  static std::vector<std::wstring> Files(const fs::path& folder) {
    std::vector<std::wstring> names;
    for (const auto& entry : fs::directory_iterator(folder)) {
      if (entry.is_regular_file()) names.push_back(entry.path().filename().wstring());
    }
    std::sort(names.begin(), names.end());
    return names;
  }
  static std::string Bytes(const fs::path& file) {
    std::ifstream in(file, std::ios::binary);
    return {std::istreambuf_iterator<char>(in), {}};
  }
};

TEST_F(Builds, BacksUpComparesRepointsAndReleasesEachBuild) {
  ide_ = std::make_unique<ScriptedIde>();
  const fs::path widgets = (fs::path(folder_.path()) / "Widgets").make_preferred();
  ASSERT_TRUE(ide_->Open(WindowsPath("Widgets/Widgets.vbp")).ok());
  ASSERT_NO_FATAL_FAILURE(Start());

  ScriptedObject* project = ide_->Project("Widgets");
  ASSERT_NE(project, nullptr);
  const fs::path buildFile = widgets / "bin" / "Widgets.dll";
  // A whole second, a minute ago, so that every stamp is in the past.
  FILETIME time;
  GetSystemTimeAsFileTime(&time);
  ULARGE_INTEGER ticks{{time.dwLowDateTime, time.dwHighDateTime}};
  constexpr ULONGLONG kSecond = 10'000'000;
  ticks.QuadPart = ticks.QuadPart / kSecond * kSecond - 60 * kSecond;
  Build builds[] = {{"Widgets-1.0.dll", {}}, {"Widgets-1.1.dll", {}}, {"Widgets-2.0.dll", {}}};
  for (Build& build : builds) {
    time = {ticks.LowPart, ticks.HighPart};
    ASSERT_NO_FATAL_FAILURE(Play(project, buildFile, build, time));
    ticks.QuadPart += 10 * kSecond;
    // The IDE saves the project the add-in repointed.
    const platform::ProjectPtr saved = ide_->headless().FindProject("Widgets");
    ASSERT_TRUE(saved->Save().ok());
  }
  project->Release();

  // A model dated after each build, the last one the project's; one backup
  // of the build before the last, beside the build and in the release folder.
  const std::wstring model = L"Widgets-" + builds[2].stamp + L".dll";
  EXPECT_EQ(Files(widgets / "bin/Compat"), (std::vector<std::wstring>{L"Widgets-" + builds[0].stamp + L".dll",
                                                                      L"Widgets-" + builds[1].stamp + L".dll", model}));
  const std::string vbp = Bytes(widgets / "Widgets.vbp");
  EXPECT_NE(vbp.find("CompatibleMode=\"2\""), std::string::npos) << vbp;
  EXPECT_NE(vbp.find("CompatibleEXE32=\"bin\\Compat\\" + win32::Narrow(model) + "\""), std::string::npos) << vbp;
  EXPECT_EQ(Bytes(widgets / "bin/Compat" / model), Bytes(widgets / "builds/Widgets-2.0.dll"));
  const std::vector<std::wstring> backup = {L"Widgets-" + builds[1].stamp + L".dll"};
  EXPECT_EQ(Files(widgets / "bin/History"), backup);
  EXPECT_EQ(Files(fs::path(folder_.path()) / "Release/History"), backup);
  EXPECT_EQ(Bytes(fs::path(folder_.path()) / "Release/Widgets.dll"), Bytes(widgets / "builds/Widgets-2.0.dll"));
  // Snapshots are named after the clock, not the build: builds within a
  // second share one, so only their being there is checked.
  size_t snapshots = 0;
  for (const auto& entry : fs::directory_iterator(widgets)) {
    const std::wstring name = entry.path().filename().wstring();
    if (entry.is_directory() && name.starts_with(L"Widgets ")) {
      ++snapshots;
      EXPECT_TRUE(fs::exists(entry.path() / "Widgets.vbp")) << entry.path();
    }
  }
  EXPECT_GE(snapshots, 1u);

  EXPECT_EQ(addin_->Disconnect(), S_OK);
  ExpectAllReleased();
  // The load's log tells each build and what was done around it.
  std::string log;
  for (const auto& entry : fs::directory_iterator(fs::path(folder_.path()) / "addin/Logs")) log += Bytes(entry.path());
  size_t logged = 0;
  for (size_t at = log.find("Build of Widgets: "); at != std::string::npos; at = log.find("Build of Widgets: ", at + 1))
    ++logged;
  EXPECT_EQ(logged, 3u) << log;
  EXPECT_NE(log.find("compatibility model updated: "), std::string::npos) << log;
  EXPECT_NE(log.find("release copy: "), std::string::npos) << log;
}


// Tracking: the seconds a component's stopwatch shows in the elapsed-times
// view (which saves the totals), by component; nothing for a view not shown.
class Tracking : public Session {
 protected:
  std::optional<std::vector<std::pair<std::wstring, int>>> ElapsedTimes() {
    if (!Click(L"Show &Elapsed Times")) return std::nullopt;
    std::vector<SeenBox> boxes = developer_.Take();
    lastView_ = Describe(boxes);
    if (boxes.size() != 1) return std::nullopt;
    std::vector<std::pair<std::wstring, int>> times;
    const std::wregex row(L"(\\w+)\\s+(\\d+):(\\d\\d):(\\d\\d)");
    for (std::wsregex_iterator it(boxes[0].text.begin(), boxes[0].text.end(), row), end; it != end; ++it) {
      const int seconds = std::stoi((*it)[2]) * 3600 + std::stoi((*it)[3]) * 60 + std::stoi((*it)[4]);
      times.emplace_back((*it)[1], seconds);
    }
    return times;
  }
  std::wstring lastView_;  // for the failure message
  static int SecondsOf(const std::vector<std::pair<std::wstring, int>>& times, const std::wstring& name) {
    for (const auto& [key, seconds] : times)
      if (key == name) return seconds;
    return -1;
  }
  // Lets the IDE's message loop run (the add-in's timer polls the IDE from
  // it) until `done` holds or a minute has passed.
  template <typename Done>
  static bool PumpUntil(Done done) {
    const auto deadline = std::chrono::steady_clock::now() + std::chrono::minutes(1);
    while (!done()) {
      if (std::chrono::steady_clock::now() > deadline) return false;
      MsgWaitForMultipleObjects(0, nullptr, FALSE, 100, QS_ALLINPUT);
      MSG message;
      while (PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE)) DispatchMessageW(&message);
    }
    return true;
  }
};

TEST_F(Tracking, ActiveComponentsGainTimeSavedBesideTheProject) {
  CopyWidgetsAskingNothing("ShowDiagnostics=0\r\nTrackHistory=1\r\nTrackTime=1\r\n");
  ide_ = std::make_unique<ScriptedIde>();
  ASSERT_TRUE(ide_->Open(WindowsPath("Widgets/Widgets.vbp")).ok());
  ASSERT_NO_FATAL_FAILURE(Start());
  std::vector<SeenBox> boxes = developer_.Take();
  EXPECT_TRUE(boxes.empty()) << Describe(boxes);

  // A first build makes the project's tracking database.
  ScriptedObject* project = ide_->Project("Widgets");
  ASSERT_NE(project, nullptr);
  const fs::path buildFile = fs::path(WindowsPath("Widgets/bin/Widgets.dll"));
  fs::create_directories(buildFile.parent_path());
  ASSERT_TRUE(CopyFileW(fs::path(WindowsPath("Widgets/builds/Widgets-1.0.dll")).c_str(), buildFile.c_str(), FALSE));
  EXPECT_EQ(FireAfterWriteFile(ide_->state(), project, 4, buildFile.wstring(), 0), S_OK);
  const fs::path database = fs::path(WindowsPath("Widgets/Widgets.stn"));
  ASSERT_TRUE(fs::exists(database));
  boxes = developer_.Take();
  EXPECT_TRUE(boxes.empty()) << Describe(boxes);

  // The IDE activates Widget and raises its events; later Gadget's code
  // window comes up without a word, which only the timer's poll finds out.
  const platform::ProjectPtr widgets = ide_->headless().FindProject("Widgets");
  platform::ComponentPtr widget, gadget;
  for (const platform::ComponentPtr& component : widgets->VBComponents()) {
    if (component->Name() == "Widget") widget = component;
    if (component->Name() == "Gadget") gadget = component;
  }
  ASSERT_TRUE(widget && gadget);
  ASSERT_TRUE(ide_->headless().ActivateComponent(widget).ok());
  ScriptedObject* activated = NewComponent(widget);
  EXPECT_EQ(AdvisedSinks(ide_->state(), kIidComponentsEvents, widgets.get()), 1u);
  EXPECT_EQ(FireComponentEvent(ide_->state(), project, 4, activated), S_OK);
  EXPECT_EQ(FireComponentEvent(ide_->state(), project, 5, activated), S_OK);
  activated->Release();
  std::optional<std::vector<std::pair<std::wstring, int>>> times;
  ASSERT_TRUE(PumpUntil([&] { return (times = ElapsedTimes()) && SecondsOf(*times, L"Widget") >= 1; }))
      << lastView_;
  ASSERT_TRUE(ide_->headless().ActivateComponent(gadget).ok());
  ASSERT_TRUE(PumpUntil([&] { return (times = ElapsedTimes()) && SecondsOf(*times, L"Gadget") >= 1; }))
      << lastView_;
  const int widgetSeconds = SecondsOf(*times, L"Widget");
  EXPECT_GE(widgetSeconds, 1);

  // Disconnected, the totals are in the database: connected again, the
  // add-in reads them back from it.
  project->Release();
  EXPECT_EQ(addin_->Disconnect(), S_OK);
  ExpectAllReleased();
  ASSERT_EQ(addin_->Connect(ide_->vbe()), S_OK);
  times = ElapsedTimes();
  ASSERT_TRUE(times);
  EXPECT_GE(SecondsOf(*times, L"Widget"), widgetSeconds);
  EXPECT_GE(SecondsOf(*times, L"Gadget"), 1);
  EXPECT_EQ(addin_->Disconnect(), S_OK);
}

}  // namespace
}  // namespace sentrune::testing::ide
