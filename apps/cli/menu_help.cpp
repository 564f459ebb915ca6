#include "menu_help.h"

#include <algorithm>

#include "host/addin_menu.h"

namespace sentrune::cli {

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
    std::string command = entry.cliCommand.empty() ? "(none on Linux)" : "sentrune " + entry.cliCommand;
    for (size_t comma = command.find(", "); comma != std::string::npos; comma = command.find(", ", comma + 2))
      command.insert(comma + 2, "sentrune ");
    text += line + command + '\n';
  }
  return text;
}

}  // namespace sentrune::cli
