// The two type library sources against each other: every library the tests
// can reach (the committed fixtures, the VB6 corpus's components and the
// libraries Wine installs) read by the system's loader and by the portable
// reader must give the same model, as `inspect --json` prints it, and the
// same differences when two versions of a library are compared. A failure
// names the file and the first line where the two part.
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <memory>
#include <regex>
#include <string>
#include <vector>

#include "platform/ini/ini_file.h"
#include "platform/tlb/typelib_source_portable.h"
#include "platform/win32/typelib_source_system.h"
#include "platform/win32/win32_env.h"
#include "platform/win32/win32_version_resources.h"
#include "support/fake_ui.h"
#include "support/host_files.h"
#include "typelib/parse_tlb.h"
#include "typelib/tlb_json.h"

namespace sentrune::testing {
namespace {

namespace fs = std::filesystem;

// Where Wine's loader parts from Windows, and so from the portable reader:
// in a file, what Wine leads to (a pattern) and what Windows gives instead.
// Each must still occur, so that a Wine that mends one shows here.
struct WineDefect {
  const char* file;
  const char* wine;
  const char* windows;
};
const WineDefect kWineDefects[] = {
    // Wine finds a local type by the reference stored in its name's entry, so
    // of several type infos with one name (widl writes a typedef once per use)
    // only the last can be referred to; the others come out unresolved. A
    // reference is the type info's offset in the table (both readers place
    // every type info by it): in uianimation.dll, of seven aliases
    // UI_ANIMATION_KEYFRAME (a pointer to a record widl names), Wine resolves
    // RepeatBetweenKeyframes's end_key but not its start_key.
    {"uianimation.dll", R"((ByVal )?(\w+ As )<Unsupported Variant Type\(VT_USERDEFINED\)>)",
     "$2__WIDL_uianimation_typelib_generated_name_0000000B"},
    // The same: ShapeRef (IShape*) is there twice, and Link's Other names the first.
    {"shapes.tlb", R"(ByVal Other As <Unsupported Variant Type\(VT_USERDEFINED\)>)", "ByVal Other As IShape"},
    // Not Wine's fault: VBInstance is VBIDE's VBE, a library not registered
    // here, so the system cannot tell that the pointer is the object itself;
    // the portable reader knows its kind from the import record, as a
    // system with VBIDE registered does.
    {"CSWindow.dll", R"(Set VBInstance\( As )", "Set VBInstance(ByVal  As "},
};

// Libraries Wine's loader cannot read at all. msado15.dll gives some
// parameters a default that widl could not encode, stored as the "no value"
// mark -1; Wine reads that as a packed value of type 31 (VT_LPWSTR), and its
// GetFuncDesc then fails to copy it (DISP_E_BADVARTYPE).
const std::pair<const char*, int32_t> kWineCannotRead[] = {{"msado15.dll", -2147352568}};

// The add-in's state twice over the real file system, once per source.
struct TwoSources {
  win32::Win32Env env;
  FakeUi ui;
  portable::PortableProfileFiles profiles{env.Files()};
  win32::Win32VersionResources versions;
  portable::PortableTypeLibSource portableSource{env.Files()};
  win32::SystemTypeLibSource systemSource;
  AddinState portable{Platform{env, ui, profiles, versions, portableSource}};
  AddinState system{Platform{env, ui, profiles, versions, systemSource}};
};

// The test runs inside Wine, where "/" is the root of drive Z:.
std::string WindowsPath(const fs::path& host) { return fs::absolute(host).make_preferred().string(); }

// Where two texts first part, as "line N: <one> | <other>"; empty when they do not.
std::string FirstDifference(const std::string& one, const std::string& other) {
  size_t line = 1, start = 0;
  for (;;) {
    const size_t endOne = one.find('\n', start), endOther = other.find('\n', start);
    const std::string a = one.substr(start, endOne - start), b = other.substr(start, endOther - start);
    if (a != b || (endOne == std::string::npos) != (endOther == std::string::npos)) {
      return "line " + std::to_string(line) + ": " + a + " | " + b;
    }
    if (endOne == std::string::npos) return {};
    start = endOne + 1;
    ++line;
  }
}

// Every difference as its text, one a line: this build against the other.
std::string Comparison(const clsParseTLB& build, const clsParseTLB& other) {
  std::string text;
  for (const auto& difference : build.CompareDetailed(other, false, true)) text += difference.text + "\n";
  return text;
}

// One library read by both sources.
struct Reading {
  std::string name, path;
  clsParseTLB portable, system;
  TypeLibReadResult portableResult, systemResult;

  Reading(TwoSources& sources, const fs::path& host)
      : name(host.filename().string()), path(WindowsPath(host)), portable(sources.portable),
        system(sources.system), portableResult(portable.ReadTypeLib(path)), systemResult(system.ReadTypeLib(path)) {}

