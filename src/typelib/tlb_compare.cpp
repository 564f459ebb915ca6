// clsParseTLB::Compare: one directional pass run twice, so that whatever one
// library has and the other lacks is reported from both sides.
#include <string>
#include <vector>

#include "typelib/parse_tlb.h"

namespace sentrune {
namespace {

constexpr const char* kCrLf = "\r\n";

// subCollectDiffs: walks B and looks each item up in A, so it reports what B
// has and A lacks.
class Pass {
 public:
  Pass(const clsParseTLB& a, const clsParseTLB& b, int number, bool showDetails,
       std::vector<TlbDifference>& out)
      : a_(a), b_(b), number_(number), showDetails_(showDetails), out_(out),
        labelA_(a.Library()), labelB_(b.Library()) {
    // Only the first pass names the files, and only when the names would not
    // tell the libraries apart.
    if (number == 1 && a.Library() == b.Library()) {
      labelA_ += " [" + a.FilePath() + "]";
      labelB_ += " [" + b.FilePath() + "]";
    }
  }

  void LibraryChecks(bool ignoreMinor) {
    Library(DiffKind::kLibraryName, a_.Library(), b_.Library(), "Library Name Doesn't Match.", "Library Name");
    if (!ignoreMinor)
      Library(DiffKind::kLibraryHelpString, a_.HelpString(), b_.HelpString(), "HelpString Doesn't Match",
              "HelpString");
    Library(DiffKind::kLibraryGuid, a_.GUID(), b_.GUID(), "GUID Doesn't Match", "GUID");
    if (!ignoreMinor)
      Library(DiffKind::kLibraryVersion, a_.TLBVersionString(), b_.TLBVersionString(),
              "TLB Version String Doesn't Match", "TLB Version String");
  }

  void TypeChecks() {
    RecordChecks(a_.Enums(), b_.Enums(), DiffKind::kEnum, " contains an Enum named '", DiffKind::kEnumMember,
                 " contains an Enum Member named '");
    RecordChecks(a_.Types(), b_.Types(), DiffKind::kType, " contains a Type(UDT) named '",
                 DiffKind::kTypeMember, " contains a UDT Type Member named '");
    for (const auto& entry : b_.Classes()) ClassChecks(entry.item);
  }

 private:
  // `inA` and `inB` are the values as this pass's A and B hold them; the
  // record keeps them as the compared libraries hold them.
  void Add(DiffKind kind, std::string text, const std::string& item, const std::string& member = {},
           const std::string& inA = {}, const std::string& inB = {}) {
    const bool swapped = number_ == 2;
    out_.push_back({number_, kind, std::move(text), item, member, swapped ? inB : inA, swapped ? inA : inB});
  }

  void Missing(DiffKind kind, const char* phrase, const std::string& item) {
    Add(kind, MissingText(phrase, item), item);
  }

  void MissingMember(DiffKind kind, const char* phrase, const std::string& item, const std::string& key) {
    Add(kind, MissingText(phrase, key), item, key);
  }

  std::string MissingText(const char* phrase, const std::string& key) const {
    return labelB_ + phrase + key + "' which doesn't exist in " + labelA_;
  }

  void Library(DiffKind kind, const std::string& a, const std::string& b, const char* message,
               const std::string& caption) {
    if (a == b) return;
    std::string text = message;
    if (showDetails_) text += kCrLf + caption + " (A) = " + a + kCrLf + caption + " (B) = " + b;
    Add(kind, std::move(text), a_.Library(), {}, a, b);
  }

  void Members(const std::string& item, const MemberCollection& inA, const MemberCollection& inB, DiffKind kind,
               const char* phrase) {
    for (const auto& entry : inB)
      if (!inA.Contains(entry.item.MemberName)) MissingMember(kind, phrase, item, entry.item.MemberName);
  }

  void RecordChecks(const EnumOrTypeCollection& inA, const EnumOrTypeCollection& inB,
                    DiffKind kind, const char* phrase, DiffKind memberKind, const char* memberPhrase) {
    for (const auto& entry : inB) {
      const clsEnumOrType* found = inA.Find(entry.item.MemberName);
      if (!found) {
        Missing(kind, phrase, entry.item.MemberName);
        continue;
      }
      Members(entry.item.MemberName, found->Members, entry.item.Members, memberKind, memberPhrase);
    }
  }

