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
// length: the full path, with "." and ".." resolved as the system resolves
// them (the prefix turns that off), then "\\?\C:\..." for a drive path and
// "\\?\UNC\server\..." for a UNC path. A path already in that form is only
// widened.
std::wstring LongPath(std::string_view utf8Path);
// The same path without the prefix LongPath adds, back in UTF-8.
std::string StripLongPrefix(std::wstring_view widePath);

}  // namespace sentrune::win32
