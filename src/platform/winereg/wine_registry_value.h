#pragma once
// One value line of a Wine registry file, such as
//   "Name"="text"   @=str(2):"%SystemRoot%"   "Size"=dword:0000000a
//   "Data"=hex:01,02   "List"=hex(7):61,00,00,00,00,00
// read into a value whose data is what Wine stores (text as UTF-16LE with
// its NUL), and written back the way Wine writes it.
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace sentrune::portable::winereg {

struct StoredValue {
  std::string name;  // UTF-8; empty for the default value ("@")
  uint32_t type = 0;
  std::string data;  // bytes as the registry keeps them
};

// A logical line (continuations already joined). Nothing when the line is no
// value line; `why` then says what is wrong with it.
std::optional<StoredValue> ParseValueLine(std::string_view line, std::string& why);

// The line Wine writes for the value, without its line break: text types
// whose data ends in a NUL unit as a quoted string ("..." for REG_SZ,
// str(N):"..." for the others), a 4-byte REG_DWORD as dword:, REG_BINARY as
// hex:, anything else as hex(N):.
std::string RenderValueLine(const StoredValue& value);

}  // namespace sentrune::portable::winereg
