// Real projects written by others, read through the POSIX file system: each
// opens, and saving one unchanged gives back its bytes. The corpus is read in
// place; saved copies go to a temporary folder.
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>

#include "platform/headless/headless_ide.h"
#include "platform/posix/posix_file_system.h"
#include "runtime/text.h"
#include "support/temp_folder.h"

namespace sentrune::headless::test {
namespace {

namespace fs = std::filesystem;

std::string HostBytes(const fs::path& path) {
  std::ifstream in(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
}

class HeadlessCorpus : public ::testing::Test {
 protected:
  void SetUp() override {
    const fs::path corpus = fs::path(SENTRUNE_SHARED_DIR) / "corpus" / "vb6";
    if (!fs::is_directory(corpus)) GTEST_SKIP() << "no corpus at " << corpus;
    root_ = fs::canonical(corpus);
    // S: is the corpus, T: the scratch folder: paths that climb out of a
    // project stop at S:\ and never reach the rest of the machine.
    files_ = std::make_unique<posix::PosixFileSystem>(
        posix::DriveMap::Build("", {{'S', root_.string()}, {'T', temp_.path()}}));
  }

  // Corpus files with this extension (any case), relative, in a fixed order.
  std::vector<fs::path> Find(const std::string& extension) const {
    std::vector<fs::path> found;
    for (const auto& entry : fs::recursive_directory_iterator(root_))
      if (entry.is_regular_file() && rt::IEquals(entry.path().extension().string(), extension))
        found.push_back(fs::relative(entry.path(), root_));
    std::sort(found.begin(), found.end());
    return found;
  }
  static std::string Windows(const fs::path& relative) {
    std::string path = "S:\\" + relative.string();
    std::replace(path.begin(), path.end(), '/', '\\');
    return path;
  }
  std::shared_ptr<HeadlessProject> OpenProject(HeadlessIde& ide, const std::string& relative) {
    auto opened = ide.Open(Windows(relative));
    EXPECT_TRUE(opened.ok()) << relative << ": " << (opened.ok() ? "" : opened.error().description);
    return opened.ok() ? opened->projects.at(0) : nullptr;
  }

  fs::path root_;
  testing::TempFolder temp_;
  std::unique_ptr<posix::PosixFileSystem> files_;
};

TEST_F(HeadlessCorpus, EveryProjectOpensAndSavesUnchanged) {
  const auto projects = Find(".vbp");
  EXPECT_GE(projects.size(), 23u);
  int copy = 0;
  for (const fs::path& relative : projects) {
    HeadlessIde ide(*files_);
    const auto project = OpenProject(ide, relative.string());
    if (!project) continue;
    // Every component file is found (whatever the case of its name) but the
    // one that a stale 8.3 path places outside the repository.
    for (const std::string& missing : project->MissingFiles())
      EXPECT_NE(missing.find("\\PROGRA~2\\"), std::string::npos) << relative << ": " << missing;
    const std::string original = HostBytes(root_ / relative);
    EXPECT_EQ(project->Serialize(), original) << relative;
    const std::string folder = std::to_string(++copy);
    temp_.MakeFolder(folder);
    ASSERT_TRUE(project->SaveAs("T:\\" + folder + "\\" + relative.filename().string()).ok()) << relative;
    EXPECT_EQ(HostBytes(temp_ / (folder + "/" + relative.filename().string())), original) << relative;
  }
}

TEST_F(HeadlessCorpus, EveryGroupOpens) {
  const auto groups = Find(".vbg");
  EXPECT_GE(groups.size(), 7u);
  for (const fs::path& relative : groups) {
    HeadlessIde ide(*files_);
    const auto opened = ide.Open(Windows(relative));
    ASSERT_TRUE(opened.ok()) << relative;
    // The one group naming its member by a stale 8.3 path reports it and
    // goes on; every other member opens.
    const bool stale = relative.string().find("CSWindow") != std::string::npos;
    EXPECT_EQ(opened->problems.size(), stale ? 1u : 0u) << relative;
    EXPECT_EQ(opened->projects.empty(), stale) << relative;
    EXPECT_EQ(ide.ActiveVBProject() == nullptr, stale) << relative;
  }
}

TEST_F(HeadlessCorpus, OdditiesReadAsTheIdeReadsThem) {
  HeadlessIde ide(*files_);
  // A UNC output folder and a type library named by a resource index.
  const auto midi = OpenProject(ide, "KieuManh1974-vb6misc/Midi/midi.vbp");
  ASSERT_TRUE(midi);
  EXPECT_EQ(midi->BuildFileName(), "\\\\Vboxsvr\\c_drive\\Development\\Programming\\Midi\\midi.exe");
  EXPECT_TRUE(*midi->References()[1]->IsBroken());

  // Folder names whose case differs from the disk still resolve.
  const auto fcgi = OpenProject(ide, "jpbro-VbFcgi/src/VbFcgiAppDemo/VbFcgiApp.vbp");
  ASSERT_TRUE(fcgi);
  EXPECT_TRUE(fcgi->MissingFiles().empty());
  const auto lib = fcgi->References()[2];
  EXPECT_EQ(*lib->Major(), 13);
  EXPECT_FALSE(*lib->IsBroken());
  EXPECT_EQ(fcgi->CompatibleOleServer(), "S:\\jpbro-VbFcgi\\bin\\VbFcgiApp.dll");
  const auto csWindow = OpenProject(ide, "guille-phillips-vb6projects/Code Summary/CSWindow/CSWindow.vbp");
  ASSERT_TRUE(csWindow);
  EXPECT_TRUE(files_->GetAttributes(csWindow->CompatibleOleServer()).ok());

  // Six "#" fields, no ExeName32, and a trailing section.
  const auto server = OpenProject(ide, "RizkyKhapidsyah-Sample-ActiveX-Exe-Server_v1.0__VB6/MyServer.vbp");
  ASSERT_TRUE(server);
  EXPECT_EQ(*server->References()[0]->FullPath(), "C:\\Windows\\SysWOW64\\stdole2.tlb");
  EXPECT_EQ(server->BuildFileName(), "S:\\RizkyKhapidsyah-Sample-ActiveX-Exe-Server_v1.0__VB6\\MyServer.exe");

  // An 8.3 path that climbs out of the repository is a missing component.
  const auto names = OpenProject(ide, "KieuManh1974-vb6misc/Media Name Standardiser/StandardNames.vbp");
  ASSERT_TRUE(names);
  EXPECT_EQ(names->MissingFiles().size(), 1u);
}

}  // namespace
}  // namespace sentrune::headless::test
