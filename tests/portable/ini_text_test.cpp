#include "platform/portable/ini_text.h"

#include <gtest/gtest.h>

#include <string>

namespace sentrune::portable::ini {
namespace {

using namespace std::string_literals;

std::string Read(std::string_view file, std::string_view section, std::string_view key) {
  const auto value = FindValue(file, section, key);
  return value ? std::string(*value) : std::string("<absent>");
}

TEST(IniLookup, NamesIgnoreCaseAndValuesAreTrimmed) {
  const std::string file =
      "[Settings]\r\n"
      "TrackTime=1\r\n"
      "  \tBackupFolderName \t=  \tOld History \t \r\n"
      "CL\xC9=latin\r\n"   // "CLÉ" in cp1252
      "Empty=\r\n";
  EXPECT_EQ(Read(file, "SETTINGS", "tracktime"), "1");
  EXPECT_EQ(Read(file, "settings", "BACKUPFOLDERNAME"), "Old History");
  EXPECT_EQ(Read(file, "Settings", "cl\xE9"), "latin");
  EXPECT_EQ(Read(file, "Settings", "Empty"), "");
  EXPECT_EQ(Read(file, "Settings", "Missing"), "<absent>");
  EXPECT_EQ(Read(file, "Other", "TrackTime"), "<absent>");
  // U+00D7 and U+00F7 are no letter pair.
  EXPECT_EQ(Read("[S]\nA\xD7=1\n", "S", "a\xF7"), "<absent>");
}

TEST(IniLookup, OnlyRealKeyLinesOfTheFirstMatchingSectionCount) {
  const std::string file =
      "Orphan=before any section\n"
      "[Settings]\n"
      ";Key=commented out\n"
      "garbage without equals\n"
      "Key\n"
      "[broken header\n"
      "Dup=first\n"
      "Dup=second\n"
      "[ Other ] trailing text\n"
      "Key=other\n"
      "[settings]\n"
      "Later=in a second Settings section\n";
  EXPECT_EQ(Read(file, "Settings", "Key"), "<absent>");
  EXPECT_EQ(Read(file, "Settings", ";Key"), "<absent>");
  EXPECT_EQ(Read(file, "Settings", "Orphan"), "<absent>");
  EXPECT_EQ(Read(file, "Settings", "[broken header"), "<absent>");
  EXPECT_EQ(Read(file, "Settings", "Dup"), "first");
  EXPECT_EQ(Read(file, "Other", "Key"), "other");
  EXPECT_EQ(Read(file, "Settings", "Later"), "<absent>");
}

TEST(IniBuffer, QuotesAndTheBufferSize) {
  EXPECT_EQ(CopyToBuffer("\"quoted value\"", 255), "quoted value");
  EXPECT_EQ(CopyToBuffer("' single '", 255), " single ");
  EXPECT_EQ(CopyToBuffer("\"\"", 255), "");
  EXPECT_EQ(CopyToBuffer("\"", 255), "\"");
  EXPECT_EQ(CopyToBuffer("\"mixed'", 255), "\"mixed'");
  EXPECT_EQ(CopyToBuffer("\"a\" and \"b\"", 255), "a\" and \"b");

  const std::string long300(300, 'x');
  EXPECT_EQ(CopyToBuffer(long300, 255), std::string(254, 'x'));
  EXPECT_EQ(CopyToBuffer(std::string(254, 'y'), 255), std::string(254, 'y'));
  EXPECT_EQ(CopyToBuffer("\"" + long300 + "\"", 255), std::string(254, 'x'));
  EXPECT_EQ(CopyToBuffer("abc", 1), "");
  EXPECT_EQ(CopyToBuffer("abc", 0), "");

  EXPECT_EQ(CopyDefaultToBuffer("History   ", 255), "History");
  EXPECT_EQ(CopyDefaultToBuffer("  lead\t", 255), "  lead\t");
  EXPECT_EQ(CopyDefaultToBuffer(long300, 255), std::string(254, 'x'));
}

TEST(IniWrite, ReplacesTheValueInPlaceKeepingEveryOtherByte) {
  // CR LF, LF-only, binary bytes and a last line without a line end in one file.
  const std::string file =
      "; options\r\n"
      "[Settings]\n"
      "Before = 1\r\n"
      "  trackTime = 0  \n"
      "After=\x01\xFF\x00z\r\n"s
      "[Other]\r\n"
      "TrackTime=9";
  EXPECT_EQ(SetValue(file, "settings", "TrackTime", "1"),
            "; options\r\n"
            "[Settings]\n"
            "Before = 1\r\n"
            "TrackTime=1\n"
            "After=\x01\xFF\x00z\r\n"s
            "[Other]\r\n"
            "TrackTime=9");
  EXPECT_EQ(SetValue("[S]\nk=old", "S", "K", "new"), "[S]\nK=new");
  EXPECT_EQ(SetValue("[S]\nk=old\r", "S", "k", "new"), "[S]\nk=new\r");  // a CR ends the file
  EXPECT_EQ(SetValue("[S]\r\nDup=1\r\nDup=2\r\n", "S", "dup", "3"), "[S]\r\ndup=3\r\nDup=2\r\n");
}

TEST(IniWrite, AddsAMissingKeyAfterTheLastNonBlankLineOfItsSection) {
  EXPECT_EQ(SetValue("[A]\r\nx=1\r\n\r\n\r\n[B]\r\ny=2\r\n", "a", "New", "v"),
            "[A]\r\nx=1\r\nNew=v\r\n\r\n\r\n[B]\r\ny=2\r\n");
  // Comments and garbage are lines of the section too.
  EXPECT_EQ(SetValue("[A]\nx=1\n;note\n\n[B]\n", "A", "New", "v"), "[A]\nx=1\n;note\nNew=v\r\n\n[B]\n");
  EXPECT_EQ(SetValue("[A]\n\n[B]\n", "A", "New", "v"), "[A]\nNew=v\r\n\n[B]\n");
  // The end of the file without a line end gets one before the new line.
  EXPECT_EQ(SetValue("[A]\nx=1", "A", "New", "v"), "[A]\nx=1\r\nNew=v\r\n");
  EXPECT_EQ(SetValue("[A]", "A", "New", "v"), "[A]\r\nNew=v\r\n");
  // Only the first section of the name receives it.
  EXPECT_EQ(SetValue("[A]\nx=1\n[B]\n[A]\ny=2\n", "A", "y", "3"), "[A]\nx=1\ny=3\r\n[B]\n[A]\ny=2\n");
}

TEST(IniWrite, CreatesAMissingSectionOrFileAtTheEnd) {
  EXPECT_EQ(SetValue("", "Settings", "Key", "Value"), "[Settings]\r\nKey=Value\r\n");
  EXPECT_EQ(SetValue("[A]\nx=1\n", "Settings", "Key", ""), "[A]\nx=1\n[Settings]\r\nKey=\r\n");
  EXPECT_EQ(SetValue("garbage\x80", "Settings", "Key", "V"), "garbage\x80\r\n[Settings]\r\nKey=V\r\n");
}

TEST(IniWrite, LongKeysAndValuesRoundTrip) {
  const std::string key(1000, 'K');
  const std::string value(5000, 'v');
  std::string file = SetValue("[Settings]\r\nA=1\r\n", "Settings", key, value);
  EXPECT_EQ(Read(file, "settings", std::string(1000, 'k')), value);
  file = SetValue(file, "Settings", key, "short");
  EXPECT_EQ(file, "[Settings]\r\nA=1\r\n" + key + "=short\r\n");
}

TEST(IniWrite, TenMegabyteFile) {
  std::string file = "[Settings]\r\n";
  for (int i = 0; file.size() < 10 * 1024 * 1024; ++i)
    file += "Key" + std::to_string(i) + "=some value of a realistic length " + std::to_string(i) + "\r\n";
  file += "[Tail]\r\nLast=1\r\n";

  const std::string added = SetValue(file, "Settings", "Added", "yes");
  const size_t at = file.size() - 16;  // before "[Tail]"
  // EXPECT_TRUE: a failure must not print ten megabytes.
  EXPECT_TRUE(added == file.substr(0, at) + "Added=yes\r\n" + file.substr(at));
  const std::string replaced = SetValue(added, "tail", "LAST", "2");
  std::string expected = added;
  expected.replace(expected.size() - 8, 6, "LAST=2");
  EXPECT_TRUE(replaced == expected);
  EXPECT_EQ(Read(replaced, "Tail", "Last"), "2");
}

}  // namespace
}  // namespace sentrune::portable::ini
