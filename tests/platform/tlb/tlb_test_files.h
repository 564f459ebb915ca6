#pragma once
// The type library fixtures of tests/fixtures, decoded and projected, and
// every stored fact of a decoded library.
#include <gtest/gtest.h>

#include <sstream>
#include <string>
#include <string_view>
#include <vector>

#include "platform/tlb/msft_reader.h"
#include "platform/tlb/typelib_projection.h"
#include "support/host_files.h"
#include "support/robustness.h"

namespace sentrune::testing {

using Decoder = rt::Result<portable::RawLibrary> (*)(std::span<const uint8_t>);

// `name` is relative to tests/fixtures ("typelib/widgets.tlb").
inline portable::RawLibrary DecodeFixture(std::string_view name, Decoder decode = portable::ReadMsft) {
  auto library = decode(FixtureFile(name));
  if (library.ok()) return std::move(library).value();
  ADD_FAILURE() << name << ": " << library.error().description;
  return {};
}

template <typename... Parts>
std::string Join(const Parts&... parts) {
  std::ostringstream out;
  ((out << parts << '|'), ...);
  return out.str();
}
// "local 3", or an import's name, kind (-1 when unknown), GUID, position
// and library (file and GUID).
inline std::string Text(const portable::RawRef& r) {
  using Kind = portable::RawRef::Kind;
  if (r.kind != Kind::kImported) return r.kind == Kind::kLocal ? "local " + std::to_string(r.localIndex) : "none";
  return Join("import " + r.importedName, r.importedKind ? static_cast<int>(*r.importedKind) : -1, r.importedGuid,
              r.importedIndex, r.importedLibrary, r.importedLibraryGuid);
}
// A descriptor: its VT, then what it refers to in <>, a fixed array's
// bounds in [] and its element in ().
inline std::string Text(const portable::RawLibrary& raw, int32_t index) {
  if (index < 0 || static_cast<size_t>(index) >= raw.typeDescs.size()) return "-";
  const portable::RawTypeDesc& d = raw.typeDescs[static_cast<size_t>(index)];
  std::string bounds;
  for (const uint32_t count : d.bounds) bounds += (bounds.empty() ? "[" : ",") + std::to_string(count);
  return std::to_string(d.vt) + (d.ref.kind == portable::RawRef::Kind::kNone ? "" : "<" + Text(d.ref) + ">") +
         (bounds.empty() ? "" : bounds + "]") + (d.element < 0 ? "" : "(" + Text(raw, d.element) + ")");
}
inline std::string Text(const std::optional<platform::TlbValue>& v) {
  return v ? std::to_string(v->vt) + ":" + Join(v->integer, v->real, v->text) : "";
}

// Every stored fact of a decoded library, one line per item.
inline std::vector<std::string> Facts(const portable::RawLibrary& raw) {
  std::vector<std::string> lines = {Join(raw.name, raw.helpString, raw.guid, raw.majorVersion, raw.minorVersion)};
  for (const portable::RawTypeInfo& t : raw.types) {
    lines.push_back(Join(t.name, t.helpString, t.guid, +static_cast<int>(t.kind), t.flags, t.vtableSize,
                         +t.pointerSize, Text(raw, t.aliasType)));
    for (const portable::RawImpl& impl : t.impls) lines.push_back(Join(" impl", Text(impl.ref), impl.flags));
    for (const portable::RawFunc& f : t.funcs) {
      lines.push_back(Join(" func", f.memberId, f.name, f.helpString, +f.funcKind, +f.invokeKind, f.flags,
                           f.vtableOffset, f.optionalCount, Text(raw, f.returnType)));
      for (const portable::RawParam& p : f.params) {
        lines.push_back(Join("  ", p.name, p.flags, Text(raw, p.type), Text(p.defaultValue)));
      }
    }
    for (const portable::RawVar& v : t.vars) {
      lines.push_back(
          Join(" var", v.memberId, v.name, v.helpString, +v.varKind, v.flags, Text(raw, v.type), Text(v.value)));
    }
  }
  return lines;
}

// A robustness reader over a decoder: decodes and projects, and sums up
// every stored fact; a refusal must be the "can't load" error with a reason.
inline Reader DecodeAndProject(Decoder decode) {
  return [decode](std::span<const uint8_t> bytes) -> std::optional<std::string> {
    auto raw = decode(bytes);
    if (!raw.ok()) {
      EXPECT_EQ(raw.error().number, rt::errnum::kCantLoadTypeLibrary);
      EXPECT_FALSE(raw.error().description.empty());
      return std::nullopt;
    }
    EXPECT_EQ(portable::ProjectLibrary(*raw).types.size(), raw->types.size());
    std::string facts;
    for (const std::string& line : Facts(*raw)) facts += line + "\n";
    return facts;
  };
}

}  // namespace sentrune::testing
