#pragma once
// One of Wine's registry files (system.reg, user.reg) as a document:
//
//   WINE REGISTRY Version 2
//   ;; All keys relative to REGISTRY\\Machine
//   #arch=win64
//
//   [Software\\Classes\\.txt] 1700000000
//   #time=1da1f2c3b4a5968
//   @="txtfile"
//
// Wine writes a section only for keys that hold values or have no sub-keys;
// the keys above them exist without a section of their own. Sections come in
// Wine's order: by key path, each component compared case-insensitively.
//
// Sections that are not changed keep their text byte for byte; a changed
// section is written afresh the way Wine writes it, with the given time as
// its modification stamp. Key paths here are relative to the file's root.
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "platform/winereg/wine_registry_value.h"
#include "runtime/result.h"

namespace sentrune::portable::winereg {

using KeyPath = std::vector<std::string>;  // components, UTF-8

// "Software\Classes\X" -> {"Software", "Classes", "X"}; empty parts dropped.
KeyPath SplitKeyPath(std::string_view path);
// Wine's order of two names: case-insensitive, then as stored.
bool NameLess(std::string_view a, std::string_view b);

struct Section {
  KeyPath path;
  std::string raw;                 // the text as read; empty once changed
  std::vector<std::string> extra;  // "#link", "#class=..." and comment lines, kept
  int64_t stamp = 0;               // Unix seconds of the last change
  std::vector<StoredValue> values;

  const StoredValue* FindValue(std::string_view name) const;
  // Replaces the value of that name (keeping its stored spelling) or adds it
  // in Wine's order.
  void SetValue(StoredValue value);
  // False when there was no such value.
  bool EraseValue(std::string_view name);
};

class RegFile {
 public:
  // Fails with the registry's kBadDb, naming `label` and the line, when the
  // text is not a Wine registry file of version 2 or a line cannot be read.
  static rt::Result<RegFile> Parse(std::string_view text, const std::string& label);

  std::string Serialise() const;

  const Section* Find(const KeyPath& path) const;
  // The root always exists; any other key when it or a key below it has a
  // section.
  bool KeyExists(const KeyPath& path) const;
  // The names of the keys directly below, in Wine's order.
  std::vector<std::string> SubkeyNames(const KeyPath& path) const;

  // The key's section, created (with the keys above it) when missing, and
  // marked as changed at `now`.
  Section& Touch(const KeyPath& path, int64_t now);
  // Removes the section of a key without sub-keys. The key above keeps
  // existing, with an empty section if nothing else holds it up.
  void Remove(const KeyPath& path, int64_t now);

 private:
  void Reindex();
  size_t InsertSection(Section section);

  std::string header_;  // everything before the first section
  std::vector<Section> sections_;
  std::unordered_map<std::string, size_t> index_;  // folded path -> section
  std::unordered_map<std::string, size_t> below_;  // folded path -> sections under it
};

}  // namespace sentrune::portable::winereg
