#pragma once
// Writes small MSFT type libraries for tests: the values and damaged
// structures that no available compiler produces (real, currency and date
// constants, cyclic descriptors, records that overrun their block).
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "platform/portable/typelib_raw.h"

namespace sentrune::testing {

class MsftBuilder {
 public:
  struct Param {
    std::string name;
    int32_t type;  // DataType: an inline VT (0x80000000 | vt) or a descriptor offset
    uint16_t flags = 1;
    int32_t defaultValue = -1;  // value reference, -1 for none
  };
  struct Func {
    int32_t memberId;
    std::string name;
    int32_t returnType;
    std::vector<Param> params;
    uint8_t invokeKind = 1;
  };
  struct Var {
    int32_t memberId;
    std::string name;
    int32_t type;
    int32_t value;  // value reference of a constant
  };

  static int32_t Inline(uint16_t vt) { return static_cast<int32_t>(0x80000000u | vt); }

  int32_t AddTypeDesc(uint16_t vt, int32_t target);
  // A stored value: its VT word, then `payload` as the file holds it.
  int32_t AddValue(uint16_t vt, const std::vector<uint8_t>& payload);
  int32_t AddString(std::string_view text);

  // Returns the type info's hreftype (its offset in the type info table).
  int32_t AddType(portable::TypeKind kind, std::string name, std::vector<Func> funcs,
                  std::vector<Var> vars, int32_t related = -1);

  // With `helpDllWord`, the header announces a help DLL; `wordPresent` says
  // whether the file really holds the extra word before the type info offsets.
  std::vector<uint8_t> Build(bool helpDllWord = false, bool wordPresent = true) const;

  // Lets a test damage a built member block: the bytes of the type info's
  // block are at `MemberBlockOffset` in the built file.
  size_t MemberBlockOffset(const std::vector<uint8_t>& built, int typeIndex) const;

 private:
  struct Type {
    portable::TypeKind kind;
    int32_t name;
    std::vector<Func> funcs;
    std::vector<Var> vars;
    int32_t related;
    // Name table offsets: functions, then variables; and per function its
    // parameters'.
    std::vector<int32_t> memberNames;
    std::vector<std::vector<int32_t>> paramNames;
  };

  int32_t AddName(std::string_view text);
  std::vector<uint8_t> MemberBlock(const Type& type) const;

  std::vector<uint8_t> names_, strings_, typeDescs_, values_;
  std::vector<Type> types_;
};

}  // namespace sentrune::testing
