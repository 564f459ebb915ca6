#pragma once
// The shell's folder browser, opened on a start folder.
#include "platform/win32/windows_api.h"

#include <string>

namespace sentrune::addin {

// The chosen folder's path; empty text when cancelled or when the choice
// is no file system folder.
std::string BrowseForFolder(HWND owner, const std::string& title, const std::string& startFolder);

}  // namespace sentrune::addin
