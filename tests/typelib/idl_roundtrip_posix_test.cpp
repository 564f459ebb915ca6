// The IDL renderer checked the only way that matters: widl, a program of the
// POSIX host, compiles it back into a library whose model equals the
// original's, minor differences included. The libraries that types the IDL
// imports come from are stand-ins where the host does not have them: a
// library with the imported one's GUID whose types have the names the IDL
// gives them.
#include <cstdlib>
#include <filesystem>
#include <map>
#include <set>

#include <gtest/gtest.h>

#include "runtime/text.h"
#include "support/host_addin.h"
#include "support/host_files.h"
#include "support/temp_folder.h"
#include "typelib/tlb_idl.h"
#include "typelib/typelib_world.h"
#include "typelib/wine_libraries.h"

namespace sentrune::testing {
namespace {

namespace fs = std::filesystem;
namespace vt = platform::vt;

// Debian's wine64-tools installs widl as widl-stable, and in Wine's folder.
std::string WidlProgram() {
  for (const char* name : {"widl", "widl-stable", "/usr/lib/wine/widl"})
    if (std::system((std::string(name) + " -V >/dev/null 2>&1").c_str()) == 0) return name;
  return "";
}

// widl finds stdole2.tlb only in a folder given with -L; libwine ships it.
std::string StdoleFolder() {
  const std::string tlb = CommandOutput("dpkg -L libwine 2>/dev/null | grep '/stdole2.tlb$' | head -n 1");
  return tlb.empty() ? "" : fs::path(tlb).parent_path().string();
}

// The imported types without a name that the library's members use, by the
// file of their library.
std::map<std::string, std::vector<platform::TlbImport>> UnnamedImports(const platform::TlbLibrary& lib) {
  std::map<std::string, std::vector<platform::TlbImport>> imports;
  const auto add = [&](const platform::TlbType& type) {
    if ((type.code & 0xFF) != vt::kUserDefined || !type.imported) return;
    imports[type.imported->library].push_back(*type.imported);
  };
  for (const platform::TlbTypeInfo& info : lib.types) {
    for (const platform::TlbMember& f : info.functions) {
      add(f.type);
      for (const platform::TlbParam& p : f.params) add(p.type);
    }
    for (const platform::TlbMember& v : info.variables) add(v.type);
  }
  return imports;
}

platform::TlbLibrary StandIn(const std::vector<platform::TlbImport>& types) {
  platform::TlbLibrary lib = tlb::Library("StandIn", types.front().libraryGuid);
  std::set<std::string> names;
  for (const platform::TlbImport& type : types) {
    const std::string name = IdlImportName(type);
    if (!names.insert(name).second) continue;
    platform::TlbTypeInfo info = tlb::TypeInfo(name, type.kind.empty() ? "record" : type.kind, type.guid);
    // widl takes no enumeration or record without members.
    if (info.kind == "enum") info.variables = {tlb::Constant(name + "_0", 0)};
    if (info.kind == "record") info.variables = {tlb::Field("placeholder", tlb::Type(vt::kI4))};
    lib.types.push_back(std::move(info));
  }
  return lib;
}

class IdlRoundTrip : public ::testing::Test {
 protected:
  void SetUp() override {
    widl_ = WidlProgram();
    if (widl_.empty()) GTEST_SKIP() << "widl is not installed";
    stdole_ = StdoleFolder();
    if (stdole_.empty()) GTEST_SKIP() << "stdole2.tlb of libwine is not installed";
  }

  // Compiles the IDL into `output` of the work folder, where it may import
  // from; false, with widl's complaint, when widl writes nothing.
  bool Compile(const std::string& idl, const std::string& output) {
    dir_.Write("compiled.idl", rt::Utf8ToCp1252(idl));
    const std::string complaints = CommandOutput("cd '" + dir_.path() + "' && " + widl_ + " -t --win32 -L '" +
                                                 stdole_ + "' -L . -o '" + output + "' compiled.idl 2>&1");
    const bool written = fs::exists(dir_ / output);
    if (written) return true;
    ADD_FAILURE() << complaints << "\n" << idl;
    return false;
  }

  // Rebuilds `lib` from its IDL (as rebuilt_) and compares the models;
  // `original` reads it.
  void ExpectRoundTrip(const platform::TlbLibrary& lib, clsParseTLB& original) {
    const rt::Result<std::string> idl = TypeLibIdl(lib);
    ASSERT_TRUE(idl.ok()) << idl.error().description;
    for (const auto& [library, types] : UnnamedImports(lib)) {
      const rt::Result<std::string> standIn = TypeLibIdl(StandIn(types));
      ASSERT_TRUE(standIn.ok() && Compile(*standIn, library)) << library;
    }
    const std::string rebuilt = "rebuilt" + std::to_string(++count_) + ".tlb";
    ASSERT_TRUE(Compile(*idl, rebuilt));
    rebuilt_ = host_.OnDrive(dir_ / rebuilt);
    clsParseTLB after(host_.state);
    ASSERT_EQ(after.ParseTypeLib(rebuilt_), 0);
    for (const std::string& difference : original.Compare(after, false, true)) ADD_FAILURE() << difference;
  }

