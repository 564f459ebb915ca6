#pragma once
// The member area of an SLTG type info: implemented types, functions and
// variables, linked by offsets within the area. Private to the SLTG reader.
#include <cstdint>

#include "platform/tlb/sltg_file.h"
#include "platform/tlb/sltg_types.h"

namespace sentrune::portable::sltg {

struct MemberArea {
  SltgFile& file;
  TypeDecoder& types;
  const RefTable& refs;
  const Region& members;
};

// Appends to info.impls the chain of implemented types at `offset` (0xFFFF:
// at the start of the area), if one is there.
void ReadImpls(const MemberArea& area, uint16_t offset, RawTypeInfo& info);
// Appends `count` functions (or fewer, when the chain ends) starting at `offset`.
void ReadFuncs(const MemberArea& area, uint16_t offset, uint16_t count, RawTypeInfo& info);
// Appends `count` variables (or fewer, when the chain ends) starting at `offset`.
void ReadVars(const MemberArea& area, uint16_t offset, uint16_t count, RawTypeInfo& info);

}  // namespace sentrune::portable::sltg
