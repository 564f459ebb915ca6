#include "settings/option_input.h"

#include <algorithm>

#include "runtime/text.h"
#include "runtime/vb_convert.h"

namespace sentrune {
namespace {

rt::VbError Refusal(const std::string& key, std::string_view accepted, std::string_view text) {
  return rt::MakeError(rt::errnum::kTypeMismatch, "Option \"" + key + "\" accepts " +
                                                      std::string(accepted) + ", not \"" +
                                                      std::string(text) + "\".",
                       "frmOptions");
}

bool Is(std::string_view text, std::string_view word, std::string_view digit) {
  return rt::IEquals(text, word) || text == digit;
}

}  // namespace

int16_t ConfigTypeOf(OptionKind kind) {
  switch (kind) {
    case OptionKind::kYesNo: return kConfigYesNo;
    case OptionKind::kThreeWay: return kConfigThreeWay;
    case OptionKind::kFolder: return kConfigFolder;
    case OptionKind::kText:
    case OptionKind::kWholeNumber: break;
  }
  return kConfigText;
}

std::string DisplayText(OptionKind kind, std::string_view stored) {
  if (kind == OptionKind::kYesNo) return rt::CBool(stored).value_or(false) ? "Yes" : "No";
  if (kind == OptionKind::kThreeWay) {
    // A step runs when its value is above 0 and asks only at 2.
    const int16_t value = rt::CInt(stored).value_or(0);
    return value == 2 ? "Prompt" : value > 0 ? "Yes" : "No";
  }
  return std::string(stored);
}

std::string StoredValue(int16_t configType, std::string_view cell) {
  if (configType == kConfigYesNo) return cell == "Yes" ? "1" : "0";
  if (configType == kConfigThreeWay) return cell == "Prompt" ? "2" : cell == "Yes" ? "1" : "0";
  return std::string(cell);
}

rt::Result<std::string> ParseInput(const std::string& key, OptionKind kind, std::string_view text) {
  const std::string word = rt::Trim(text);
  switch (kind) {
    case OptionKind::kYesNo:
      if (Is(word, "Yes", "1")) return std::string("Yes");
      if (Is(word, "No", "0")) return std::string("No");
      return Refusal(key, "Yes or No (or 1, 0)", text);
    case OptionKind::kThreeWay:
      if (Is(word, "Yes", "1")) return std::string("Yes");
      if (Is(word, "No", "0")) return std::string("No");
      if (Is(word, "Prompt", "2")) return std::string("Prompt");
      return Refusal(key, "Yes, No or Prompt (or 1, 0, 2)", text);
    case OptionKind::kWholeNumber: {
      const bool digits = !word.empty() && std::all_of(word.begin(), word.end(),
                                                       [](char c) { return c >= '0' && c <= '9'; });
      if (!digits || !rt::CLng(word)) return Refusal(key, "a whole number from 0 to 2147483647", text);
      return word;
    }
    case OptionKind::kText:
    case OptionKind::kFolder:
      // One INI line holds one value: a line break would split it.
      if (text.find_first_of("\r\n") != std::string_view::npos)
        return Refusal(key, "a single line of text", "<text with a line break>");
      return std::string(text);
  }
  return std::string(text);
}

}  // namespace sentrune
