// The add-in's menu items, clicked in the scripted IDE under a display, a
// developer answering every message box.
#include "platform/win32/windows_api.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

#include "platform/win32/win32_text.h"
#include "scripted_ide_boxes.h"
#include "scripted_ide_session.h"

namespace sentrune::testing::ide {
namespace {

using Menu = Session;

std::string Read(const fs::path& file) {
  std::ifstream in(file, std::ios::binary);
  return {std::istreambuf_iterator<char>(in), {}};
}

size_t Snapshots(const fs::path& folder) {
  size_t count = 0;
  for (const auto& entry : fs::directory_iterator(folder)) {
    if (entry.is_directory() && entry.path().filename().wstring().starts_with(L"Widgets ") &&
        fs::exists(entry.path() / "Widgets.vbp"))
      ++count;
  }
  return count;
}

TEST_F(Menu, ItemsShowTheirBoxesAndDoTheirWork) {
  CopyWidgetsAskingNothing("ShowDiagnostics=0\r\n");
  ide_ = std::make_unique<ScriptedIde>();
  ASSERT_NE(ide_->mainWindow(), nullptr) << "no display for the IDE's main window";
  ASSERT_TRUE(ide_->Open(WindowsPath("Widgets/Widgets.vbp")).ok());
  ASSERT_NO_FATAL_FAILURE(Start());
  std::vector<SeenBox> boxes = developer_.Take();
  EXPECT_TRUE(boxes.empty()) << Describe(boxes);

  ASSERT_TRUE(Click(L"&Show References"));
  boxes = developer_.Take();
  ASSERT_EQ(boxes.size(), 1u) << Describe(boxes);
  EXPECT_NE(boxes[0].text.find(L"OLE Automation"), std::wstring::npos) << boxes[0].text;

  // The folder offered is accepted.
  developer_.Answer({IDYES});
  ASSERT_TRUE(Click(L"&Project Snapshot"));
  boxes = developer_.Take();
  ASSERT_EQ(boxes.size(), 2u) << Describe(boxes);
  EXPECT_EQ(boxes[0].title, L"Create Snapshot?");
  EXPECT_EQ(boxes[1].title, L"Project Snapshot");
  EXPECT_EQ(boxes[1].text, L"Operation Complete.");
  EXPECT_EQ(Snapshots(fs::path(folder_.path()) / "Widgets"), 1u);

  // Declined, the associations are left alone and nothing more is asked.
  developer_.Answer({IDNO});
  ASSERT_TRUE(Click(L"&Fix VB Associations"));
  boxes = developer_.Take();
  ASSERT_EQ(boxes.size(), 1u) << Describe(boxes);
  EXPECT_EQ(boxes[0].title, L"Fix Associations.");
  EXPECT_TRUE(boxes[0].text.starts_with(L"Fix VB file associations?")) << boxes[0].text;


  ASSERT_TRUE(Click(L"Sentrune &Options"));
  boxes = developer_.Take();
  ASSERT_EQ(boxes.size(), 1u) << Describe(boxes);
  EXPECT_NE(boxes[0].text.find(L"Track Time"), std::wstring::npos) << boxes[0].text;

  // The about box names the version; declining its help ends it.
  developer_.Answer({IDNO});
  ASSERT_TRUE(Click(L"Abo&ut"));
  boxes = developer_.Take();
  ASSERT_EQ(boxes.size(), 1u) << Describe(boxes);
  EXPECT_EQ(boxes[0].title, L"About Sentrune");
  EXPECT_TRUE(boxes[0].text.starts_with(win32::Widen(std::string("Sentrune ") + SENTRUNE_VERSION))) << boxes[0].text;

  EXPECT_EQ(addin_->Disconnect(), S_OK);
  ExpectAllReleased();
}

TEST_F(Menu, FileItemsWorkOnTheChosenFilesAndUtilitiesAddToTheProject) {
  CopyWidgetsAskingNothing("ShowDiagnostics=0\r\n");
  ide_ = std::make_unique<ScriptedIde>();
  ASSERT_TRUE(ide_->Open(WindowsPath("Widgets/Widgets.vbp")).ok());
  ASSERT_NO_FATAL_FAILURE(Start());
  std::vector<SeenBox> boxes = developer_.Take();
  EXPECT_TRUE(boxes.empty()) << Describe(boxes);
  const fs::path widgets = fs::path(folder_.path()) / "Widgets";

  // Two builds chosen in turn are compared: 2.0 broke 1.0.
  developer_.AnswerFile(fs::path(WindowsPath("Widgets/builds/Widgets-1.0.dll")).wstring());
  developer_.AnswerFile(fs::path(WindowsPath("Widgets/builds/Widgets-2.0.dll")).wstring());
  ASSERT_TRUE(Click(L"&Inspect Components"));
  boxes = developer_.Take();
  ASSERT_EQ(boxes.size(), 3u) << Describe(boxes);
  EXPECT_NE(boxes[2].text.find(L"Differences"), std::wstring::npos) << Describe(boxes);

  // The project names stdole2.tlb by its full path: made relative.
  developer_.AnswerFile(fs::path(WindowsPath("Widgets/Widgets.vbp")).wstring());
  ASSERT_TRUE(Click(L"Fix A&BS Paths"));
  boxes = developer_.Take();
  ASSERT_EQ(boxes.size(), 3u) << Describe(boxes);
  EXPECT_EQ(boxes[1].title, L"Full paths report.");
  EXPECT_EQ(boxes[2].text, L"File has changed. One or more absolute paths were found and fixed.");
  EXPECT_EQ(Read(widgets / "Widgets.vbp").find("#C:\\"), std::string::npos);

  ASSERT_TRUE(Click(L"&Add AlignmentHelper"));
  ASSERT_TRUE(Click(L"Add/&Refresh cVerifyInstallation"));
  boxes = developer_.Take();
  ASSERT_GE(boxes.size(), 2u) << Describe(boxes);
  EXPECT_EQ(boxes.front().text, L"UserControl has been added.") << Describe(boxes);
  EXPECT_EQ(boxes.back().text, L"Class module has been added/refreshed.") << Describe(boxes);
  const std::string vbp = Read(widgets / "Widgets.vbp");
  EXPECT_NE(vbp.find("UserControl=AlignmentHelper.ctl"), std::string::npos) << vbp;
  EXPECT_NE(vbp.find("Class=cVerifyInstallation; cVerifyInstallation.cls"), std::string::npos) << vbp;
  EXPECT_TRUE(fs::exists(widgets / "AlignmentHelper.ctl"));

  EXPECT_EQ(addin_->Disconnect(), S_OK);
  ExpectAllReleased();
}

}  // namespace
}  // namespace sentrune::testing::ide
