#include "runtime/winpath.h"

#include <gtest/gtest.h>

#include <tuple>

namespace sentrune::rt {
namespace {

TEST(WinPath, SplitsAtTheLastBackslashAndDot) {
  // Folder | title | extension | without extension.
  const std::pair<const char*, const char*> cases[] = {
      {"C:\\Src\\Widgets\\Widgets.dll", "C:\\Src\\Widgets\\|Widgets.dll|.dll|C:\\Src\\Widgets\\Widgets"},
      {"C:\\a.b\\c", "C:\\a.b\\|c|.b\\c|C:\\a"},
      {"report", "|report||report"},
      {"a/b.txt", "|a/b.txt|.txt|a/b"},
  };
  for (const auto& [path, parts] : cases)
    EXPECT_EQ(GetFolder(path) + "|" + GetFileTitle(path) + "|" + GetExtension(path) + "|" + StripExtension(path), parts);
  EXPECT_EQ(AddBackslash("C:\\x\\"), "C:\\x\\");
  EXPECT_EQ(AddBackslash(""), "\\");
}

TEST(WinPath, ParseNormalisesAbsolutePaths) {
  const std::pair<const char*, const char*> cases[] = {
      {"c:\\a\\.\\b\\..\\c", "C:\\a\\c"}, {"C:/a//b/", "C:\\a\\b\\"}, {"C:\\..\\..\\x", "C:\\x"},
      {"C:\\a\\..", "C:\\"},              {"\\\\srv\\share\\", "\\\\srv\\share\\"},
      {"\\\\srv\\Share\\dir\\..\\f.txt", "\\\\srv\\Share\\f.txt"},
  };
  for (const auto& [in, joined] : cases) {
    const auto parsed = ParseWinPath(in);
    ASSERT_TRUE(parsed) << in;
    EXPECT_EQ(JoinWinPath(*parsed), joined) << in;
  }
  const auto unc = ParseWinPath("\\\\srv\\Share\\a\\b\\");
  ASSERT_TRUE(unc);
  EXPECT_EQ(unc->root, "\\\\srv\\Share");
  EXPECT_EQ(unc->parts, (std::vector<std::string>{"a", "b"}));
  for (const char* relative : {"", "a\\b", "C:a", "C:", "\\a", "\\\\srv", "\\\\srv\\", "1:\\x"})
    EXPECT_FALSE(ParseWinPath(relative)) << relative;
}

TEST(WinPath, RelativePathFollowsShlwapi) {
  // From, whether a folder, to, whether a folder, the relative path.
  const std::tuple<const char*, bool, const char*, bool, const char*> cases[] = {
      {"C:\\a", true, "C:\\a\\b.txt", false, ".\\b.txt"},
      {"C:\\a\\b\\path", true, "C:\\a\\x\\y\\file", false, "..\\..\\x\\y\\file"},
      {"C:\\Src\\App\\App.vbp", false, "C:\\Src\\Lib\\Widget.cls", false, "..\\Lib\\Widget.cls"},
      // A project file declared a directory gives one level too many.
      {"C:\\Src\\App\\App.vbp", true, "C:\\Src\\Lib\\Widget.cls", true, "..\\..\\Lib\\Widget.cls"},
      {"c:\\SRC\\app", true, "C:\\src\\App\\x.frm", false, ".\\x.frm"},
      {"C:\\a", true, "C:\\ab\\x", false, "..\\ab\\x"},  // whole components only
      {"C:\\a", true, "C:\\a", true, "."},
      {"C:\\a\\b", true, "C:\\a", true, ".."},
      {"C:\\x.txt", false, "C:\\y\\z.txt", false, ".\\y\\z.txt"},
      {"C:\\a", true, "C:\\a\\b\\", true, ".\\b\\"},
      {"\\\\srv\\s\\a", true, "\\\\SRV\\S\\b\\c.txt", false, "..\\b\\c.txt"},
  };
  for (const auto& [from, fromIsDir, to, toIsDir, expected] : cases)
    EXPECT_EQ(PathRelativePathTo(from, fromIsDir, to, toIsDir).value_or("<none>"), expected) << from << " -> " << to;
  EXPECT_FALSE(PathRelativePathTo("C:\\a", true, "D:\\a", true));
  EXPECT_FALSE(PathRelativePathTo("\\\\srv\\s1\\a", true, "\\\\srv\\s2\\a", true));
  EXPECT_FALSE(PathRelativePathTo("a\\b", true, "a\\c", true));
}

TEST(WinPath, WildcardMatchesLikeFindFirstFile) {
  const std::tuple<const char*, const char*, bool> cases[] = {
      {"*", "anything.at.all", true}, {"*.dll", "Widgets.DLL", true},   {"*.dll", "Widgets.dll.bak", false},
      {"a?c.txt", "abc.txt", true},   {"a?c.txt", "ac.txt", false},     {"a?c.txt", "abbc.txt", false},
      {"*.*", "Makefile", true},      {"readme.*", "README", true},     {"*.", "Makefile", true},
      {"*.", "a.txt", false},         {"\u00C9*", "\u00E9t\u00E9", true}, {"?", "\u00E9", true},
      {"*a*b", "xaxxb", true},        {"*a*b", "xaxxbx", false},        {"", "", true},
      {"", "a", false},
  };
  for (const auto& [pattern, name, matches] : cases)
    EXPECT_EQ(WildcardMatch(pattern, name), matches) << pattern << " ~ " << name;
}

}  // namespace
}  // namespace sentrune::rt
