// The two type library sources against each other: every library the tests
// can reach (the committed fixtures, the VB6 corpus's components and the
// libraries Wine installs) read by the system's loader and by the portable
// reader must give the same model, as `inspect --json` prints it, and the
// same differences when two versions of a library are compared.
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <memory>
#include <map>
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

// A host file's Windows path: the test runs inside Wine, where "/" is the
// root of drive Z:.
std::string WindowsPath(const fs::path& host) { return fs::absolute(host).make_preferred().string(); }

// Where two texts first part, as "line N: <one> | <other>".
std::string FirstDifference(const std::string& one, const std::string& other) {
  size_t line = 1, start = 0;
  for (;;) {
    const size_t endOne = one.find('\n', start), endOther = other.find('\n', start);
    const std::string a = one.substr(start, endOne - start), b = other.substr(start, endOther - start);
    if (a != b || endOne != endOther) return "line " + std::to_string(line) + ": " + a + " | " + b;
    if (endOne == std::string::npos) return {};
    start = endOne + 1;
    ++line;
  }
}

// One library read by both sources.
struct Reading {
  std::string path;
  clsParseTLB portable, system;
  TypeLibReadResult portableResult, systemResult;

  Reading(TwoSources& sources, const fs::path& host)
      : path(WindowsPath(host)), portable(sources.portable), system(sources.system),
        portableResult(portable.ReadTypeLib(path)), systemResult(system.ReadTypeLib(path)) {}

  // Empty when both sources agree.
  std::string Difference() const {
    if (!portableResult.ok() || !systemResult.ok()) {
      if (portableResult.number == systemResult.number) return {};
      return "portable " + std::to_string(portableResult.number) + " (" + portableResult.description +
             "), system " + std::to_string(systemResult.number) + " (" + systemResult.description + ")";
    }
    return FirstDifference(TypeLibJson(portable), TypeLibJson(system));
  }
};

std::vector<fs::path> FilesIn(const fs::path& folder) {
  std::vector<fs::path> files;
  for (const auto& entry : fs::directory_iterator(folder)) {
    const std::string extension = entry.path().extension().string();
    if (extension == ".tlb" || extension == ".dll" || extension == ".ocx") files.push_back(entry.path());
  }
  std::sort(files.begin(), files.end());
  return files;
}

// Every library of a set read by both sources, one failure per file that
// they read differently; returns those that read.
std::vector<std::unique_ptr<Reading>> ExpectSameModels(TwoSources& sources, const std::vector<fs::path>& files) {
  std::vector<std::unique_ptr<Reading>> read;
  for (const fs::path& file : files) {
    auto reading = std::make_unique<Reading>(sources, file);
    const std::string difference = reading->Difference();
    EXPECT_EQ(difference, "") << reading->path;
    if (reading->portableResult.ok() && reading->systemResult.ok()) read.push_back(std::move(reading));
  }
  return read;
}

TEST(TypeLibDifferential, FixturesReadAlike) {
  TwoSources sources;
  std::vector<fs::path> files;
  for (const char* folder : {"typelib", "sltg", "pe"}) {
    const auto some = FilesIn(FixtureFolder() / folder);
    files.insert(files.end(), some.begin(), some.end());
  }
  EXPECT_GE(ExpectSameModels(sources, files).size(), 15u);
}

TEST(TypeLibDifferential, WineLibrariesReadAlike) {
  TwoSources sources;
  std::vector<fs::path> files = WineFiles("x86_64", ".tlb");
  for (const char* extension : {".dll", ".ocx"}) {
    const auto some = WineFiles("x86_64", extension);
    files.insert(files.end(), some.begin(), some.end());
  }
  if (files.empty()) GTEST_SKIP() << "Wine's libraries are not installed";
  ExpectSameModels(sources, files);
}

TEST(TypeLibDifferential, CorpusComponentsReadAlike) {
  const std::vector<fs::path> files = CorpusFiles({".dll", ".ocx"});
  if (files.empty()) GTEST_SKIP() << "no VB6 corpus";
  TwoSources sources;
  ExpectSameModels(sources, files);
}

}  // namespace
}  // namespace sentrune::testing
