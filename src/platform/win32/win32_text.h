#pragma once
// The core speaks UTF-8; Windows speaks UTF-16 (the wide API) and, where a
// function only exists in its ANSI form, the system's ANSI code page. Every
// conversion between them goes through here.
#include <string>
#include <string_view>

namespace sentrune::win32 {

std::wstring Widen(std::string_view utf8);
std::string Narrow(std::wstring_view wide);

// The wide form of a Windows path that the file functions accept at any
// length: drive paths become "\\?\C:\...", UNC paths "\\?\UNC\server\...".
// Relative paths and paths already in that form are only widened, since the
// prefix turns off the normalisation they need.
std::wstring LongPath(std::string_view utf8Path);
// The same path without the prefix LongPath adds, back in UTF-8.
std::string StripLongPrefix(std::wstring_view widePath);

}  // namespace sentrune::win32
