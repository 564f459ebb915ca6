#include "typelib/tlb_render.h"

#include <cstdio>
#include <string>

#include "runtime/datetime.h"
#include "runtime/text.h"

namespace sentrune {
namespace {

namespace vt = platform::vt;

const char* BaseTypeName(unsigned base) {
  switch (base) {
    case 2: case 22: return "Integer";
    case 3: case 10: return "Long";
    case 4: return "Single";
    case 5: return "Double";
    case 6: return "Currency";
    case 7: return "Date";
    case 8: case 30: case 31: return "String";
    case 9: return "Object";
    case 11: return "Boolean";
    case 12: return "Variant";
    case 13: case 20: return "Unknown";
    case 14: return "Decimal";
    case 17: return "Byte";
    case 19: return "ULong";
    case 23: return "UInt";
    case 24: return "Any";
    case 25: return "HRESULT";
    case 27: return "SafeArray";
    case 72: return "CLSID";
    default: return nullptr;
  }
}

std::string UnsupportedName(unsigned base) {
  std::string name = "<Unsupported Variant Type";
  if (base == 18) name += "(VT_UI2)";
  if (base == 21) name += "(VT_UI8)";
  if (base == 29) name += "(VT_USERDEFINED)";
  return name + ">";
}

// Declarations are built by appending into one buffer: a model renders every
// member and parameter of a library, and temporaries per piece cost more than
// the reading itself.
void AppendAsClause(std::string& out, bool isArray, std::string_view name) {
  out += isArray ? "() As " : " As ";
  out += name;
}

void AppendTypeText(std::string& out, const platform::TlbType& type) {
  const bool isArray = (type.code & vt::kArrayFlag) != 0;
  const unsigned base = type.code & 0xFF;
  if (base == 0 && !type.userTypeName.empty()) return AppendAsClause(out, isArray, type.userTypeName);
  const char* name = BaseTypeName(base);
  if (name) return AppendAsClause(out, isArray, name);
  AppendAsClause(out, isArray, UnsupportedName(base));
}

void AppendUnmangled(std::string& out, std::string_view name) {
  if (name.starts_with("_B_var_")) {
    out += name.substr(7);
  } else if (name.starts_with("_B_str_")) {
    out += name.substr(7);
    out += '$';
  } else {
    out += name;
  }
}

std::string Printf(const char* format, double value) {
  char buffer[64];
  std::snprintf(buffer, sizeof buffer, format, value);
  return buffer;
}

// Scaled by 10000 in the VARIANT; VB prints it without trailing zeros.
std::string CurrencyText(int64_t scaled) {
  const bool negative = scaled < 0;
  const uint64_t magnitude = negative ? 0 - static_cast<uint64_t>(scaled) : static_cast<uint64_t>(scaled);
  std::string text = std::to_string(magnitude / 10000);
  std::string fraction = std::to_string(magnitude % 10000 + 10000).substr(1);
  while (!fraction.empty() && fraction.back() == '0') fraction.pop_back();
  if (!fraction.empty()) text += "." + fraction;
  return negative ? "-" + text : text;
}

// The en-US short date, with the long time only when there is a time.
std::string DateText(double serial) {
  const rt::DateTime t = rt::DateTime::FromSerial(serial);
  std::string text = std::to_string(t.month) + "/" + std::to_string(t.day) + "/" + std::to_string(t.year);
  if (!t.HasTime()) return text;
  char buffer[32];
  const int hour12 = t.hour % 12 == 0 ? 12 : t.hour % 12;
  std::snprintf(buffer, sizeof buffer, " %d:%02d:%02d %s", hour12, t.minute, t.second,
                t.hour < 12 ? "AM" : "PM");
  return text + buffer;
}

// VB strings are UTF-16: a character outside the BMP is two code units.
std::u16string ToCodeUnits(std::string_view utf8) {
  std::u16string units;
  for (char32_t c : rt::ToCodePoints(utf8)) {
    if (c < 0x10000) {
      units.push_back(static_cast<char16_t>(c));
    } else {
      c -= 0x10000;
      units.push_back(static_cast<char16_t>(0xD800 + (c >> 10)));
      units.push_back(static_cast<char16_t>(0xDC00 + (c & 0x3FF)));
    }
  }
  return units;
}

void AppendParameter(std::string& out, const platform::TlbParam& param) {
  if (param.optional || param.hasDefault) out += "Optional ";
  if ((param.type.code & vt::kByRefFlag) == 0) out += "ByVal ";
  out += param.name;
  AppendTypeText(out, param.type);
  if (param.hasDefault) {
    out += " = ";
    out += DefaultValueText(param.defaultValue);
  }
}

void AppendParameterList(std::string& out, const platform::TlbMember& member) {
  const auto& params = member.params;
  if (params.empty()) {
    out += "()";
    return;
  }
  // The value of a Let is written as "RHS" with its type, whatever its name.
  const bool rhs = member.invokeKind == 4;
  const size_t ordinary = rhs ? params.size() - 1 : params.size();
  for (size_t i = 0; i < ordinary; ++i) {
    out += i == 0 ? "(" : ", ";
    AppendParameter(out, params[i]);
  }
  if (rhs) {
    out += ordinary == 0 ? "(RHS " : ", RHS";
    AppendTypeText(out, params.back().type);
  }
  out += ')';
}

}  // namespace

std::string sfncTranslateType(uint16_t code) {
  std::string text;
  AppendTypeText(text, platform::TlbType{code, {}});
  return text;
}

std::string TypeText(const platform::TlbType& type) {
  std::string text;
  AppendTypeText(text, type);
  return text;
}

std::string sfncGetMemberType(int invokeKind, const platform::TlbType& returnType) {
  switch (invokeKind) {
    case 0: return "Const";
    case 1: return returnType.code == vt::kVoid || returnType.code == vt::kHresult ? "Sub" : "Function";
    case 2: return "Property Get";
    case 4: return "Property Let";
    case 8: return "Property Set";
    case 16: return "Event";
    default: return "";
  }
}

std::string UnmangleName(std::string_view name) {
  std::string text;
  AppendUnmangled(text, name);
  return text;
}

std::string sfncParseForNonPrintable(std::string_view text) {
  std::string out;
  bool first = true;
  bool inRun = false;
  for (char16_t unit : ToCodeUnits(text)) {
    if (unit >= 32 && unit <= 126 && unit != '"') {
      if (!inRun) out += first ? "\"" : "& \"";
      inRun = true;
      out += static_cast<char>(unit);
    } else {
      if (inRun) {
        out += "\" & Chr$(";
      } else {
        out += first ? "Chr$(" : "& Chr$(";
      }
      inRun = false;
      out += std::to_string(unit) + ") ";
    }
    first = false;
  }
  if (inRun) out += "\"";
  return first ? "\"\"" : out;
}

std::string DefaultValueText(const platform::TlbValue& value) {
  switch (value.vt) {
    case vt::kEmpty: case vt::kNull: return "";
    case vt::kBstr: case vt::kLpStr: case vt::kLpWStr: return sfncParseForNonPrintable(value.text);
    case vt::kDispatch: case vt::kUnknown: return "Nothing";
    case vt::kBool: return value.integer != 0 ? "True" : "False";
    case vt::kR4: return Printf("%.7G", static_cast<float>(value.real));
    case vt::kR8: return Printf("%.15G", value.real);
    case vt::kCy: return CurrencyText(value.integer);
    case vt::kDate: return DateText(value.real);
    case vt::kError: return std::to_string(static_cast<int32_t>(value.integer));
    case vt::kUI1: case vt::kUI2: case vt::kUI4: case vt::kUI8: case vt::kUInt:
      return std::to_string(static_cast<uint64_t>(value.integer));
    default: return std::to_string(value.integer);
  }
}

std::string MemberDeclaration(const platform::TlbMember& member) {
  const std::string kind = sfncGetMemberType(member.invokeKind, member.type);
  std::string text;
  text.reserve(kind.size() + member.name.size() + 32 * member.params.size() + 24);
  text += kind;
  text += ' ';
  AppendUnmangled(text, member.name);
  AppendParameterList(text, member);
  if (kind == "Function" || kind == "Property Get") AppendTypeText(text, member.type);
  // Deliberately blunt: it also cuts "Const" out of names.
  if (member.invokeKind == 0) text = rt::Replace(text, "Const", "");
  return text;
}

std::string sfncStripScopeDefAndHelp(std::string_view text, std::string_view scope) {
  return std::string(StripScopeDefAndHelpView(text, scope));
}

std::string_view StripScopeDefAndHelpView(std::string_view text, std::string_view scope) {
  // A text that starts with the scope as written needs no folded copy.
  const size_t at = text.starts_with(scope) ? 0 : rt::LCase(text).find(rt::LCase(scope));
  std::string_view rest = TrimBlanks(at == std::string::npos ? text : text.substr(at + scope.size()));
  const size_t comment = rest.find('\'');
  if (comment != std::string::npos) rest = TrimBlanks(rest.substr(0, comment));
  return rest;
}

std::string_view TrimBlanks(std::string_view text) {
  const size_t first = text.find_first_not_of(' ');
  if (first == std::string_view::npos) return {};
  return text.substr(first, text.find_last_not_of(' ') - first + 1);
}

}  // namespace sentrune
