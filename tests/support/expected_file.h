#pragma once
// Whole outputs checked against a committed copy under tests/fixtures/, so a
// change anywhere in a rendering shows as a difference a person can read.
// After a deliberate change, SENTRUNE_UPDATE_EXPECTED=1 rewrites the copies;
// review them with `git diff` before committing.
#include <gtest/gtest.h>
#include <stdlib.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

namespace sentrune::testing {

// `name` is relative to tests/fixtures ("typelib/shapes.projection.txt").
inline void ExpectMatchesFile(const std::string& actual, const std::string& name) {
  const std::filesystem::path path = std::filesystem::path(SENTRUNE_SOURCE_DIR) / "tests/fixtures" / name;
  if (const char* update = getenv("SENTRUNE_UPDATE_EXPECTED"); update && *update == '1') {
    std::filesystem::create_directories(path.parent_path());
    std::ofstream(path, std::ios::binary | std::ios::trunc) << actual;
    return;
  }
  std::ifstream in(path, std::ios::binary);
  ASSERT_TRUE(in) << "no expected output at tests/fixtures/" << name
                  << " (SENTRUNE_UPDATE_EXPECTED=1 writes it)";
  const std::string expected{std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
  EXPECT_EQ(actual, expected) << "differs from tests/fixtures/" << name;
}

}  // namespace sentrune::testing
