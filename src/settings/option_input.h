#pragma once
// How option values look in the options dialog's grid, and how typed text
// becomes a grid value and a grid value a stored one.
#include <cstdint>
#include <string>
#include <string_view>

#include "runtime/result.h"
#include "settings/option_catalogue.h"

namespace sentrune {

// ConfigType of an options grid row.
inline constexpr int16_t kConfigText = 1, kConfigYesNo = 2, kConfigThreeWay = 3, kConfigFolder = 4;

// The ConfigType of a kind; the whole number is edited as text.
int16_t ConfigTypeOf(OptionKind kind);

// The grid text of a value in stored form: "Yes"/"No"/"Prompt" for Yes/No and
// three-way options, the text itself otherwise.
std::string DisplayText(OptionKind kind, std::string_view stored);

// The stored form of a grid text by ConfigType: "Yes" 1 and anything else 0
// for type 2; "Prompt" 2, "Yes" 1, anything else 0 for type 3; the text as
// it stands for the rest.
std::string StoredValue(int16_t configType, std::string_view cell);

// Typed text checked against the kind and turned into its grid text: Yes/No
// (or 1/0), Yes/No/Prompt (or 1/0/2), in any case; a whole number from 0 to
// 2147483647; any single line of text. Fails with 13 and a message naming
// `key` and what it accepts.
rt::Result<std::string> ParseInput(const std::string& key, OptionKind kind, std::string_view text);

}  // namespace sentrune
