// The message routine, and the debug trace it and every subsystem write to.
#include "state/msgbox.h"

#include <gtest/gtest.h>

#include "state/debug_trace.h"
#include "support/expected_file.h"
#include "support/test_addin.h"

namespace sentrune {
namespace {

namespace mb = platform::mb;

TEST(MsgBox, OnlyErrorBoxesAreTracedAndWhileShuttingDownSuppressed) {
  testing::TestAddin addin;
  addin.state.err.Raise(53, "clsParseTLB", "File not found");
  addin.state.gblnShuttingDown = true;
  EXPECT_EQ(lfncMsgBoxEX(addin.state, "Can't find it", mb::kCritical, "Title"), 0);
  EXPECT_TRUE(addin.ui.boxes.empty());
  EXPECT_EQ(addin.TraceLines(), (std::vector<std::string>{"'Message contains error information 50589",
                                                         "'Prompt: Can't find it", "'Buttons: 16", "'Title: Title",
                                                         "'Shutting Down - Supressing Error Dialog"}));
  EXPECT_EQ(addin.state.err.number(), 53);
  EXPECT_EQ(addin.state.err.source(), "clsParseTLB");

  // Otherwise boxes are shown, and only error boxes traced.
  testing::TestAddin shown;
  shown.state.err.Raise(70);
  shown.ui.QueueAnswer(mb::kNo);
  EXPECT_EQ(lfncMsgBoxEX(shown.state, "Retry?", mb::kYesNo, "Copy"), mb::kNo);
  EXPECT_EQ(shown.ui.Prompts(), testing::Strings{"Retry?"});
  EXPECT_EQ(shown.TraceLines().size(), 4u);
  EXPECT_EQ(shown.state.err.number(), 70);

  // An ordinary question is shown even while shutting down.
  testing::TestAddin quiet;
  quiet.state.gblnShuttingDown = true;
  EXPECT_EQ(lfncMsgBoxEX(quiet.state, "Fix it?", mb::kYesNo, "Fix"), mb::kYes);
  EXPECT_EQ(quiet.ui.boxes.size(), 1u);
  EXPECT_TRUE(quiet.TraceLines().empty());
}

// The first call empties the file of an earlier load; lines are in code page
// 1252, and a pause of more than two seconds gets a banner.
TEST(DebugTrace, FirstCallEmptiesTheFileWritesCodePage1252AndMarksPauses) {
  testing::TestAddin addin;
  addin.files().AddFile("C:\\Addin\\Sentrune_Log.txt", "old line\r\n");
  addin.state.trace({"'Connect:AddinInstance_Initialize", 12.5, false, int32_t{-7}, "Gr\xC3\xBC\xC3\x9F"});
  addin.env.Time().Advance(2);
  addin.state.trace({"second"});
  addin.env.Time().Advance(3);
  addin.state.trace({});
  testing::ExpectMatchesFile(addin.files().Contents("C:\\Addin\\Sentrune_Log.txt").value_or(""), "state/trace.txt");
}

}  // namespace
}  // namespace sentrune
