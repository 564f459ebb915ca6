// Inputs the INI fuzz target once broke, replayed with the same properties.
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

#include "../../fuzz/ini_fuzz_case.h"

namespace sentrune::ini_fuzz {
namespace {

TEST(IniFuzzRegression, SavedInputsKeepTheProperties) {
  const std::filesystem::path folder = std::filesystem::path(SENTRUNE_SOURCE_DIR) / "tests/fixtures/fuzz/ini";
  int replayed = 0;
  for (const auto& entry : std::filesystem::directory_iterator(folder)) {
    std::ifstream in(entry.path(), std::ios::binary);
    const std::string bytes((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
    const Case c = Decode(reinterpret_cast<const uint8_t*>(bytes.data()), bytes.size());
    EXPECT_EQ(Violation(c), "") << entry.path().filename();
    ++replayed;
  }
  EXPECT_GT(replayed, 0);
}

}  // namespace
}  // namespace sentrune::ini_fuzz
