#include "files/xml_out.h"

#include <gtest/gtest.h>

#include "support/fake_file_system.h"

namespace sentrune {
namespace {

using platform::TreeNode;
using testing::FakeFileSystem;

TEST(XMLOut, IndentsByThreeAndTagsWithTheKeysLastPart) {
  const std::vector<TreeNode> tree{
      {"C:\\Lib.dll", "C:\\Lib.dll",
       {{"C:\\Lib.dll\\Classes", "Classes",
         {{"C:\\Lib.dll\\Classes\\My Class", "My Class", {{"C:\\Lib.dll\\Classes\\My Class\\GUID", "GUID: {1}", {}}}},
          {"C:\\Lib.dll\\Classes\\Empty", "Empty", {}}}}}},
      {"Second", "Second", {}}};
  EXPECT_EQ(XmlLines(tree), (std::vector<std::string>{"   <Lib.dll>",
                                                      "      <Classes>",
                                                      "         <My_Class>",
                                                      "            <GUID>",
                                                      "            GUID: {1}",
                                                      "            </GUID>",
                                                      "         </My_Class>",
                                                      "         <Empty>",
                                                      "         Empty",
                                                      "         </Empty>",
                                                      "      </Classes>",
                                                      "   </Lib.dll>",
                                                      "   <Second>",
                                                      "   </Second>"}));
}

TEST(XMLOut, WritesCrLfLinesMasksNonAsciiAndNeverEscapes) {
  FakeFileSystem fs;
  fs.AddFolder("C:\\Out");
  const std::vector<TreeNode> tree{
      {"R", "R", {{"R\\A", "a < b & \xC3\x88 \t end", {}}, {"R\\caf\xC3\xA9", "x", {}}}}};
  ASSERT_TRUE(XMLOut(fs, tree, "C:\\Out\\t.xml").ok());
  EXPECT_EQ(fs.Contents("C:\\Out\\t.xml"),
            "   <R>\r\n      <A>\r\n      a < b & # # end\r\n      </A>\r\n"
            "      <caf#>\r\n      x\r\n      </caf#>\r\n   </R>\r\n");
  // Replaces what was there.
  ASSERT_TRUE(XMLOut(fs, {{"Z", "Z", {}}}, "C:\\Out\\t.xml").ok());
  EXPECT_EQ(fs.Contents("C:\\Out\\t.xml"), "   <Z>\r\n   </Z>\r\n");
}

TEST(XMLOut, NothingIsWrittenWithoutANameOrWithoutNodes) {
  FakeFileSystem fs;
  fs.AddFolder("C:\\Out");
  EXPECT_TRUE(XMLOut(fs, {}, "C:\\Out\\empty.xml").ok());
  EXPECT_TRUE(XMLOut(fs, {{"R", "R", {}}}, "").ok());
  EXPECT_TRUE(fs.Record().written.empty());
  EXPECT_FALSE(XMLOut(fs, {{"R", "R", {}}}, "C:\\Missing\\x.xml").ok());
}

}  // namespace
}  // namespace sentrune
