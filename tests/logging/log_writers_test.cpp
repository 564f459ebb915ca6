// The two log writers: the text or CSV log, and the XML file of a tree.
#include "logging/csv_file_writer.h"

#include <gtest/gtest.h>

#include "logging/xml_out.h"
#include "support/expected_file.h"
#include "support/test_addin.h"

namespace sentrune {
namespace {

class CsvFileWriterTest : public ::testing::Test {
 protected:
  CsvFileWriterTest() { addin.files().AddFolder("D:\\x"); }
  testing::TestAddin addin;
  clsCSVFileWriter writer{addin.state};
};

TEST_F(CsvFileWriterTest, NamesGetTheDefaultFolderAndExtension) {
  EXPECT_EQ(writer.InitializeLog("report", 1, 2), 0);
  EXPECT_EQ(writer.FullPathToLogFile(), "C:\\Olk\\Data\\report.log");
  EXPECT_EQ(addin.files().GetAttributes("C:\\Olk\\Data").value_or(0), platform::kAttrDirectory);
  writer.DefaultFileExtension = "csv";
  EXPECT_EQ(writer.InitializeLog("D:\\x\\y", 1, 2), 0);
  EXPECT_EQ(writer.FullPathToLogFile(), "D:\\x\\y.csv");
  EXPECT_EQ(writer.InitializeLog("D:\\x\\y.txt", 1, 2), 0);
  EXPECT_EQ(writer.FullPathToLogFile(), "D:\\x\\y.txt");
}

TEST_F(CsvFileWriterTest, WritesHeaderLinesAndFooterQuotingAsSpreadsheetsExpect) {
  writer.DataFormat = 1;
  EXPECT_EQ(writer.FormatValue("say \"hi\" now"), "\"say \"\"hi\"\" now\"");
  EXPECT_EQ(writer.FormatValue("\"framed\""), "\"\"\"framed\"\"\"");
  ASSERT_EQ(writer.InitializeLog("D:\\x\\refs.csv", 1, 2), 0);
  EXPECT_EQ(writer.WriteLogEntries(std::vector<std::string>{"Ref #", "a,b"}), 0);
  EXPECT_EQ(writer.WriteLogData("Key", " Value "), 0);
  EXPECT_EQ(writer.CloseLog(), 0);
  EXPECT_FALSE(writer.LogInitialized());
  testing::ExpectMatchesFile(addin.files().Contents("D:\\x\\refs.csv").value_or(""), "logging/refs.csv");
  writer.DataFormat = 0;
  EXPECT_EQ(writer.FormatValue(" a,b "), " a,b ");
}

TEST_F(CsvFileWriterTest, ExistingFileRules) {
  addin.files().AddFile("D:\\x\\y.log", "old\r\n");
  writer.HeaderSuppressed = true;
  writer.FooterSuppressed = true;
  ASSERT_EQ(writer.InitializeLog("D:\\x\\y.log", 1, 1), 0);  // append
  ASSERT_EQ(writer.WriteLogEntries(std::string("new")), 0);
  addin.ui.QueueAnswer(platform::mb::kNo);  // asked: No appends
  ASSERT_EQ(writer.InitializeLog("D:\\x\\y.log", 1, 0), 0);
  EXPECT_EQ(addin.ui.boxes.size(), 1u);
  addin.ui.QueueAnswer(platform::mb::kCancel);
  EXPECT_EQ(writer.InitializeLog("D:\\x\\y.log", 1, 0), clsCSVFileWriter::kErrCancelled);
  EXPECT_FALSE(writer.LogInitialized());
  EXPECT_EQ(addin.files().Contents("D:\\x\\y.log"), "old\r\nnew\r\n");

  // Kept open (mode 2) and not released, it cannot be started again.
  ASSERT_EQ(writer.InitializeLog("D:\\x\\keep.log", 2, 2), 0);
  EXPECT_EQ(writer.InitializeLog("D:\\x\\keep.log", 2, 2), clsCSVFileWriter::kErrAlreadyOpen);
  EXPECT_TRUE(addin.ui.boxes.back().prompt.ends_with("File already open - clsLogFileWriter:InitializeLog"));
}

// Three blanks a level, tags from the last part of the key; CR LF lines,
// characters outside 32..127 masked and nothing escaped.
TEST(XMLOut, IndentsTagsMasksAndNeverEscapes) {
  testing::FakeFileSystem fs;
  fs.AddFolder("C:\\Out");
  const std::vector<platform::TreeNode> tree{
      {"C:\\Lib.dll", "C:\\Lib.dll",
       {{"C:\\Lib.dll\\My Class", "My Class", {{"C:\\Lib.dll\\My Class\\GUID", "GUID: {1}", {}}}},
        {"C:\\Lib.dll\\caf\xC3\xA9", "a < b & \xC3\x88 \t end", {}}}},
      {"Second", "Second", {}}};
  ASSERT_TRUE(XMLOut(fs, tree, "C:\\Out\\t.xml").ok());
  testing::ExpectMatchesFile(fs.Contents("C:\\Out\\t.xml").value_or(""), "logging/tree.xml");
  // Nothing is written without a name or without nodes.
  EXPECT_TRUE(XMLOut(fs, {}, "C:\\Out\\empty.xml").ok());
  EXPECT_TRUE(XMLOut(fs, {{"R", "R", {}}}, "").ok());
  EXPECT_EQ(fs.Record().written.size(), 1u);
  EXPECT_FALSE(XMLOut(fs, {{"R", "R", {}}}, "C:\\Missing\\x.xml").ok());
}

}  // namespace
}  // namespace sentrune
