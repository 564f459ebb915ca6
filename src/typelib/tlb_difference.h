#pragma once
// One difference found by clsParseTLB::Compare, with what is needed to judge
// it without reading its text.
#include <string>
#include <vector>

namespace sentrune {

enum class DiffKind {
  kLibraryName,
  kLibraryHelpString,
  kLibraryGuid,
  kLibraryVersion,
  kEnum,
  kEnumMember,
  kType,
  kTypeMember,
  kClass,
  kClassGuid,
  kProperty,
  kMethod,
  kEvent,
};

// What holds the difference, and what happened to it. A is "this" (the new
// build), B the other library (its model).
enum class DiffItem { kLibrary, kEnum, kRecord, kClass };
enum class DiffChange { kOnlyInA, kOnlyInB, kGuid, kValue, kHelp };

struct TlbDifference {
  // 1: found walking the other library (it has something "this" lacks, or a
  // library-level mismatch); 2: found walking "this" (something "this" adds).
  int pass = 1;
  DiffKind kind = DiffKind::kLibraryName;
  std::string text;
  // The library, enumeration, record type or class, by name: messages name
  // none of them, and a class whose GUID changed is known by this alone.
  std::string item;
  // The member's key (its declaration text); empty when the difference is
  // the item itself or one of its values.
  std::string member;
  // A changed value as A and B hold it (a GUID, a help string, the
  // library's name or version); empty otherwise.
  std::string valueA;
  std::string valueB;
};

DiffItem ItemOf(DiffKind kind);
DiffChange ChangeOf(const TlbDifference& difference);

// How a new build ("this") stands against its model ("Other").
enum class CompatLevel { kIdentical, kCompatible, kIncompatible };

// Identical when nothing differs; compatible when the new build only adds
// (second pass) or differs in the library's help string or version.
CompatLevel CompatibilityLevel(const std::vector<TlbDifference>& differences);

// "identical", "compatible", "incompatible".
const char* CompatLevelName(CompatLevel level);

// How every dialog shows a result: the count + " Differences Found.", CR LF,
// then "--> " + difference + CR LF for each.
std::string DifferencesText(const std::vector<std::string>& differences);

}  // namespace sentrune
