#include "state/debug_trace.h"

#include <gtest/gtest.h>

#include "support/test_addin.h"

namespace sentrune {
namespace {

TEST(DebugTrace, FirstCallEmptiesTheFileOfAnEarlierLoad) {
  testing::TestAddin addin;
  addin.files().AddFile("C:\\Addin\\Sentrune_Log.txt", "old line\r\n");
  addin.state.trace({"'Connect:AddinInstance_Initialize", 12.5});
  EXPECT_EQ(addin.files().Contents("C:\\Addin\\Sentrune_Log.txt"),
            "'Connect:AddinInstance_Initialize 12.5\r\n");
}

TEST(DebugTrace, PauseOfMoreThanTwoSecondsGetsABanner) {
  testing::TestAddin addin;
  addin.state.trace({"first"});
  addin.env.Time().Advance(2);
  addin.state.trace({"second"});
  addin.env.Time().Advance(3);
  addin.state.trace({});
  const std::string rule(40, '/');
  EXPECT_EQ(addin.TraceLines(), (std::vector<std::string>{"first", "second", "", rule,
                                                          "3 seconds since last trip here.", rule,
                                                          ""}));
}

TEST(DebugTrace, ArgumentsAreJoinedAndWrittenInCodePage1252) {
  testing::TestAddin addin;
  addin.state.trace({"Cancel :", false, int32_t{-7}, "Gr\xC3\xBC\xC3\x9F"});
  EXPECT_EQ(addin.files().Contents(addin.state.trace.path()),
            "Cancel : False -7 Gr\xFC\xDF\r\n");
}

}  // namespace
}  // namespace sentrune
