#pragma once
// The add-in over fakes, with the real INI engine over the fake file system,
// and the add-in's own INI file, for the settings tests.
#include <string>

#include "support/test_addin.h"

namespace sentrune::test {

struct SettingsHarness : testing::TestAddin {
  static constexpr const char* kIni = "C:\\Addin\\Sentrune.ini";

  std::string Ini() { return files().Contents(kIni).value_or("<missing>"); }
  void SetIni(std::string bytes) { files().AddFile(kIni, std::move(bytes)); }
};

}  // namespace sentrune::test
