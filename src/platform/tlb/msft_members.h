#pragma once
// The member block of an MSFT type info: function and variable records with
// their member IDs, names, parameters and values. Private to the MSFT reader.
#include <cstdint>

#include "platform/tlb/msft_file.h"

namespace sentrune::portable::msft {

struct MemberCounts {
  uint32_t functions = 0;
  uint32_t variables = 0;
};

// Fills info.funcs and info.vars from the block at file offset `block`.
void ReadMembers(const MsftFile& file, MsftTypes& types, uint32_t block, MemberCounts counts,
                 Budget& budget, RawTypeInfo& info);

}  // namespace sentrune::portable::msft
