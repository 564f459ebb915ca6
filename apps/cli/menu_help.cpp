#include "menu_help.h"

#include <algorithm>

#include "commands.h"
#include "host/addin_menu.h"

namespace sentrune::cli {
namespace {

// The commands that do what a menu item does, as a user would type them.
std::string CommandsFor(MenuCommand item) {
  // About is the version flag, not a command.
  if (item == MenuCommand::kAbout) return "sentrune --version";
  std::string names;
  for (const Command& command : Commands()) {
    if (command.menuItem == item) names += (names.empty() ? "sentrune " : ", sentrune ") + std::string(command.name);
  }
  return names.empty() ? "(in the IDE only)" : names;
}

}  // namespace

std::string MenuHelpText() {
  constexpr size_t kCaptionWidth = 38;
  std::string text = "\n\nThe add-in's menu in the IDE (Add-Ins > Sentrune) and the commands doing the same:\n";
  for (const MenuEntry& entry : MenuEntries("cVerifyInstallation", "AlignmentHelper", true)) {
    if (entry.beginGroup) text += "  ----\n";
    std::string line = (entry.inUtilities ? "    " : "  ") + PlainCaption(entry.caption);
    if (entry.command == MenuCommand::kUtilities) {
      text += line + ":\n";
      continue;
    }
    line.resize(std::max(line.size() + 1, kCaptionWidth), ' ');
    text += line + CommandsFor(entry.command) + '\n';
  }
  return text;
}

}  // namespace sentrune::cli
