#include "portable/sltg_builder.h"

#include "portable/sltg_builder_block.h"
#include "portable/sltg_builder_parts.h"

namespace sentrune::portable::testing {
namespace vt = platform::vt;

SltgType Vt(uint16_t code) { return SltgType{code, {}, {}, {}, false}; }
SltgType Ptr(SltgType element, bool implicit) {
  return SltgType{vt::kPtr, {std::move(element)}, {}, {}, implicit};
}
SltgType SafeArray(SltgType element) { return SltgType{vt::kSafeArray, {std::move(element)}, {}, {}, false}; }
SltgType CArray(SltgType element, std::vector<uint32_t> dims) {
  return SltgType{vt::kCArray, {std::move(element)}, {}, std::move(dims), false};
}
SltgType Local(int32_t index) { return SltgType{vt::kUserDefined, {}, SltgRef{index, -1, 0}, {}, false}; }
SltgType Imported(int32_t import, int32_t typeNumber) {
  return SltgType{vt::kUserDefined, {}, SltgRef{-1, import, typeNumber}, {}, false};
}

namespace {
using sltg_writer::HelpEncoder;
using sltg_writer::kNone;
using sltg_writer::NameTable;
using sltg_writer::Out;

std::string IndexName(size_t index) {
  std::string name(10, 'A');
  for (size_t i = 0; i < name.size() && index; ++i, index /= 26) {
    name[i] = static_cast<char>('A' + index % 26);
  }
  return name;
}

// The library block: its record, the type info list, the help tree and the
// name table.
std::vector<uint8_t> LibraryBlock(const SltgLibrary& library, NameTable& names,
                                  HelpEncoder& help) {
  Out out;
  out.U16(0x51CC);
  out.U16(3);
  out.U16(names.Add(library.name));
  out.U16(kNone);
  out.Counted(library.help);
  out.U16(kNone);  // help file
  out.U32(0);
  out.U16(library.sysKind);
  out.U16(0x409);
  out.U32(0);
  out.U16(0);
  out.U16(library.major);
  out.U16(library.minor);
  out.Guid(library.guid);
  out.Fill(0x40, 0xFF);
  out.U16(static_cast<uint16_t>(library.types.size()));
  for (size_t i = 0; i < library.types.size(); ++i) {
    const SltgTypeInfo& type = library.types[i];
    out.Counted(IndexName(i));
    out.U16(kNone);
    out.U16(kNone);
    out.U16(names.Add(type.name));
    const auto helpBits = type.help.empty() ? std::vector<uint8_t>() : help.Encode(type.help);
    out.U16(static_cast<uint16_t>(helpBits.size()));
    out.Append(helpBits);
    out.U16(kNone);
    out.U32(0);
    out.U16(kNone);
    out.Guid(type.guid);
    out.U16(static_cast<uint16_t>(type.kind));
  }
  const size_t nameTableField = out.size();
  out.U32(0);
  out.U16(help.longest());
  out.U32(static_cast<uint32_t>(help.tree().size()));
  out.Append(help.tree());
  out.Fill32(nameTableField, static_cast<uint32_t>(out.size()));
  if (library.longNameTableHeader) {
    out.U16(0x0200);
    out.Fill(10 + 0x20, 0);
  } else {
    for (uint16_t word : {0xFFFF, 1, 2, 0xFF00, 0xFFFF, 0xFFFF}) out.U16(word);
  }
  out.Fill(0x200, 0xFF);
  out.U32(static_cast<uint32_t>(names.bytes().size()));
  out.Append(names.bytes());
  out.U32(0x01FFFF01);
  out.U32(0);
  return out.bytes();
}

}  // namespace

std::vector<uint8_t> BuildSltg(const SltgLibrary& library) {
  NameTable names;
  names.Add(library.name);  // writers put it first, and some readers rely on that
  HelpEncoder help(library);
  std::vector<std::vector<uint8_t>> blocks;
  for (const SltgTypeInfo& type : library.types) {
    blocks.push_back(TypeInfoBlock(library, type, names, help));
  }
  blocks.push_back(LibraryBlock(library, names, help));

  const size_t count = blocks.size();
  auto slot = [&](size_t position) { return library.reversedDirectory ? count - 1 - position : position; };
  Out out;
  out.Text("SLTG");
  out.U16(static_cast<uint16_t>(count + 1));
  out.U16(9);
  out.U16(static_cast<uint16_t>(13 + 11 * (count - 1)));
  out.U16(static_cast<uint16_t>(slot(0) + 1));
  out.Guid("{000204FF-0000-0000-C000-000000000046}");
  out.U32(0x44);
  out.U32(0xFFFF0000);
  std::vector<std::vector<uint8_t>> entries(count);
  for (size_t position = 0; position < count; ++position) {
    Out entry;
    entry.U32(static_cast<uint32_t>(blocks[position].size()));
    entry.U16(static_cast<uint16_t>(position + 1 < count ? 13 + 11 * position : 9));
    entry.U16(static_cast<uint16_t>(position + 1 < count ? slot(position + 1) + 1 : 0));
    entries[slot(position)] = entry.bytes();
  }
  for (const auto& entry : entries) out.Append(entry);
  out.Text(std::string_view("\1CompObj\0dir\0", 13));
  for (size_t i = 0; i + 1 < count; ++i) {
    out.Text(IndexName(i));
    out.U8(0);
  }
  out.Fill(9, 0);
  for (const auto& block : blocks) out.Append(block);
  // What writers put after the library block; no reader needs it.
  for (uint16_t word : {1, 0xFFFE, 0x0A03, 0, 0xFFFF, 0xFFFF}) out.U16(word);
  out.Guid(library.guid);
  out.U32(8);
  out.Text(std::string_view("TYPELIB", 8));
  for (uint16_t word : {0xFFFF, 0xFFFF, 0x0200, 0, 0, 0}) out.U16(word);
  out.Fill(16, 0);
  return out.bytes();
}

}  // namespace sentrune::portable::testing

