#include "state/msgbox.h"

#include <gtest/gtest.h>

#include "support/test_addin.h"

namespace sentrune {
namespace {

using platform::mb::kCritical;
using platform::mb::kNo;
using platform::mb::kYesNo;

TEST(MsgBox, ErrorBoxWhileShuttingDownIsTracedAndSuppressed) {
  testing::TestAddin addin;
  addin.state.err.Raise(53, "clsParseTLB", "File not found");
  addin.state.gblnShuttingDown = true;

  EXPECT_EQ(lfncMsgBoxEX(addin.state, "Can't find it", kCritical, "Title"), 0);

  EXPECT_TRUE(addin.ui.boxes.empty());
  const std::vector<std::string> lines = addin.TraceLines();
  ASSERT_EQ(lines.size(), 5u);
  EXPECT_TRUE(lines[0].starts_with("'Message contains error information "));
  EXPECT_EQ(lines[1], "'Prompt: Can't find it");
  EXPECT_EQ(lines[2], "'Buttons: 16");
  EXPECT_EQ(lines[3], "'Title: Title");
  EXPECT_EQ(lines[4], "'Shutting Down - Supressing Error Dialog");
  EXPECT_EQ(addin.state.err.number(), 53);
  EXPECT_EQ(addin.state.err.source(), "clsParseTLB");
  EXPECT_EQ(addin.state.err.description(), "File not found");
}

TEST(MsgBox, ErrorBoxWhileConnectedIsShownAndTraced) {
  testing::TestAddin addin;
  addin.state.err.Raise(70);
  addin.ui.QueueAnswer(kNo);

  EXPECT_EQ(lfncMsgBoxEX(addin.state, "Retry?", kYesNo, "Copy"), kNo);

  ASSERT_EQ(addin.ui.boxes.size(), 1u);
  EXPECT_EQ(addin.ui.boxes[0].prompt, "Retry?");
  EXPECT_EQ(addin.TraceLines().size(), 4u);
  EXPECT_EQ(addin.state.err.number(), 70);
}

TEST(MsgBox, OrdinaryQuestionsLeaveNoTraceAndAreShownEvenWhileShuttingDown) {
  testing::TestAddin addin;
  addin.state.gblnShuttingDown = true;
  EXPECT_EQ(lfncMsgBoxEX(addin.state, "Fix it?", kYesNo, "Fix"), platform::mb::kYes);
  EXPECT_EQ(addin.ui.boxes.size(), 1u);
  EXPECT_TRUE(addin.TraceLines().empty());
  EXPECT_FALSE(addin.state.err.pending());
}

}  // namespace
}  // namespace sentrune
