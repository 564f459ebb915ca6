#include "runtime/err_object.h"

#include <gtest/gtest.h>

namespace sentrune::rt {
namespace {

TEST(ErrObject, RaiseFillsTheRunTimeDescriptionAndSetDropsTheHelp) {
  ErrObject err;
  EXPECT_FALSE(err.pending());
  err.Raise(76, "clsProject", "", "help.chm", 7);
  EXPECT_TRUE(err.pending());
  EXPECT_EQ(err.description(), "Path not found");
  err.Raise(70, "", "Access is denied.");
  EXPECT_EQ(err.description(), "Access is denied.");
  err.Raise(0, "x", "ignored");  // refused as the run time refuses it
  EXPECT_EQ(err.number(), errnum::kInvalidProcedureCall);
  EXPECT_EQ(err.description(), "Invalid procedure call or argument");
  err.Raise(53, "", "", "help.chm", 7);
  err.Set(MakeError(errnum::kTypeMismatch, "", "modOptionsHandler"));
  EXPECT_EQ(err.description(), "Type mismatch");
  EXPECT_EQ(err.source(), "modOptionsHandler");
  EXPECT_EQ(err.helpFile(), "");
  err.Clear();
  EXPECT_FALSE(err.pending());
}

}  // namespace
}  // namespace sentrune::rt
