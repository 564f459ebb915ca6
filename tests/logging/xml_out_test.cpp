#include "logging/xml_out.h"

#include <gtest/gtest.h>

#include "support/fake_file_system.h"

namespace sentrune {
namespace {

using platform::TreeNode;

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
