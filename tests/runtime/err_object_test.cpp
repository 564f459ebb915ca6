#include "runtime/err_object.h"

#include <gtest/gtest.h>

namespace sentrune::rt {
namespace {

TEST(ErrObject, RaiseFillsTheRunTimeDescription) {
  ErrObject err;
  EXPECT_FALSE(err.pending());
  err.Raise(53, "modFileFunctions");
  EXPECT_TRUE(err.pending());
  EXPECT_EQ(err.number(), 53);
  EXPECT_EQ(err.description(), "File not found");
  EXPECT_EQ(err.source(), "modFileFunctions");
  err.Raise(70, "", "Access is denied.");
  EXPECT_EQ(err.description(), "Access is denied.");
  err.Raise(0, "x", "ignored");
  EXPECT_EQ(err.number(), errnum::kInvalidProcedureCall);
  EXPECT_EQ(err.description(), "Invalid procedure call or argument");
  err.Clear();
  EXPECT_FALSE(err.pending());
  EXPECT_EQ(err.description(), "");
  EXPECT_EQ(err.source(), "");
}

TEST(ErrObject, SavedStateSurvivesAnotherError) {
  ErrObject err;
  err.Raise(76, "clsProject", "", "help.chm", 7);
  const ErrObject::Saved saved = err.Save();
  err.Clear();
  err.Raise(5);
  err.Restore(saved);
  EXPECT_EQ(err.number(), 76);
  EXPECT_EQ(err.description(), "Path not found");
  EXPECT_EQ(err.source(), "clsProject");
  EXPECT_EQ(err.helpFile(), "help.chm");
  EXPECT_EQ(err.helpContext(), 7);
  err.Set(MakeError(errnum::kTypeMismatch, "", "modOptionsHandler"));
  EXPECT_EQ(err.number(), 13);
  EXPECT_EQ(err.description(), "Type mismatch");
  EXPECT_EQ(err.source(), "modOptionsHandler");
  EXPECT_EQ(err.helpFile(), "");
  EXPECT_EQ(err.helpContext(), 0);
}

}  // namespace
}  // namespace sentrune::rt
