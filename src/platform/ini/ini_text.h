#pragma once
// The profile-file rules over the bytes of an INI file, without any I/O, so
// that they can be tested and fuzzed on their own. Everything here is ANSI
// (Windows-1252) bytes; the code page conversion happens in the adapter.
//
// A line (split at LF; a CR before the LF, or ending the file, belongs to the
// line end) is, after leading white space: blank; a comment (';'); a section
// header ('[' up to the last ']'); a key line (name '=' value, both trimmed);
// anything else is garbage. Comments and garbage are never matched but are kept on write.
// Section and key names compare without regard to the case of ASCII and
// Latin-1 letters. Only the first section of a given name counts, and within
// it the first line of a given key.
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace sentrune::portable::ini {

// The trimmed value of section/key as stored (quotes included), or nothing
// when the section or a key line for the key is absent. The view points into
// `file`.
std::optional<std::string_view> FindValue(std::string_view file, std::string_view section,
                                          std::string_view key);

// What GetPrivateProfileString leaves in a buffer of `size` bytes: one pair of
// enclosing matching quotes (" or ') removed, then at most size - 1 bytes.
std::string CopyToBuffer(std::string_view value, uint32_t size);

// A default value as the profile functions hand it back: trailing blanks
// removed, then at most size - 1 bytes.
std::string CopyDefaultToBuffer(std::string_view defaultValue, uint32_t size);

// The file after setting section/key to value. The key's line is rewritten
// as "key=value" keeping its line end; a missing key is added after the last
// non-blank line of the section; a missing section is added at the end of the
// file. New lines end in CR LF. Every other byte of the file is kept.
std::string SetValue(std::string_view file, std::string_view section, std::string_view key,
                     std::string_view value);

}  // namespace sentrune::portable::ini
