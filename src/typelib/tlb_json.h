#pragma once
// The model as JSON, keys in a fixed order so that outputs can be diffed.
#include <string>

#include "typelib/parse_tlb.h"

namespace sentrune {

// {"Library", "HelpString", "GUID", "TLBVersionString", "FileVersionString",
//  "Enums", "Types", "Classes"}; `indent` as nlohmann's dump takes it (-1:
// one line).
std::string TypeLibJson(const clsParseTLB& model, int indent = 2);

}  // namespace sentrune
