// The add-in's menu items, clicked in the scripted IDE under a display, a
// developer answering every message box.
#include "platform/win32/windows_api.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <vector>

#include "platform/win32/win32_text.h"
#include "scripted_ide_boxes.h"
#include "scripted_ide_session.h"

namespace sentrune::testing::ide {
namespace {

using Menu = Session;

size_t Snapshots(const fs::path& folder) {
  size_t count = 0;
  for (const auto& entry : fs::directory_iterator(folder)) {
    if (entry.is_directory() && entry.path().filename().wstring().starts_with(L"Widgets ") &&
        fs::exists(entry.path() / "Widgets.vbp"))
      ++count;
  }
  return count;
}

// Not clicked here: the Utilities items that add a class or a control, the
// scripted IDE having no VBComponents.AddFile; "&Inspect Components" and
// "Fix A&BS Paths", which ask for files through the common dialog.
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

}  // namespace
}  // namespace sentrune::testing::ide