  void ClassChecks(const clsClass& cls) {
    const clsClass* found = a_.Classes().Find(cls.ClassName);
    const std::string& name = cls.ClassName;
    if (!found) {
      Missing(DiffKind::kClass, " contains a Class named '", name);
      return;
    }
    if (found->ClassGUID != cls.ClassGUID)
      Add(DiffKind::kClassGuid, labelB_ + " GUID Doesn't match " + labelA_ + " GUID", name, {}, found->ClassGUID,
          cls.ClassGUID);
    Members(name, found->Properties, cls.Properties, DiffKind::kProperty, " contains a Property named '");
    Members(name, found->Methods, cls.Methods, DiffKind::kMethod, " contains a Method named '");
    Members(name, found->Events, cls.Events, DiffKind::kEvent, " contains a Event named '");
  }

  const clsParseTLB& a_;
  const clsParseTLB& b_;
  int number_;
  bool showDetails_;
  std::vector<TlbDifference>& out_;
  std::string labelA_;
  std::string labelB_;
};

}  // namespace

std::vector<TlbDifference> clsParseTLB::CompareDetailed(const clsParseTLB& Other, bool IgnoreMinor,
                                                        bool ShowDetails) const {
  std::vector<TlbDifference> results;
  Pass first(*this, Other, 1, ShowDetails, results);
  first.LibraryChecks(IgnoreMinor);
  first.TypeChecks();
  Pass(Other, *this, 2, ShowDetails, results).TypeChecks();
  return results;
}

std::vector<std::string> clsParseTLB::Compare(const clsParseTLB& Other, bool IgnoreMinor,
                                              bool ShowDetails) const {
  std::vector<std::string> texts;
  for (TlbDifference& d : CompareDetailed(Other, IgnoreMinor, ShowDetails)) texts.push_back(std::move(d.text));
  return texts;
}

DiffItem ItemOf(DiffKind kind) {
  switch (kind) {
    case DiffKind::kLibraryName:
    case DiffKind::kLibraryHelpString:
    case DiffKind::kLibraryGuid:
    case DiffKind::kLibraryVersion: return DiffItem::kLibrary;
    case DiffKind::kEnum:
    case DiffKind::kEnumMember: return DiffItem::kEnum;
    case DiffKind::kType:
    case DiffKind::kTypeMember: return DiffItem::kRecord;
    default: return DiffItem::kClass;
  }
}

DiffChange ChangeOf(const TlbDifference& difference) {
  switch (difference.kind) {
    case DiffKind::kLibraryGuid:
    case DiffKind::kClassGuid: return DiffChange::kGuid;
    case DiffKind::kLibraryHelpString: return DiffChange::kHelp;
    case DiffKind::kLibraryName:
    case DiffKind::kLibraryVersion: return DiffChange::kValue;
    default: return difference.pass == 1 ? DiffChange::kOnlyInB : DiffChange::kOnlyInA;
  }
}

CompatLevel CompatibilityLevel(const std::vector<TlbDifference>& differences) {
  if (differences.empty()) return CompatLevel::kIdentical;
  for (const TlbDifference& d : differences) {
    const bool minor = d.kind == DiffKind::kLibraryHelpString || d.kind == DiffKind::kLibraryVersion;
    if (d.pass == 1 && !minor) return CompatLevel::kIncompatible;
  }
  return CompatLevel::kCompatible;
}

std::string DifferencesText(const std::vector<std::string>& differences) {
  std::string text = std::to_string(differences.size()) + " Differences Found." + kCrLf;
  for (const std::string& d : differences) text += "--> " + d + kCrLf;
  return text;
}

const char* CompatLevelName(CompatLevel level) {
  switch (level) {
    case CompatLevel::kIdentical: return "identical";
    case CompatLevel::kCompatible: return "compatible";
    case CompatLevel::kIncompatible: return "incompatible";
  }
  return "incompatible";
}

}  // namespace sentrune
