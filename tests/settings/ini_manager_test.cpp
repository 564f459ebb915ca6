#include "settings/ini_manager.h"

#include <gtest/gtest.h>

#include <stdexcept>

#include "settings_harness.h"

namespace sentrune {
namespace {

using test::SettingsHarness;

TEST(IniManager, SharedInstanceIsNamedAfterTheModule) {
  SettingsHarness h;
  modINIManager module(h.state);
  EXPECT_EQ(module.GetIniManager().Path(), "C:\\Addin\\Sentrune.ini");
  EXPECT_EQ(&module.GetIniManager(), &module.GetIniManager());

  SettingsHarness bare;
  bare.env.SetModuleFolder("D:\\Tools");
  bare.env.SetModuleName("Other");
  EXPECT_EQ(modINIManager(bare.state).GetIniManager().Path(), "D:\\Tools\\Other.ini");
}

TEST(IniManager, AbsentKeyGivesTheDefaultButAnEmptyValueStaysEmpty) {
  SettingsHarness h;
  modINIManager module(h.state);
  EXPECT_EQ(module.INIGetSetting("Settings", "Key", "fallback"), "fallback");  // no file
  h.SetIni("[Settings]\r\nKey=\r\nLong=" + std::string(400, 'L') + "\r\n");
  EXPECT_EQ(module.INIGetSetting("Settings", "Key", "fallback"), "");
  EXPECT_EQ(module.INIGetSetting("Settings", "Other", "fallback"), "fallback");
  EXPECT_EQ(module.INIGetSetting("Settings", "Long", ""), std::string(254, 'L'));
}

TEST(IniManager, WritesDropNulsAndKeepTheirOutcome) {
  SettingsHarness h;
  modINIManager module(h.state);
  module.INISaveSetting("Settings", "Name", std::string("a\0b\0\0c", 6));
  EXPECT_EQ(h.Ini(), "[Settings]\r\nName=abc\r\n");
  EXPECT_TRUE(module.GetIniManager().LastWriteSucceeded());

  ASSERT_TRUE(h.env.Files().SetAttributes(SettingsHarness::kIni, 33).ok());
  module.INISaveSetting("Settings", "Name", "changed");
  EXPECT_FALSE(module.GetIniManager().LastWriteSucceeded());
  EXPECT_EQ(h.Ini(), "[Settings]\r\nName=abc\r\n");
  EXPECT_TRUE(h.ui.boxes.empty());  // a refused write is a result, not an error
}

class ThrowingProfiles : public platform::ProfileFiles {
 public:
  std::string GetString(const std::string&, const std::string&, const std::string& d, uint32_t,
                        const std::string&) override {
    return d;
  }
  bool WriteString(const std::string&, const std::string&, const std::string&, const std::string&) override {
    throw std::runtime_error("store exploded");
  }
};

TEST(IniManager, UnexpectedErrorsOfASaveAreReportedNotThrown) {
  SettingsHarness h;
  ThrowingProfiles throwing;
  AddinState state(Platform{h.env, h.ui, throwing, h.versions, h.typelibs});
  modINIManager module(state);
  EXPECT_NO_THROW(module.INISaveSetting("Settings", "Key", "v"));
  ASSERT_EQ(h.ui.boxes.size(), 1u);
  EXPECT_EQ(h.ui.boxes[0].title, "modINIManager:INISaveSetting");
  EXPECT_EQ(h.ui.boxes[0].prompt, "store exploded");
  EXPECT_FALSE(state.err.pending());
}

}  // namespace
}  // namespace sentrune
