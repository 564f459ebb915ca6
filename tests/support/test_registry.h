#pragma once
// The registry tests run on: the Wine-prefix store the command-line host
// uses, over an empty prefix in an in-memory file system, so that what holds
// here holds for the real store (HKEY_CLASSES_ROOT merged, sub-keys in
// Wine's order). Tests fail its changes through `files` or `serverRunning`.
#include <gtest/gtest.h>

#include <string>

#include "platform/winereg/wine_registry.h"
#include "support/fake_file_system.h"

namespace sentrune::testing {

// A base, so that the files exist before the store that reads them.
struct WinePrefixFiles {
  WinePrefixFiles() {
    for (const char* hive : {"C:\\Prefix\\system.reg", "C:\\Prefix\\user.reg"})
      files.AddFile(hive, "WINE REGISTRY Version 2\n");
  }
  FakeFileSystem files;
  bool serverRunning = false;
};

class TestRegistry : public WinePrefixFiles, public portable::WineRegistry {
 public:
  TestRegistry()
      : WineRegistry(files, {.prefixFolder = "C:\\Prefix\\", .prefixName = "test-prefix",
                             .serverRunning = [this] { return serverRunning; },
                             .now = [] { return int64_t{1700000000}; }}) {}

  // Setup: creates the key and sets the value.
  void AddValue(uint32_t hive, const std::string& path, const std::string& name, platform::RegValue value) {
    EXPECT_TRUE(CreateKey(hive, path).ok() && SetValue(hive, path, name, value).ok()) << path;
  }
  void AddString(uint32_t hive, const std::string& path, const std::string& name, const std::string& text) {
    AddValue(hive, path, name, {platform::kRegSz, text + '\0'});
  }
};

}  // namespace sentrune::testing
