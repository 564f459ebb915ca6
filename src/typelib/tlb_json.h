#pragma once
// The model as JSON, keys in a fixed order so that outputs can be diffed.
#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "typelib/parse_tlb.h"

namespace sentrune {

// {"Library", "HelpString", "GUID", "TLBVersionString", "FileVersionString",
//  "Enums", "Types", "Classes"}; `indent` as nlohmann's dump takes it (-1:
// one line).
std::string TypeLibJson(const clsParseTLB& model, int indent = 2);

// One object per difference: {"pass", "item" (library|enum|record|class),
// "name", "member" (null for the item itself), "change" (onlyInA|onlyInB|
// guid|value|help), "a" and "b" for a changed value, "message" (as the
// command line prints it, lines broken by LF)}.
nlohmann::ordered_json DifferencesJson(const std::vector<TlbDifference>& differences);

}  // namespace sentrune
