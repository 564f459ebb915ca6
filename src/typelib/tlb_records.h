#pragma once
// The records of a parsed type library. Every member is held as its rendered
// declaration text, and that text (MemberName) is also its key: two models
// are compatible exactly when the keys of one are found in the other.
#include <cstdint>
#include <string>

#include "runtime/keyed_collection.h"

namespace sentrune {

// One member: an enumeration constant, a record field, a property accessor, a
// method or an event; or, in the reader's worklist, one top-level type info.
struct clsInterfaceInfo {
  int32_t TypeInfo = 0;     // 1-based type info position of a top-level item
  int32_t MemberValue = 0;  // value of an enumeration constant
  std::string MemberHelp;
  std::string MemberName;
};

using MemberCollection = rt::KeyedCollection<clsInterfaceInfo, &clsInterfaceInfo::MemberName>;

// An enumeration or a user-defined type (record).
struct clsEnumOrType {
  std::string MemberName;
  MemberCollection Members;
};

using EnumOrTypeCollection = rt::KeyedCollection<clsEnumOrType, &clsEnumOrType::MemberName>;

struct clsClass {
  std::string ClassName;
  std::string ClassGUID;
  MemberCollection Properties;  // one entry per accessor (Get, Let, Set)
  MemberCollection Methods;
  MemberCollection Events;
};

using ClassCollection = rt::KeyedCollection<clsClass, &clsClass::ClassName>;

}  // namespace sentrune
