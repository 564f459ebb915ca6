#pragma once
// One type info's block for the SLTG test writer: header, reference table,
// member header, member area and tail.
#include <cstdint>
#include <vector>

#include "portable/sltg_builder_parts.h"

namespace sentrune::portable::testing::sltg_writer {

std::vector<uint8_t> TypeInfoBlock(const SltgLibrary& library, const SltgTypeInfo& type,
                                   NameTable& names, const HelpEncoder& help);

}  // namespace sentrune::portable::testing::sltg_writer
