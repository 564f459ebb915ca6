// The two log writers: the text or CSV log, and the XML file of a tree.
#include "logging/csv_file_writer.h"

#include <gtest/gtest.h>

#include "logging/xml_out.h"
#include "support/test_addin.h"

namespace sentrune {
namespace {

using platform::mb::kCancel;
using platform::mb::kNo;
using platform::TreeNode;

class CsvFileWriterTest : public ::testing::Test {
 protected:
  CsvFileWriterTest() { addin.files().AddFolder("D:\\x"); }
  testing::TestAddin addin;
  clsCSVFileWriter writer{addin.state};
};

TEST_F(CsvFileWriterTest, NamesGetTheDefaultFolderAndExtension) {
  EXPECT_EQ(writer.InitializeLog("report", 1, 2), 0);
  EXPECT_EQ(writer.FullPathToLogFile(), "C:\\Olk\\Data\\report.log");
  EXPECT_TRUE(addin.files().IsFolder("C:\\Olk\\Data"));
  writer.DefaultFileExtension = "csv";
  EXPECT_EQ(writer.InitializeLog("D:\\x\\y", 1, 2), 0);
  EXPECT_EQ(writer.FullPathToLogFile(), "D:\\x\\y.csv");
  EXPECT_EQ(writer.InitializeLog("D:\\x\\y.txt", 1, 2), 0);
  EXPECT_EQ(writer.FullPathToLogFile(), "D:\\x\\y.txt");
}

TEST_F(CsvFileWriterTest, WritesHeaderLinesAndFooterQuotingAsSpreadsheetsExpect) {
  addin.env.Time().Set(rt::DateTime{2004, 5, 6, 14, 3, 9});
  writer.DataFormat = 1;
  EXPECT_EQ(writer.FormatValue("say \"hi\" now"), "\"say \"\"hi\"\" now\"");
  EXPECT_EQ(writer.FormatValue("\"framed\""), "\"\"\"framed\"\"\"");
  ASSERT_EQ(writer.InitializeLog("D:\\x\\refs.csv", 1, 2), 0);
  EXPECT_EQ(writer.WriteLogEntries(std::vector<std::string>{"Ref #", "a,b"}), 0);
  EXPECT_EQ(writer.WriteLogData("Key", " Value "), 0);
  EXPECT_EQ(writer.CloseLog(), 0);
  EXPECT_FALSE(writer.LogInitialized());
  EXPECT_EQ(addin.files().Contents("D:\\x\\refs.csv"),
            " --- Begin Log ---\r\n"
            "Model: Unknown,Serial Number: Unknown,Date: 5/6/2004,Time: 2:03 PM\r\n"
            "Ref #\t\"a,b\"\r\n"
            "Key,Value\r\n"
            " --- End Log ---\r\n");
  writer.DataFormat = 0;
  EXPECT_EQ(writer.FormatValue(" a,b "), " a,b ");
}

TEST_F(CsvFileWriterTest, ExistingFileRules) {
  addin.files().AddFile("D:\\x\\y.log", "old\r\n");
  writer.HeaderSuppressed = true;
  writer.FooterSuppressed = true;
  ASSERT_EQ(writer.InitializeLog("D:\\x\\y.log", 1, 1), 0);  // append
  ASSERT_EQ(writer.WriteLogEntries(std::string("new")), 0);
  addin.ui.QueueAnswer(kNo);  // asked: No appends
  ASSERT_EQ(writer.InitializeLog("D:\\x\\y.log", 1, 0), 0);
  EXPECT_EQ(addin.ui.boxes.size(), 1u);
  addin.ui.QueueAnswer(kCancel);
  EXPECT_EQ(writer.InitializeLog("D:\\x\\y.log", 1, 0), clsCSVFileWriter::kErrCancelled);
  EXPECT_FALSE(writer.LogInitialized());
  EXPECT_EQ(addin.files().Contents("D:\\x\\y.log"), "old\r\nnew\r\n");
}

TEST_F(CsvFileWriterTest, OpeningTwiceWithoutReleaseFails) {
  ASSERT_EQ(writer.InitializeLog("D:\\x\\keep.log", 2, 2), 0);
  EXPECT_EQ(writer.InitializeLog("D:\\x\\keep.log", 2, 2), clsCSVFileWriter::kErrAlreadyOpen);
  ASSERT_EQ(addin.ui.boxes.size(), 1u);
  EXPECT_NE(addin.ui.boxes[0].prompt.find(" - clsLogFileWriter:InitializeLog"), std::string::npos);
}

TEST(XMLOut, IndentsByThreeAndTagsWithTheKeysLastPart) {
  const std::vector<TreeNode> tree{
      {"C:\\Lib.dll", "C:\\Lib.dll",
       {{"C:\\Lib.dll\\My Class", "My Class", {{"C:\\Lib.dll\\My Class\\GUID", "GUID: {1}", {}}}},
        {"C:\\Lib.dll\\Empty", "Empty", {}}}},
      {"Second", "Second", {}}};
  EXPECT_EQ(XmlLines(tree), (std::vector<std::string>{"   <Lib.dll>", "      <My_Class>", "         <GUID>",
                                                      "         GUID: {1}", "         </GUID>", "      </My_Class>",
                                                      "      <Empty>", "      Empty", "      </Empty>",
                                                      "   </Lib.dll>", "   <Second>", "   </Second>"}));
}

TEST(XMLOut, WritesCrLfLinesMasksNonAsciiAndNeverEscapes) {
  testing::FakeFileSystem fs;
  fs.AddFolder("C:\\Out");
  ASSERT_TRUE(XMLOut(fs, {{"R", "R", {{"R\\caf\xC3\xA9", "a < b & \xC3\x88 \t end", {}}}}}, "C:\\Out\\t.xml").ok());
  EXPECT_EQ(fs.Contents("C:\\Out\\t.xml"),
            "   <R>\r\n      <caf#>\r\n      a < b & # # end\r\n      </caf#>\r\n   </R>\r\n");

  // Nothing is written without a name or without nodes.
  EXPECT_TRUE(XMLOut(fs, {}, "C:\\Out\\empty.xml").ok());
  EXPECT_TRUE(XMLOut(fs, {{"R", "R", {}}}, "").ok());
  EXPECT_EQ(fs.Record().written.size(), 1u);
  EXPECT_FALSE(XMLOut(fs, {{"R", "R", {}}}, "C:\\Missing\\x.xml").ok());
}

}  // namespace
}  // namespace sentrune
