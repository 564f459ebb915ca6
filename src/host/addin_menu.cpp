#include "host/addin_menu.h"

#include <exception>

#include "files/file_functions.h"
#include "state/msgbox.h"
#include "runtime/winpath.h"
#include "workflow/snapshot.h"

namespace sentrune {
namespace {

constexpr const char* kElapsedTimes = "Show &Elapsed Times";

std::string InsertClassCaption(const std::string& verifyClass) { return "Add/&Refresh " + verifyClass; }
std::string InsertControlCaption(const std::string& alignControl) { return "&Add " + alignControl; }

}  // namespace

std::vector<MenuEntry> MenuEntries(const std::string& verifyClass, const std::string& alignControl,
                                   bool withMagnifier) {
  std::vector<MenuEntry> entries = {
      {MenuCommand::kReferences, "&Show References", false, false},
      {MenuCommand::kInspect, "&Inspect Components", false, false},
      {MenuCommand::kShowTimer, kElapsedTimes, false, false},
      {MenuCommand::kProjectSnapshot, "&Project Snapshot", false, false},
      {MenuCommand::kUtilities, "&Utilities", true, false},
      {MenuCommand::kInsertClass, InsertClassCaption(verifyClass), false, true},
      {MenuCommand::kInsertUserControl, InsertControlCaption(alignControl), false, true},
      {MenuCommand::kShowMagnifier, "Show &Magnifier", false, true},
      {MenuCommand::kParse4ABS, "Fix A&BS Paths", true, true},
      {MenuCommand::kFixAssociations, "&Fix VB Associations", false, true},
      {MenuCommand::kOptions, "Sentrune &Options", true, false},
      {MenuCommand::kAbout, "Abo&ut", true, false},
  };
  if (!withMagnifier) std::erase_if(entries, [](const MenuEntry& e) { return e.command == MenuCommand::kShowMagnifier; });
  return entries;
}

std::string PlainCaption(const std::string& caption) {
  std::string plain;
  for (size_t i = 0; i < caption.size(); ++i) {
    if (caption[i] != '&') {
      plain += caption[i];
    } else if (i + 1 < caption.size() && caption[i + 1] == '&') {
      plain += '&';
      ++i;
    }
  }
  return plain;
}

// One control's CommandBarEvents sink: every click goes back to the menu.
class AddinMenuModel::Handler : public platform::CommandBarEventsSink {
 public:
  Handler(AddinMenuModel& menu, MenuCommand command) : menu_(menu), command_(command) {}
  void Click(const platform::ControlPtr&, bool& handled, bool&) override {
    menu_.Dispatch(command_);
    handled = true;
  }

