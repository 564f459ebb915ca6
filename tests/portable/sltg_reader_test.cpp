#include "platform/portable/sltg_reader.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>

#include "platform/portable/typelib_projection.h"
#include "portable/sltg_test_support.h"

namespace sentrune::portable::testing {
namespace {
namespace vt = platform::vt;

RawLibrary Read(const SltgLibrary& library) {
  const auto bytes = BuildSltg(library);
  auto result = ReadSltg(bytes);
  EXPECT_TRUE(result.ok()) << (result.ok() ? "" : result.error().description);
  return result.ok() ? std::move(result).value() : RawLibrary{};
}

TEST(SltgReader, DecodesEveryStoredFactOfTheSample) {
  const SltgLibrary sample = SampleLibrary();
  ExpectDecodedAsDescribed(sample, Read(sample));
}

TEST(SltgReader, AcceptsEveryLayoutVariant) {
  SltgLibrary longHeader = SampleLibrary();
  longHeader.longNameTableHeader = true;
  ExpectDecodedAsDescribed(longHeader, Read(longHeader));

  SltgLibrary reversed = SampleLibrary();
  reversed.reversedDirectory = true;
  ExpectDecodedAsDescribed(reversed, Read(reversed));

  SltgLibrary win64 = SampleLibrary();
  win64.sysKind = 3;
  ExpectDecodedAsDescribed(win64, Read(win64));

  SltgLibrary empty;
  empty.name = "Empty";
  ExpectDecodedAsDescribed(empty, Read(empty));
}

TEST(SltgReader, PresentsADualInterfaceAsTheMsftFormatStoresIt) {
  const RawLibrary raw = Read(SampleLibrary());
  const RawTypeInfo& dual = raw.types[kIWidget];
  EXPECT_EQ(dual.kind, TypeKind::kDispatch);
  EXPECT_EQ(dual.flags & 0x40, 0x40);
  ASSERT_EQ(dual.impls.size(), 1u);
  EXPECT_EQ(dual.impls[0].ref.kind, RawRef::Kind::kImported);
  for (const RawFunc& func : dual.funcs) EXPECT_EQ(func.funcKind, 1) << func.name;
  // A pure dispinterface stays one, with dispatch functions.
  EXPECT_EQ(raw.types[kIWidgetEvents].kind, TypeKind::kDispatch);
  EXPECT_EQ(raw.types[kIWidgetEvents].funcs.at(0).funcKind, 4);
}

TEST(SltgReader, ReadsParameterFlagsFromTheTypeWordAndTheOptionalCount) {
  const RawLibrary raw = Read(SampleLibrary());
  const auto& funcs = raw.types[kIWidget].funcs;
  EXPECT_EQ(funcs[0].params[0].flags, 2 | 8);  // [out, retval]
  const auto& resize = funcs[2].params;
  EXPECT_EQ(resize[0].flags, 1);
  EXPECT_EQ(resize[2].flags, 1 | 0x10);  // the one trailing optional parameter
  // Vararg is the count 63: no parameter becomes optional.
  EXPECT_EQ(funcs[5].optionalCount, -1);
  EXPECT_EQ(funcs[5].params[1].flags, 1);
  EXPECT_EQ(funcs[6].params[0].flags, 1 | 4);  // [in, lcid]
  EXPECT_EQ(funcs[6].params[0].name, "_lcid");
  EXPECT_EQ(funcs[6].params[1].name, "");
}

TEST(SltgReader, NamesImportedTypesOnlyWhereTheLibraryIsKnown) {
  const RawLibrary raw = Read(SampleLibrary());
  const RawRef& dispatch = raw.types[kIWidget].impls.at(0).ref;
  EXPECT_EQ(dispatch.importedName, "IDispatch");
  EXPECT_EQ(dispatch.importedGuid, "{00020400-0000-0000-C000-000000000046}");
  const RawRef& foreign = raw.types[kWidget].impls.at(2).ref;
  EXPECT_EQ(foreign.kind, RawRef::Kind::kImported);
  EXPECT_EQ(foreign.importedName, "");
}

TEST(SltgReader, DecodesHelpStringsFromTheSharedWordTree) {
  SltgLibrary library = SampleLibrary();
  library.types[kColors].help = "one";  // a tree of a single word and the end
  library.types[kPoint].help = "x x x y";
  const RawLibrary raw = Read(library);
  EXPECT_EQ(raw.types[kColors].helpString, "one");
  EXPECT_EQ(raw.types[kPoint].helpString, "x x x y");
  EXPECT_EQ(raw.types[kIWidget].funcs[0].helpString, "The name of the widget");
  EXPECT_EQ(raw.helpString, "Widget library \xC2\xA9 2001");
}

TEST(SltgReader, ProjectsTheDualAsItsDispatchView) {
  const platform::TlbLibrary projected = ProjectLibrary(Read(SampleLibrary()));
  const platform::TlbTypeInfo& dual = projected.types.at(kIWidget);
  EXPECT_EQ(dual.kind, "dispatch");
  ASSERT_EQ(dual.functions.size(), 7u + 7u);
  EXPECT_EQ(dual.functions[7].name, "Name");
  EXPECT_EQ(dual.functions[7].type.code, vt::kBstr);  // the [retval] became the return
  EXPECT_TRUE(dual.functions[7].params.empty());
  EXPECT_EQ(dual.functions[8].params.at(0).name, "");
  const platform::TlbTypeInfo& coclass = projected.types.at(kWidget);
  EXPECT_EQ(coclass.defaultInterface, kIWidget);
  EXPECT_EQ(coclass.defaultSource, kIWidgetEvents);
}

// The committed files were written by the test writer and checked with an
// independent dump tool; decoding them guards against the writer and the
// reader drifting together. SENTRUNE_WRITE_FIXTURES=1 rewrites them.
TEST(SltgReader, DecodesTheCommittedFixtures) {
  const std::filesystem::path folder =
      std::filesystem::path(SENTRUNE_SOURCE_DIR) / "tests" / "fixtures" / "sltg";
  struct Fixture {
    const char* file;
    SltgLibrary library;
  };
  SltgLibrary longHeader = SampleLibrary();
  longHeader.longNameTableHeader = true;
  longHeader.reversedDirectory = true;
  const Fixture fixtures[] = {{"sample.tlb", SampleLibrary()}, {"sample-variant.tlb", longHeader}};
  for (const Fixture& fixture : fixtures) {
    SCOPED_TRACE(fixture.file);
    if (std::getenv("SENTRUNE_WRITE_FIXTURES")) {
      const auto bytes = BuildSltg(fixture.library);
      std::ofstream(folder / fixture.file, std::ios::binary)
          .write(reinterpret_cast<const char*>(bytes.data()), static_cast<std::streamsize>(bytes.size()));
    }
    std::ifstream in(folder / fixture.file, std::ios::binary);
    ASSERT_TRUE(in) << "missing fixture";
    const std::vector<uint8_t> bytes((std::istreambuf_iterator<char>(in)), {});
    EXPECT_EQ(bytes, BuildSltg(fixture.library)) << "the writer's output changed";
    auto raw = ReadSltg(bytes);
    ASSERT_TRUE(raw.ok()) << raw.error().description;
    ExpectDecodedAsDescribed(fixture.library, raw.value());
  }
}

}  // namespace
}  // namespace sentrune::portable::testing
