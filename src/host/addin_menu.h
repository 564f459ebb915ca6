#pragma once
// The add-in's own menu on the IDE's "Add-Ins" bar: builds the pop-up and
// its items, wires each to its handler, refreshes captions whenever the menu
// is opened, and removes it all at disconnection. Features owned by other
// subsystems are reached through MenuActions, which the host fills, so that
// the menu depends only on what it runs itself.
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "host/connect.h"
#include "platform/ide.h"

namespace sentrune {

// What the menu cannot do by itself. An empty action makes its item do
// nothing.
struct MenuActions {
  std::function<void(Connect&)> ShowReferences;     // the reference list
  std::function<void(Connect&)> InspectComponents;  // the comparison viewer
  std::function<void(Connect&)> InsertClass;        // add/refresh the verification class
  std::function<void(Connect&)> InsertUserControl;  // add the alignment control
  std::function<void(Connect&)> FixAbsPaths;        // the project file path fixer
  // The association fixer, run after the user agreed to it.
  std::function<void(Connect&)> FixAssociations;
  std::function<void(Connect&)> ShowOptions;  // the options dialog; the menu reloads the options after it
  std::function<void(Connect&)> ShowAbout;
};

enum class MenuCommand {
  kTopLevel,
  kReferences,
  kInspect,
  kShowTimer,
  kProjectSnapshot,
  kUtilities,
  kInsertClass,
  kInsertUserControl,
  kShowMagnifier,
  kParse4ABS,
  kFixAssociations,
  kOptions,
  kAbout,
};

// One item as the menu shows it, for building it and for describing it.
struct MenuEntry {
  MenuCommand command;
  std::string caption;  // with its "&" accelerator
  bool beginGroup = false;
  bool inUtilities = false;  // an item of the "&Utilities" pop-up
};

// The items under the top pop-up, in menu order, with the captions the
// given option values produce. The magnifier item is listed only when
// `withMagnifier` is set.
std::vector<MenuEntry> MenuEntries(const std::string& verifyClass, const std::string& alignControl,
                                   bool withMagnifier);
// A caption as read aloud: every "&" removed ("&&" stays a single "&").
std::string PlainCaption(const std::string& caption);

class AddinMenuModel : public AddinMenu {
 public:
  explicit AddinMenuModel(MenuActions actions);
  ~AddinMenuModel() override;
  AddinMenuModel(const AddinMenuModel&) = delete;
  AddinMenuModel& operator=(const AddinMenuModel&) = delete;

  // Nothing when the IDE has no "Add-Ins" bar.
  void Build(Connect& connect) override;
  // Deletes every control (last built first), then releases the handlers.
  void Remove() override;

  // The handlers, as the IDE's click events reach them.
  void TopLevelMenuHandler_Click();
  void ShowTimerMenuHandler_Click();
  void ProjectSnapshotMenuHandler_Click();
  void ShowMagnifierMenuHandler_Click();
  void FixAssociationsMenuHandler_Click();
  void OptionsMenuHandler_Click();

 private:
  class Handler;
  struct Item {
    MenuCommand command;
    platform::ControlPtr control;
    std::unique_ptr<Handler> handler;
    std::unique_ptr<platform::Subscription> subscription;
  };

  platform::ControlPtr AddControl(const std::shared_ptr<platform::CommandBarControls>& parent, int type,
                                  const std::string& caption, bool beginGroup, MenuCommand command);
  void Dispatch(MenuCommand command);
  void RunAction(const std::function<void(Connect&)>& action);
  platform::CommandBarControl* Find(MenuCommand command) const;
  int Box(const std::string& prompt, int style, const std::string& title);

  MenuActions actions_;
  Connect* connect_ = nullptr;
  std::vector<Item> items_;
};

}  // namespace sentrune
