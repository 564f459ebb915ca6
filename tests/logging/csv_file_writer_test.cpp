#include "logging/csv_file_writer.h"

#include <gtest/gtest.h>

#include "support/test_addin.h"

namespace sentrune {
namespace {

using platform::mb::kCancel;
using platform::mb::kNo;

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
  EXPECT_EQ(writer.InitializeLog("D:\\x\\y.txt", 1, 2), 0);
  EXPECT_EQ(writer.FullPathToLogFile(), "D:\\x\\y.txt");
  writer.DefaultFileExtension = "csv";
  EXPECT_EQ(writer.InitializeLog("D:\\x\\y", 1, 2), 0);
  EXPECT_EQ(writer.FullPathToLogFile(), "D:\\x\\y.csv");
}

TEST_F(CsvFileWriterTest, CommaModeQuotesAsSpreadsheetsExpect) {
  writer.DataFormat = 1;
  EXPECT_EQ(writer.FormatValue(" plain "), "plain");
  EXPECT_EQ(writer.FormatValue("a,b"), "\"a,b\"");
  EXPECT_EQ(writer.FormatValue("say \"hi\" now"), "\"say \"\"hi\"\" now\"");
  EXPECT_EQ(writer.FormatValue("\"framed\""), "\"\"\"framed\"\"\"");
  writer.DataFormat = 0;
  EXPECT_EQ(writer.FormatValue(" a,b "), " a,b ");
}

TEST_F(CsvFileWriterTest, WritesHeaderLinesAndFooter) {
  addin.env.Time().Set(rt::DateTime{2004, 5, 6, 14, 3, 9});
  writer.DataFormat = 1;
  ASSERT_EQ(writer.InitializeLog("D:\\x\\refs.csv", 1, 2), 0);
  EXPECT_EQ(writer.WriteLogEntries(std::vector<std::string>{"Ref #", "a,b"}), 0);
  EXPECT_EQ(writer.WriteLogData("Key", "Value"), 0);
  EXPECT_EQ(writer.CloseLog(), 0);
  EXPECT_FALSE(writer.LogInitialized());
  EXPECT_EQ(addin.files().Contents("D:\\x\\refs.csv"),
            " --- Begin Log ---\r\n"
            "Model: Unknown,Serial Number: Unknown,Date: 5/6/2004,Time: 2:03 PM\r\n"
            "Ref #\t\"a,b\"\r\n"
            "Key,Value\r\n"
            " --- End Log ---\r\n");
}

TEST_F(CsvFileWriterTest, ExistingFileRules) {
  addin.files().AddFile("D:\\x\\y.log", "old\r\n");
  writer.HeaderSuppressed = true;
  writer.FooterSuppressed = true;
  ASSERT_EQ(writer.InitializeLog("D:\\x\\y.log", 1, 1), 0);  // append
  ASSERT_EQ(writer.WriteLogEntries(std::string("new")), 0);
  EXPECT_EQ(addin.files().Contents("D:\\x\\y.log"), "old\r\nnew\r\n");

  addin.ui.QueueAnswer(kNo);  // asked: No appends
  ASSERT_EQ(writer.InitializeLog("D:\\x\\y.log", 1, 0), 0);
  ASSERT_EQ(addin.ui.boxes.size(), 1u);
  EXPECT_EQ(addin.ui.boxes[0].title, "File Exists");
  EXPECT_EQ(addin.ui.boxes[0].style, 35);
  EXPECT_EQ(addin.files().Contents("D:\\x\\y.log"), "old\r\nnew\r\n");

  addin.ui.QueueAnswer(kCancel);
  EXPECT_EQ(writer.InitializeLog("D:\\x\\y.log", 1, 0), clsCSVFileWriter::kErrCancelled);
  EXPECT_FALSE(writer.LogInitialized());
  EXPECT_EQ(addin.files().Contents("D:\\x\\y.log"), "old\r\nnew\r\n");
}

TEST_F(CsvFileWriterTest, OpeningTwiceWithoutReleaseFails) {
  ASSERT_EQ(writer.InitializeLog("D:\\x\\keep.log", 2, 2), 0);
  EXPECT_EQ(writer.InitializeLog("D:\\x\\keep.log", 2, 2), clsCSVFileWriter::kErrAlreadyOpen);
  ASSERT_FALSE(addin.ui.boxes.empty());
  EXPECT_EQ(addin.ui.boxes.back().style, platform::mb::kCritical);
  EXPECT_NE(addin.ui.boxes.back().prompt.find(" - clsLogFileWriter:InitializeLog"), std::string::npos);
}

}  // namespace
}  // namespace sentrune
