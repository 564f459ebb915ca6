#pragma once
// clsBrowse4Folders: the folder browser, shown through the Ui.
#include <string>

#include "platform/ui.h"

namespace sentrune {

// The chosen folder, or empty text when the user cancelled.
inline std::string BrowseForFolder(platform::Ui& ui, const std::string& title,
                                   const std::string& startFolder) {
  return ui.BrowseForFolder(title, startFolder);
}

}  // namespace sentrune
