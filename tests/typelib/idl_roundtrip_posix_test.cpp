// The IDL renderer checked the only way that matters: widl, a program of the
// POSIX host, compiles it back into a library whose model equals the original's.
#include <cstdlib>
#include <filesystem>

#include <gtest/gtest.h>

#include "runtime/text.h"
#include "support/temp_folder.h"
#include "typelib/typelib_world.h"
#include "typelib/tlb_idl.h"

namespace sentrune::testing {
namespace {

namespace fs = std::filesystem;

// widl finds stdole2.tlb only in a folder given with -L; libwine ships it.
std::string StdoleFolder() {
  const std::string tlb = CommandOutput("dpkg -L libwine 2>/dev/null | grep '/stdole2.tlb$' | head -n 1");
  return tlb.empty() ? "" : fs::path(tlb).parent_path().string();
}

class IdlRoundTrip : public ::testing::Test {
 protected:
  void SetUp() override {
    if (std::system("widl -V >/dev/null 2>&1") != 0) GTEST_SKIP() << "widl is not installed";
    stdole_ = StdoleFolder();
    if (stdole_.empty()) GTEST_SKIP() << "stdole2.tlb of libwine is not installed";
  }

  // Compiles the IDL; the output file's bytes, or "" with widl's complaint logged.
  std::string Compile(const std::string& idl) {
    const std::string output = dir_ / "roundtrip.tlb";
    fs::remove(output);
    dir_.Write("roundtrip.idl", rt::Utf8ToCp1252(idl));
    const std::string complaints = CommandOutput("cd '" + dir_.path() + "' && widl -t --win32 -L '" + stdole_ +
                                                 "' -o roundtrip.tlb roundtrip.idl 2>&1");
    if (!fs::exists(output)) ADD_FAILURE() << complaints << "\n" << idl;
    return fs::exists(output) ? ReadHostFile(output) : "";
  }

  // The library at `path` through IDL and widl gives the same model, minor
  // differences included. False when the library cannot be written as IDL,
  // which it must then say by name.
  bool RoundTrip(FixtureWorld& world, const std::string& path) {
    SCOPED_TRACE(path);
    const rt::Result<platform::TlbLibrary> lib = world.typelibs.Load(path);
    EXPECT_TRUE(lib.ok()) << lib.error().description;
    const rt::Result<std::string> idl = lib.ok() ? TypeLibIdl(*lib) : rt::Result<std::string>(lib.error());
    if (!idl.ok()) {
      EXPECT_NE(idl.error().description.find(" uses a type IDL cannot name"), std::string::npos);
      return false;
    }
    const std::string bytes = Compile(*idl);
    if (bytes.empty()) return true;
    world.env.Files().AddFile("C:\\F\\roundtrip.tlb", bytes);
    clsParseTLB before(world.state), after(world.state);
    EXPECT_EQ(before.ParseTypeLib(path), 0);
    EXPECT_EQ(after.ParseTypeLib("C:\\F\\roundtrip.tlb"), 0);
    for (const auto& d : before.Compare(after, false, true)) ADD_FAILURE() << d;
    EXPECT_EQ(before.Classes().size(), after.Classes().size());
    return true;
  }

  std::string stdole_;
  TempFolder dir_;
};

TEST_F(IdlRoundTrip, FixturesComeBackWithTheSameModel) {
  FixtureWorld world;
  for (const char* name : {"widgets.tlb", "widgets64.tlb", "shapes.tlb", "widgets.dll"})
    EXPECT_TRUE(RoundTrip(world, world.Fixture(name))) << name;
}

// Components the VB6 compiler built; those naming types of other libraries
// cannot be written as IDL and must say so.
TEST_F(IdlRoundTrip, CorpusComponentsComeBackOrAreRefusedByName) {
  const std::vector<fs::path> files = CorpusFiles({".dll", ".ocx", ".cmp"});
  if (files.empty()) GTEST_SKIP() << "no corpus";
  FixtureWorld world;
  int written = 0;
  for (const fs::path& file : files) written += RoundTrip(world, world.AddHostFile(file, file.filename().string()));
  EXPECT_GT(written, 0);
}

}  // namespace
}  // namespace sentrune::testing