  // The library of a host file comes back, or is refused with `refusal`.
  void ExpectRoundTrip(const fs::path& file, const std::string& refusal = "") {
    SCOPED_TRACE(file.string());
    const std::string path = host_.OnDrive(file);
    const rt::Result<platform::TlbLibrary> lib = host_.typelibs.Load(path);
    ASSERT_TRUE(lib.ok()) << lib.error().description;
    if (!refusal.empty()) {
      const rt::Result<std::string> idl = TypeLibIdl(*lib);
      EXPECT_EQ(idl.ok() ? "written" : idl.error().description, refusal);
      return;
    }
    clsParseTLB original(host_.state);
    ASSERT_EQ(original.ParseTypeLib(path), 0);
    ExpectRoundTrip(*lib, original);
  }

  std::string widl_, stdole_;
  TempFolder home_, dir_;
  HostAddin host_{home_.path(), 'Z', "/"};
  int count_ = 0;
  std::string rebuilt_;
};

TEST_F(IdlRoundTrip, FixturesComeBackWithTheSameModel) {
  for (const char* name : {"typelib/widgets.tlb", "typelib/widgets64.tlb", "typelib/shapes.tlb", "typelib/widgets.dll"})
    ExpectRoundTrip(FixtureFolder() / name);
  // The system's writer stores a parameter without a name; widl names them all.
  ExpectRoundTrip(FixtureFolder() / "sltg/sample.tlb",
                  "IWidget.Locale has parameter 1 without a name, which widl cannot store");
}

// Types of a library the host does not have, named or not, fixed arrays and
// the defaults widl stores as no value or as bits.
TEST_F(IdlRoundTrip, ImportsFixedArraysAndOddDefaultsComeBack) {
  const auto imported = [](const char* kind, const char* guid) {
    platform::TlbType type(vt::kUserDefined);
    type.imported = std::make_shared<platform::TlbImport>(
        platform::TlbImport{"vendor.dll\\2", "{0BADF00D-0000-0000-0000-000000000001}", kind, guid, -1});
    return type;
  };
  platform::TlbLibrary lib = tlb::Library("Uses", "{0BADF00D-0000-0000-0000-000000000010}");
  platform::TlbTypeInfo record = tlb::TypeInfo("Block", "record");
  platform::TlbType bytes(vt::kArrayFlag | vt::kUI1), grid(vt::kArrayFlag | vt::kI4);
  bytes.bounds = {8};
  grid.bounds = {3, 4};
  record.variables = {tlb::Field("Data", bytes), tlb::Field("Grid", grid),
                      tlb::Field("Mode", imported("enum", "{0BADF00D-0000-0000-0000-000000000002}"))};
  lib.types.push_back(record);
  platform::TlbParam weight = tlb::Param("Weight", tlb::Type(vt::kR4)), size = tlb::Param("Size", tlb::Type(vt::kI8));
  platform::TlbParam value = tlb::Param("Value", tlb::Type(vt::kByRefFlag | vt::kVariant));
  weight.hasDefault = size.hasDefault = value.hasDefault = true;
  weight.defaultValue = {vt::kR4, 0, 1.5, {}};
  tlb::AddVbClass(lib, "Thing", "{0BADF00D-0000-0000-0000-000000000011}",
                  {tlb::Function("Owner", 2, imported("dispatch", "{0BADF00D-0000-0000-0000-000000000003}")),
                   tlb::Function("Font", 2, tlb::Type(0, "Font")),
                   tlb::Function("Put", 1, tlb::Type(vt::kVoid), {weight, size, value})});
  for (int32_t id = 0; id < 3; ++id) lib.types[1].functions[id].memberId = id + 1;
  TypelibWorld world;
  clsParseTLB original = world.Load("C:\\Uses.dll", lib);
  ExpectRoundTrip(lib, original);
  // The model does not show bounds.
  const rt::Result<platform::TlbLibrary> back = host_.typelibs.Load(rebuilt_);
  ASSERT_TRUE(back.ok()) << back.error().description;
  ASSERT_EQ(back->types.at(0).variables.size(), 3u);
  EXPECT_EQ(back->types[0].variables[0].type.bounds, bytes.bounds);
  EXPECT_EQ(back->types[0].variables[1].type.bounds, grid.bounds);
}

TEST_F(IdlRoundTrip, EveryWineTypeLibraryComesBack) {
  const std::vector<fs::path> files = WineTypeLibraries();
  if (files.empty()) GTEST_SKIP() << "Wine's libraries are not installed";
  for (const fs::path& file : files) ExpectRoundTrip(file);
}

// Every component but one, whose default date widl cannot store.
TEST_F(IdlRoundTrip, EveryCorpusComponentComesBackOrIsRefusedByName) {
  const std::vector<fs::path> files = CorpusFiles({".dll", ".ocx", ".cmp"});
  if (files.empty()) GTEST_SKIP() << "no corpus";
  const std::map<std::string, std::string> refused = {
      {"VbFcgiLib.dll", "_CHttpCookies.AddOrReplaceCookie gives p_ExpiryDateGmt a default widl cannot store "
                        "(12/30/1899, variant type 7)"}};
  for (const fs::path& file : files) {
    const auto refusal = refused.find(file.filename().string());
    ExpectRoundTrip(file, refusal == refused.end() ? "" : refusal->second);
  }
}

}  // namespace
}  // namespace sentrune::testing