  bool BothRead() const { return portableResult.ok() && systemResult.ok(); }

  // The system's JSON with Wine's known defects in this file put right;
  // each must have been there.
  std::string SystemJson() const {
    std::string json = TypeLibJson(system);
    for (const WineDefect& defect : kWineDefects) {
      if (name != defect.file) continue;
      const std::regex wine(defect.wine);
      EXPECT_TRUE(std::regex_search(json, wine)) << path << " no longer shows " << defect.wine;
      json = std::regex_replace(json, wine, defect.windows);
    }
    return json;
  }

  // Empty when both sources agree.
  std::string Difference() const {
    for (const auto& [file, number] : kWineCannotRead) {
      if (name == file) {
        EXPECT_EQ(systemResult.number, number) << path << ": " << systemResult.description;
        return portableResult.ok() ? "" : "the portable reader fails: " + portableResult.description;
      }
    }
    if (BothRead()) return FirstDifference(TypeLibJson(portable), SystemJson());
    if (portableResult.number == systemResult.number) return {};
    return "portable " + std::to_string(portableResult.number) + " (" + portableResult.description + "), system " +
           std::to_string(systemResult.number) + " (" + systemResult.description + ")";
  }
};

using Readings = std::vector<std::unique_ptr<Reading>>;

// Every file read by both sources, one failure per file they read apart;
// gives those both read.
Readings ExpectSameModels(TwoSources& sources, const std::vector<fs::path>& files) {
  Readings read;
  for (const fs::path& file : files) {
    auto reading = std::make_unique<Reading>(sources, file);
    EXPECT_EQ(reading->Difference(), "") << reading->path;
    if (reading->BothRead()) read.push_back(std::move(reading));
  }
  return read;
}

void ExpectSameComparison(const Reading& build, const Reading& other) {
  EXPECT_EQ(FirstDifference(Comparison(build.portable, other.portable), Comparison(build.system, other.system)), "")
      << build.path << " against " << other.path;
}

std::vector<fs::path> FilesIn(const fs::path& folder) {
  std::vector<fs::path> files;
  for (const auto& entry : fs::directory_iterator(folder)) {
    const std::string extension = entry.path().extension().string();
    if (extension == ".tlb" || extension == ".dll") files.push_back(entry.path());
  }
  std::sort(files.begin(), files.end());
  return files;
}

// The compiled fixtures, and the differences of each variant of the Widgets
// library from the base. The SLTG samples stay out: Wine 8's SLTG reader
// takes a parameter's type for an offset unless the name before it starts
// with a letter or digit, so the samples' "_lcid" sends it reading outside
// the library (a page fault, not an error); Wine 9 tells the two apart by the
// low bit of the name's offset, as the portable reader does.
TEST(TypeLibDifferential, FixturesReadAlike) {
  TwoSources sources;
  std::vector<fs::path> files = FilesIn(FixtureFolder() / "typelib");
  const std::vector<fs::path> images = FilesIn(FixtureFolder() / "pe");
  files.insert(files.end(), images.begin(), images.end());
  const Readings read = ExpectSameModels(sources, files);
  ASSERT_GE(read.size(), 15u);
  const auto base = std::find_if(read.begin(), read.end(), [](const auto& r) { return r->name == "widgets.tlb"; });
  ASSERT_NE(base, read.end());
  for (const auto& variant : read) {
    if (variant->name.starts_with("widgets_")) ExpectSameComparison(*variant, **base);
  }
}

// Wine's type libraries, and the differences between every two that carry
// the same library name (the ATL, MSXML and shell versions).
TEST(TypeLibDifferential, WineLibrariesReadAlike) {
  std::vector<fs::path> files = WineFiles("x86_64", ".tlb");
  for (const char* extension : {".dll", ".ocx"}) {
    const auto more = WineFiles("x86_64", extension);
    files.insert(files.end(), more.begin(), more.end());
  }
  if (files.empty()) GTEST_SKIP() << "Wine's libraries are not installed";
  TwoSources sources;
  const Readings read = ExpectSameModels(sources, files);
  EXPECT_GE(read.size(), 40u);
  for (size_t i = 0; i < read.size(); ++i) {
    for (size_t j = i + 1; j < read.size(); ++j) {
      if (read[i]->portable.Library() == read[j]->portable.Library()) ExpectSameComparison(*read[j], *read[i]);
    }
  }
}

TEST(TypeLibDifferential, CorpusComponentsReadAlike) {
  const std::vector<fs::path> files = CorpusFiles({".dll", ".ocx"});
  if (files.empty()) GTEST_SKIP() << "no VB6 corpus";
  TwoSources sources;
  EXPECT_EQ(ExpectSameModels(sources, files).size(), files.size());
}

}  // namespace
}  // namespace sentrune::testing
