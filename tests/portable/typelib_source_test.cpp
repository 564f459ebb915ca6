#include "platform/portable/typelib_source_portable.h"

#include <gtest/gtest.h>

#include "pe_builder.h"
#include "pe_test_files.h"
#include "platform/portable/pe_image.h"

namespace sentrune::portable {
namespace {

using testing::PeBuilder;
using testing::ToBytes;

const ResourceId kTypeLib = ResourceId::Named("TYPELIB");

// The error number of a load, or 0 with the library's name in `name`.
int32_t LoadNumber(PortableTypeLibSource& source, const std::string& path, std::string* name = nullptr) {
  auto library = source.Load(path);
  if (library.ok()) {
    if (name) *name = library->name;
    return 0;
  }
  // Whatever went wrong, the message says which file it concerns.
  const std::string file = path.substr(0, path.rfind('.'));
  EXPECT_NE(library.error().description.find(file), std::string::npos) << library.error().description;
  return library.error().number;
}

// The MSFT library inside Wine's stdole2.tlb, or nothing when not installed.
std::optional<std::vector<uint8_t>> StdoleLibrary() {
  auto path = testing::WineFile("x86_64", "stdole2.tlb");
  if (!path) return std::nullopt;
  const auto image = testing::ReadHostFile(*path);
  auto parsed = PeImage::Parse(image);
  if (!parsed.ok()) return std::nullopt;
  auto library = parsed->FindResource(kTypeLib, ResourceId::Number(1));
  if (!library) return std::nullopt;
  return std::vector<uint8_t>(library->begin(), library->end());
}

TEST(PortableTypeLibSource, FilesWithoutALibraryAreNamedInTheirErrors) {
  testing::MemoryFiles files;
  files.AddFolder("C:\\lib");
  files.AddFile("C:\\lib\\notes.tlb", ToBytes("MSF not quite"));
  files.AddFile("C:\\lib\\empty.olb", {});
  files.AddFile("C:\\lib\\plain.dll",
                PeBuilder().Add(ResourceId::Number(kRtVersion), ResourceId::Number(1), ToBytes("v")).Build());
  files.AddFile("C:\\lib\\junk.dll", PeBuilder().Add(kTypeLib, ResourceId::Number(1), ToBytes("JUNK")).Build());
  auto cut = PeBuilder().Add(kTypeLib, ResourceId::Number(1), ToBytes("MSFT")).Build();
  cut.resize(0x100);
  files.AddFile("C:\\lib\\cut.dll", cut);
  files.AddFile("C:\\lib\\short.tlb", ToBytes("MSFT"));

  PortableTypeLibSource source(files);
  EXPECT_EQ(LoadNumber(source, "C:\\lib\\missing.tlb"), rt::errnum::kFileNotFound);
  EXPECT_EQ(LoadNumber(source, "C:\\nowhere\\missing.dll\\2"), rt::errnum::kFileNotFound);
  EXPECT_EQ(LoadNumber(source, "C:\\lib\\notes.tlb"), rt::errnum::kNotATypeLibrary);
  EXPECT_EQ(LoadNumber(source, "C:\\lib\\empty.olb"), rt::errnum::kNotATypeLibrary);
  EXPECT_EQ(LoadNumber(source, "C:\\lib\\plain.dll"), rt::errnum::kNotATypeLibrary);
  EXPECT_EQ(LoadNumber(source, "C:\\lib\\junk.dll\\2"), rt::errnum::kNotATypeLibrary);
  // There is a library, but it cannot be decoded.
  EXPECT_EQ(LoadNumber(source, "C:\\lib\\junk.dll"), rt::errnum::kCantLoadTypeLibrary);
  EXPECT_EQ(LoadNumber(source, "C:\\lib\\cut.dll"), rt::errnum::kCantLoadTypeLibrary);
  EXPECT_EQ(LoadNumber(source, "C:\\lib\\short.tlb"), rt::errnum::kCantLoadTypeLibrary);
}

TEST(PortableTypeLibSource, TrailingNumberSelectsTheResourceOnlyAfterAFile) {
  auto stdole = StdoleLibrary();
  if (!stdole) GTEST_SKIP() << "Wine's stdole2.tlb is not installed";
  testing::MemoryFiles files;
  files.AddFolder("C:\\lib");
  files.AddFolder("C:\\lib\\7");
  files.AddFile("C:\\lib\\multi.dll", PeBuilder(PeBuilder::Arch::kPe32)
                                          .Add(kTypeLib, ResourceId::Number(1), ToBytes("JUNK"))
                                          .Add(kTypeLib, ResourceId::Number(3), *stdole)
                                          .Build());
  // A file whose name is all digits, in a folder: the number is its name.
  files.AddFile("C:\\lib\\7\\12", *stdole);

  PortableTypeLibSource source(files);
  std::string name;
  EXPECT_EQ(LoadNumber(source, "C:\\lib\\multi.dll\\3", &name), 0);
  EXPECT_EQ(name, "stdole");
  EXPECT_EQ(LoadNumber(source, "C:\\lib\\multi.dll\\003"), 0);
  EXPECT_EQ(LoadNumber(source, "C:\\lib\\multi.dll"), rt::errnum::kCantLoadTypeLibrary);
  EXPECT_EQ(LoadNumber(source, "C:\\lib\\multi.dll\\4"), rt::errnum::kNotATypeLibrary);
  EXPECT_EQ(LoadNumber(source, "C:\\lib\\multi.dll\\99999999999999999999"), rt::errnum::kNotATypeLibrary);
  EXPECT_EQ(LoadNumber(source, "C:\\lib\\7\\12", &name), 0);
  EXPECT_EQ(name, "stdole");
}

TEST(PortableTypeLibSource, RecognisesTheContentWhateverTheExtension) {
  auto stdole = StdoleLibrary();
  auto image = testing::WineFile("x86_64", "stdole2.tlb");
  if (!stdole || !image) GTEST_SKIP() << "Wine's stdole2.tlb is not installed";
  testing::MemoryFiles files;
  files.AddFile("C:\\lib\\bare.txt", *stdole);
  files.AddFile("C:\\lib\\wrapped.tlb", PeBuilder().Add(kTypeLib, ResourceId::Number(1), *stdole).Build());
  files.AddFile("C:\\lib\\stdole2.tlb", testing::ReadHostFile(*image));

  PortableTypeLibSource source(files);
  for (const char* path : {"C:\\lib\\bare.txt", "C:\\lib\\wrapped.tlb", "C:\\lib\\stdole2.tlb"}) {
    std::string name;
    EXPECT_EQ(LoadNumber(source, path, &name), 0) << path;
    EXPECT_EQ(name, "stdole") << path;
  }
}

}  // namespace
}  // namespace sentrune::portable