 private:
  AddinMenuModel& menu_;
  MenuCommand command_;
};

AddinMenuModel::AddinMenuModel(MenuActions actions) : actions_(std::move(actions)) {}

AddinMenuModel::~AddinMenuModel() { Remove(); }

void AddinMenuModel::Build(Connect& connect) {
  connect_ = &connect;
  platform::VBE* ide = connect.gobjVBInstance;
  const std::shared_ptr<platform::CommandBars> bars = ide ? ide->CommandBars() : nullptr;
  const std::shared_ptr<platform::CommandBar> addIns = bars ? bars->Item("Add-Ins") : nullptr;
  if (!addIns) return;
  const platform::ControlPtr top =
      AddControl(addIns->Controls(), platform::msoControlPopup, "&Sentrune", true, MenuCommand::kTopLevel);
  if (!top) return;
  const OptionSet& options = connect.options()->options();
  std::shared_ptr<platform::CommandBarControls> utilities;
  for (const MenuEntry& entry :
       MenuEntries(options.VerifyClass, options.AlignControl, connect.MagnifierAvailable())) {
    const bool popup = entry.command == MenuCommand::kUtilities;
    const auto parent = entry.inUtilities ? utilities : top->Controls();
    const platform::ControlPtr control =
        AddControl(parent, popup ? platform::msoControlPopup : platform::msoControlButton, entry.caption,
                   entry.beginGroup, entry.command);
    if (popup && control) utilities = control->Controls();
  }
}

platform::ControlPtr AddinMenuModel::AddControl(const std::shared_ptr<platform::CommandBarControls>& parent,
                                                int type, const std::string& caption, bool beginGroup,
                                                MenuCommand command) {
  if (!parent) return nullptr;
  rt::Result<platform::ControlPtr> added = parent->Add(type);
  if (!added.ok()) return nullptr;
  platform::ControlPtr control = *added;
  control->SetCaption(caption);
  control->SetBeginGroup(beginGroup);
  Item item{command, control, nullptr, nullptr};
  // The utilities pop-up only opens; it has no handler of its own.
  if (command != MenuCommand::kUtilities) {
    item.handler = std::make_unique<Handler>(*this, command);
    item.subscription = connect_->gobjVBInstance->Events().CommandBarEvents(control, *item.handler);
  }
  items_.push_back(std::move(item));
  return control;
}

void AddinMenuModel::Remove() {
  for (auto it = items_.rbegin(); it != items_.rend(); ++it) {
    // A control gone with its pop-up, or deleted by the IDE, is passed over.
    (void)it->control->Delete();
  }
  for (Item& item : items_) {
    item.subscription.reset();
    item.handler.reset();
  }
  items_.clear();
}

platform::CommandBarControl* AddinMenuModel::Find(MenuCommand command) const {
  for (const Item& item : items_)
    if (item.command == command) return item.control.get();
  return nullptr;
}

int AddinMenuModel::Box(const std::string& prompt, int style, const std::string& title) {
  return lfncMsgBoxEX(connect_->state(), prompt, style, title);
}

void AddinMenuModel::Dispatch(MenuCommand command) {
  // The IDE must never see an error from a click.
  try {
    switch (command) {
      case MenuCommand::kTopLevel: return TopLevelMenuHandler_Click();
      case MenuCommand::kReferences: return RunAction(actions_.ShowReferences);
      case MenuCommand::kInspect: return RunAction(actions_.InspectComponents);
      case MenuCommand::kShowTimer: return ShowTimerMenuHandler_Click();
      case MenuCommand::kProjectSnapshot: return ProjectSnapshotMenuHandler_Click();
      case MenuCommand::kUtilities: return;
      case MenuCommand::kInsertClass: return RunAction(actions_.InsertClass);
      case MenuCommand::kInsertUserControl: return RunAction(actions_.InsertUserControl);
      case MenuCommand::kShowMagnifier: return ShowMagnifierMenuHandler_Click();
      case MenuCommand::kParse4ABS: return RunAction(actions_.FixAbsPaths);
      case MenuCommand::kFixAssociations: return FixAssociationsMenuHandler_Click();
      case MenuCommand::kOptions: return OptionsMenuHandler_Click();
      case MenuCommand::kAbout: return RunAction(actions_.ShowAbout);
    }
  } catch (const std::exception&) {
    connect_->state().err.Clear();
  }
}

void AddinMenuModel::RunAction(const std::function<void(Connect&)>& action) {
  if (action && connect_) action(*connect_);
}

void AddinMenuModel::TopLevelMenuHandler_Click() {
  if (!connect_ || !connect_->options()) return;
  const OptionSet& options = connect_->options()->options();
  if (platform::CommandBarControl* insertClass = Find(MenuCommand::kInsertClass))
    insertClass->SetCaption(InsertClassCaption(options.VerifyClass));
  if (platform::CommandBarControl* insertControl = Find(MenuCommand::kInsertUserControl))
    insertControl->SetCaption(InsertControlCaption(options.AlignControl));
  ActivityTracker* tracker = connect_->tracker();
  if (options.TrackTime && tracker && !tracker->ActiveIDEProject() && connect_->gobjVBInstance)
    tracker->ProjectManager(connect_->gobjVBInstance->ActiveVBProject());
  if (platform::CommandBarControl* elapsed = Find(MenuCommand::kShowTimer)) elapsed->SetEnabled(options.TrackTime);
}

void AddinMenuModel::ShowTimerMenuHandler_Click() {
  if (connect_->tracker() && connect_->options()) connect_->tracker()->ShowTimerJobs(*connect_->options());
}

void AddinMenuModel::ProjectSnapshotMenuHandler_Click() {
  constexpr const char* kTitle = "Project Snapshot";
  const platform::ProjectPtr project =
      connect_->gobjVBInstance ? connect_->gobjVBInstance->ActiveVBProject() : nullptr;
  clsProject* sink = project ? connect_->FindProjectSink(project->Name()) : nullptr;
  if (!sink) {
    Box("No projects loaded.", platform::mb::kInformation, kTitle);
    return;
  }
  if (lfncSnapshotEX(*sink, true) == 0) {
    Box("Operation Complete.", platform::mb::kInformation, kTitle);
  } else {
    Box("Error while processing snapshot.", platform::mb::kExclamation, kTitle);
  }
}

void AddinMenuModel::ShowMagnifierMenuHandler_Click() {
  AddinState& state = connect_->state();
  const std::string system = state.env().SpecialFolderPath(platform::kFolderSystem);
  if (system.empty()) return;
  (void)state.env().Programs().Start(rt::AddBackslash(system) + "magnify.exe");
}

void AddinMenuModel::FixAssociationsMenuHandler_Click() {
  const int answer = Box(
      "Fix VB file associations?\r\n"
      "This will force VB to use only Long filenames when opening projects and other files.",
      platform::mb::kYesNo + platform::mb::kQuestion, "Fix Associations.");
  if (answer == platform::mb::kYes) RunAction(actions_.FixAssociations);
}

void AddinMenuModel::OptionsMenuHandler_Click() {
  RunAction(actions_.ShowOptions);
  if (connect_->options()) connect_->options()->LoadOptions();
}

}  // namespace sentrune
