// The reference list: reading one reference, the filter, the grid over a
// headless IDE and the CSV it saves; then both file commands end to end:
// their cores over scratch copies of real projects, and `sentrune refs` and
// `sentrune fix-paths` driven in-process.
#include <stdlib.h>

#include <CLI/CLI.hpp>
#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <sstream>

#include <gtest/gtest.h>

#include "files/path_fixer.h"
#include "files/reference_list.h"
#include "platform/headless/headless_ide.h"
#include "platform/posix/posix_env.h"
#include "runtime/text.h"
#include "commands.h"
#include "session.h"
#include "settings/options_handler.h"
#include "support/test_addin.h"

namespace sentrune::testing {
namespace {

namespace fs = std::filesystem;

// A reference whose properties can be set, and one of them made to fail as a
// broken reference's properties fail in the IDE.
struct FakeReference : platform::Reference {
  enum Property { kNone, kName, kDescription, kFullPath, kGuid, kMajor, kMinor, kBroken, kType };
  std::string name, description, fullPath, guid;
  int major = 0, minor = 0, type = platform::vbext_rk_TypeLib;
  bool broken = false;
  Property failing = kNone;

  template <typename T>
  rt::Result<T> Get(Property property, const T& value) const {
    if (property == failing) return rt::MakeError(rt::errnum::kFileNotFound);
    return value;
  }
  rt::Result<std::string> Name() const override { return Get(kName, name); }
  rt::Result<std::string> Description() const override { return Get(kDescription, description); }
  rt::Result<std::string> FullPath() const override { return Get(kFullPath, fullPath); }
  rt::Result<std::string> Guid() const override { return Get(kGuid, guid); }
  rt::Result<int> Major() const override { return Get(kMajor, major); }
  rt::Result<int> Minor() const override { return Get(kMinor, minor); }
  rt::Result<bool> IsBroken() const override { return Get(kBroken, broken); }
  rt::Result<int> Type() const override { return Get(kType, type); }
};

// Description, full path, GUID and kind as one text.
std::string Read(const FakeReference& reference) {
  const ReferenceRecord r = ReadReference(reference);
  return r.description + "|" + r.fullPath + "|" + r.guid + "|" + r.kind;
}

TEST(ReferenceRecord, MissingTextsAreCompletedInOrder) {
  FakeReference reference;
  EXPECT_EQ(Read(reference),
            " - [No description available.]|N/A - [Component not registered.]|N/A - [No GUID available.]|External");
  reference.broken = true;
  EXPECT_EQ(Read(reference), " - [No description available.] - [Missing/Broken Reference.]|"
                             "N/A - [Component not registered.]|N/A - [No GUID available.]|External");
  reference.description = "OLE Automation";
  reference.type = platform::vbext_rk_Project;
  EXPECT_EQ(Read(reference), "OLE Automation - [Missing/Broken Reference.]|"
                             "N/A - [Component not registered.]|N/A - [No GUID available.]|VBP");
}

TEST(ReferenceRecord, AFailingReadKeepsWhatWasReadBeforeItAndSaysSo) {
  FakeReference reference;
  reference.name = "Widgets";
  reference.description = "Widgets";
  reference.fullPath = "C:\\Src\\Widgets.dll";
  reference.guid = "{G}";
  reference.major = 1;
  reference.minor = 2;
  reference.broken = true;
  reference.type = platform::vbext_rk_Project;

  reference.failing = FakeReference::kFullPath;
  EXPECT_EQ(Read(reference), "Widgets - [Error Processing Reference.]|"
                             "N/A - [Component not registered.]|N/A - [No GUID available.]|External");
  EXPECT_EQ(ReadReference(reference).major, 0);
  reference.failing = FakeReference::kName;
  EXPECT_EQ(ReadReference(reference).description, " - [Error Processing Reference.]");
  reference.failing = FakeReference::kType;
  EXPECT_EQ(Read(reference), "Widgets - [Error Processing Reference.] - [Missing/Broken Reference.]|"
                             "C:\\Src\\Widgets.dll|{G}|External");
  EXPECT_EQ(ReadReference(reference).minor, 2);
}

TEST(ReferenceFilter, ListedFilesAndTheRuntimeLibraryWhenSwitchedOn) {
  OptionSet options;
  options.FilteredReferenceList = "|vb6.olb|vb5.olb|MSO.DLL|MSADDNDR.DLL|VB6EXT.OLB|";
  EXPECT_FALSE(IsFilteredReference(options, "C:\\Program Files\\VB98\\VB6.OLB"));
  options.ReferenceListFiltered = true;
  for (const char* left : {"C:\\Program Files\\VB98\\VB6.OLB", "C:\\Office\\mso.dll",
                           "C:\\Windows\\System32\\MSVBVM60.DLL\\3", "C:\\Windows\\System32\\msvbvm50.dll\\3"})
    EXPECT_TRUE(IsFilteredReference(options, left)) << left;
  for (const char* kept : {"C:\\Windows\\System32\\msvbvm60.dll", "C:\\Windows\\System32\\stdole2.tlb",
                           "C:\\Lib\\vb6.olb.bak", "C:\\Lib\\"})
    EXPECT_FALSE(IsFilteredReference(options, kept)) << kept;
  options.FilteredReferenceList = "|STDOLE2.TLB|";
  EXPECT_TRUE(IsFilteredReference(options, "C:\\Windows\\System32\\stdole2.tlb"));
}

constexpr const char* kStdole =
    "Reference=*\\G{00020430-0000-0000-C000-000000000046}#2.0#0#C:\\Windows\\System32\\stdole2.tlb#OLE Automation\r\n";
constexpr const char* kVb6 = "Reference=*\\G{FCFB3D2E-A0FA-1068-A738-08002B3371B5}#6.0#0#C:\\VB98\\VB6.OLB#VB6\r\n";

// An IDE with App (two type library references, one of them to the IDE's
// own library, and one to Lib) and Lib, opened alone or as a group.
struct ListWorld : TestAddin {
  ListWorld() {
    files().AddFile("C:\\Windows\\System32\\stdole2.tlb", "");
    files().AddFile("C:\\VB98\\VB6.OLB", "");
    files().AddFile("C:\\Src\\App\\App.vbp", std::string("Type=Exe\r\n") + kStdole + kVb6 +
                                                 "Reference=*\\A..\\Lib\\Lib.vbp\r\nName=\"App\"\r\n");
    files().AddFile("C:\\Src\\Lib\\Lib.vbp",
                    "Type=OleDll\r\nReference=*\\G{AAAAAAAA-0000-0000-0000-000000000001}#1.a#0#C:\\Gone\\"
                    "Util.dll#Util, \"the\" helpers\r\nName=\"Lib\"\r\n");
    files().AddFile("C:\\Src\\All.vbg", "VBGROUP 5.0\r\nStartupProject=App\\App.vbp\r\nProject=Lib\\Lib.vbp\r\n");
    handler.InitOptionDefaults();
    handler.options().ReferenceListFiltered = false;
    handler.options().FilteredReferenceList = "|vb6.olb|vb5.olb|MSO.DLL|MSADDNDR.DLL|VB6EXT.OLB|";
  }
  ReferenceList& Open(const std::string& path) {
    EXPECT_TRUE(ide.Open(path).ok()) << path;
    list.Fill();
    return list;
  }
  std::vector<std::vector<std::string>> Cells() const {
    std::vector<std::vector<std::string>> cells;
    for (const ReferenceRow& row : list.Rows()) cells.push_back(row.Cells());
    return cells;
  }

  OptionsHandler handler{state};
  headless::HeadlessIde ide{files()};
  ReferenceList list{state, handler, ide};
};

const std::vector<std::string> kStdoleRow{"1", "App", "OLE Automation", "C:\\Windows\\System32\\stdole2.tlb",
                                          "{00020430-0000-0000-C000-000000000046}", "2.0"};

TEST(ReferenceList, OneProjectIsListedAloneWithItsRowsNumberedFromOne) {
  ListWorld w;
  ReferenceList& list = w.Open("C:\\Src\\App\\App.vbp");
  EXPECT_EQ(list.Projects(), std::vector<std::string>{"App"});
  EXPECT_EQ(list.SelectedProject(), "App");
  const platform::FormView view = list.View();
  EXPECT_EQ(view.headers,
            (std::vector<std::string>{"Ref #", "Project", "Description", "Full Path", "GUID", "TLB Version"}));
  ASSERT_EQ(view.rows.size(), 3u);
  EXPECT_EQ(view.rows[0].cells, kStdoleRow);
  EXPECT_EQ(view.rows[2].cells[0], "3");
  EXPECT_EQ(list.Rows()[0].reference.kind, "External");
  EXPECT_EQ(list.Rows()[2].reference.kind, "VBP");

  // The filter drops the IDE's own library; the numbers close up.
  w.handler.options().ReferenceListFiltered = true;
  list.Fill();
  ASSERT_EQ(list.Rows().size(), 2u);
  EXPECT_EQ(w.Cells()[1][0], "2");
  EXPECT_EQ(list.Rows()[1].reference.kind, "VBP");
}

TEST(ReferenceList, AGroupOffersAllProjectsAndEachOnItsOwn) {
  ListWorld w;
  ReferenceList& list = w.Open("C:\\Src\\All.vbg");
  EXPECT_EQ(list.Projects(), (std::vector<std::string>{"-All Projects-", "App", "Lib"}));
  EXPECT_EQ(list.SelectedProject(), "-All Projects-");
  ASSERT_EQ(list.Rows().size(), 4u);
  const std::vector<std::string> util = w.Cells()[3];
  EXPECT_EQ(util, (std::vector<std::string>{"4", "Lib", "Util, \"the\" helpers - [Missing/Broken Reference.]",
                                            "C:\\Gone\\Util.dll", "{AAAAAAAA-0000-0000-0000-000000000001}", "1.10"}));

  EXPECT_TRUE(list.SelectProject("lib"));
  EXPECT_EQ(list.SelectedProject(), "Lib");
  ASSERT_EQ(list.Rows().size(), 1u);
  EXPECT_EQ(w.Cells()[0][0], "1");

  EXPECT_FALSE(list.SelectProject("Nope"));
  EXPECT_EQ(list.SelectedProject(), "Lib");
  EXPECT_EQ(list.Rows().size(), 1u);
}

TEST(ReferenceList, SavesTheGridAsCsvReplacingAnyFileWithoutAsking) {
  ListWorld w;
  ReferenceList& list = w.Open("C:\\Src\\All.vbg");
  const std::string out = "C:\\Out\\refs.csv";
  w.files().AddFile(out, "old");
  ASSERT_TRUE(w.files().SetAttributes(out, 33).ok());

  ASSERT_EQ(list.SaveList(out), 0);
  const std::string csv = w.files().Contents(out).value_or("");
  const std::string expectedRows =
      "Ref #,Project,Description,Full Path,GUID,TLB Version\r\n"
      "1,App,OLE Automation,C:\\Windows\\System32\\stdole2.tlb,{00020430-0000-0000-C000-000000000046},2.0\r\n"
      "2,App,VB6,C:\\VB98\\VB6.OLB,{FCFB3D2E-A0FA-1068-A738-08002B3371B5},6.0\r\n"
      // The writer trims every value, so the completed description loses its blank.
      "3,App,- [No description available.],C:\\Src\\Lib\\Lib.vbp,N/A - [No GUID available.],0.0\r\n"
      "4,Lib,\"Util, \"\"the\"\" helpers - [Missing/Broken Reference.]\",C:\\Gone\\Util.dll,"
      "{AAAAAAAA-0000-0000-0000-000000000001},1.10\r\n";
  EXPECT_TRUE(csv.starts_with(" --- Begin Log ---\r\nModel: Unknown,Serial Number: Unknown,Date: ")) << csv;
  const size_t rows = csv.find("Ref #");
  ASSERT_NE(rows, std::string::npos) << csv;
  EXPECT_EQ(csv.substr(rows), expectedRows + " --- End Log ---\r\n");
  EXPECT_EQ(w.files().GetAttributes(out).value() & platform::kAttrReadOnly, 0u);
  ASSERT_EQ(w.ui.boxes.size(), 1u);  // no overwrite question
  EXPECT_EQ(w.ui.boxes[0].title + "|" + std::to_string(w.ui.boxes[0].style) + "|" + w.ui.boxes[0].prompt,
            "Sentrune|64|CSV File Saved\r\n" + out);
  EXPECT_EQ(list.SavedFile(), out);
}

TEST(ReferenceList, SaveButtonAsksForTheFileAndACancelWritesNothing) {
  ListWorld w;
  ReferenceList& list = w.Open("C:\\Src\\App\\App.vbp");
  w.files().ClearRecord();
  w.ui.QueueSaveFile(std::nullopt);
  EXPECT_EQ(list.cmdSaveList_Click(), 0);
  EXPECT_TRUE(w.files().Record().written.empty());
  EXPECT_TRUE(w.ui.boxes.empty());

  w.ui.QueueSaveFile("C:\\Out\\refs");
  EXPECT_EQ(list.cmdSaveList_Click(), 0);
  EXPECT_TRUE(w.files().Exists("C:\\Out\\refs.csv"));
  EXPECT_EQ(w.ui.pickerTitles, (std::vector<std::string>{"Save Reference List", "Save Reference List"}));

  // A folder the writer cannot make: its own error, no saved report.
  w.ui.boxes.clear();
  w.files().LimitDrives("C");
  EXPECT_NE(list.SaveList("Q:\\Out\\refs.csv"), 0);
  for (const AskedBox& box : w.ui.boxes) EXPECT_EQ(box.prompt.find("CSV File Saved"), std::string::npos);
}

TEST(ReferenceList, ColumnWidthsAreRememberedByColumnNumberFromOne) {
  ListWorld w;
  w.handler.SaveOption("References_ColWidth3", "2500");
  w.handler.SaveOption("References_Height", "4000");
  ReferenceList& list = w.Open("C:\\Src\\App\\App.vbp");
  EXPECT_EQ(list.colWidths, (std::array<int32_t, 6>{-1, -1, 2500, -1, -1, -1}));
  EXPECT_EQ(list.height, 4000);
  list.colWidths[5] = 900;
  list.SaveLayout();
  EXPECT_EQ(w.handler.GetOption("References_ColWidth6"), "900");
}

// --- Both commands end to end.

std::string HostBytes(const fs::path& path) {
  std::ifstream in(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
}

void WriteHost(const fs::path& path, const std::string& bytes) {
  std::ofstream(path, std::ios::binary | std::ios::trunc) << bytes;
}

std::string WindowsText(const fs::path& path) {
  std::string text = path.string();
  std::replace(text.begin(), text.end(), '/', '\\');
  return text;
}

// A scratch folder, removed afterwards, and the add-in over the real file
// system with drive C: mapped to scratch/c.
class ScratchFolder : public ::testing::Test {
 protected:
  void SetUp() override {
    std::string pattern = (fs::temp_directory_path() / "sentrune-files-XXXXXX").string();
    ASSERT_NE(mkdtemp(pattern.data()), nullptr);
    temp_ = fs::canonical(pattern);
    root_ = temp_ / "c";
    fs::create_directories(root_);
    posix::PosixEnvOptions options;
    options.homeHostDir = (temp_ / "home").string();
    options.drives = {{'C', root_.string()}};
    env_ = std::make_unique<posix::PosixEnv>(options);
    profiles_ = std::make_unique<portable::PortableProfileFiles>(env_->Files());
    versions_ = std::make_unique<portable::PortableVersionResources>(env_->Files());
    typelibs_ = std::make_unique<portable::PortableTypeLibSource>(env_->Files());
    state_ = std::make_unique<AddinState>(Platform{*env_, ui_, *profiles_, *versions_, *typelibs_});
    handler_ = std::make_unique<OptionsHandler>(*state_);
    handler_->InitOptionDefaults();
    handler_->options().BackupFolderName = "History\\";
    handler_->options().DateFormatString = "yyyy.mm.dd-hh.nn.ss";
    handler_->options().FilteredReferenceList = "|vb6.olb|vb5.olb|MSO.DLL|MSADDNDR.DLL|VB6EXT.OLB|";
  }
  void TearDown() override {
    std::error_code ignored;
    if (!temp_.empty()) fs::remove_all(temp_, ignored);
  }

  struct Run {
    int code;
    std::string out, err;
  };
  Run Sentrune(std::vector<std::string> args) {
    std::istringstream in;
    std::ostringstream out, err;
    cli::Session session(in, out, err);
    session.global.home = (temp_ / "home").string();
    CLI::App app;
    cli::AddRefsCommand(app, session);
    cli::AddFixPathsCommand(app, session);
    args.insert(args.begin(), "sentrune");
    std::vector<const char*> argv;
    for (const std::string& arg : args) argv.push_back(arg.c_str());
    app.parse(static_cast<int>(argv.size()), argv.data());
    return {session.exitCode, out.str(), err.str()};
  }

  fs::path temp_, root_;
  FakeUi ui_;
  std::unique_ptr<posix::PosixEnv> env_;
  std::unique_ptr<portable::PortableProfileFiles> profiles_;
  std::unique_ptr<portable::PortableVersionResources> versions_;
  std::unique_ptr<portable::PortableTypeLibSource> typelibs_;
  std::unique_ptr<AddinState> state_;
  std::unique_ptr<OptionsHandler> handler_;
};

class FilesCorpus : public ScratchFolder {
 protected:
  void SetUp() override {
    const fs::path corpus = fs::path(SENTRUNE_SHARED_DIR) / "corpus" / "vb6";
    if (!fs::is_directory(corpus)) GTEST_SKIP() << "no corpus at " << corpus;
    ScratchFolder::SetUp();
    fs::copy(corpus, root_, fs::copy_options::recursive | fs::copy_options::overwrite_existing);
    // The corpus is stored read-only; the copies must be writable projects.
    for (const auto& entry : fs::recursive_directory_iterator(root_))
      fs::permissions(entry.path(), fs::perms::owner_write, fs::perm_options::add);
    for (const auto& entry : fs::recursive_directory_iterator(root_)) {
      const std::string extension = entry.path().extension().string();
      if (entry.is_regular_file() && (rt::IEquals(extension, ".vbp") || rt::IEquals(extension, ".vbg")))
        files_.push_back(fs::relative(entry.path(), root_));
    }
    std::sort(files_.begin(), files_.end());
  }

  // Rewrites each "Name; path" component line, and each form line, whose
  // file exists as written to an absolute path on C:, and gives what the
  // fixer must make of every line: std::filesystem's own relative path in
  // lower case for the first kind, the absolute line itself for the second.
  std::vector<std::string> Absolutise(const fs::path& project, std::vector<std::string>& lines, bool& fixable) {
    const fs::path folder = root_ / project.parent_path();
    std::vector<std::string> expected = lines;
    for (size_t i = 0; i < lines.size(); ++i) {
      const size_t equals = lines[i].find('='), semicolon = lines[i].find(';');
      const std::string key = lines[i].substr(0, equals == std::string::npos ? 0 : equals);
      const bool named = key == "Class" || key == "Module" || key == "UserControl";
      if ((!named && key != "Form") || named != (semicolon != std::string::npos)) continue;
      std::string relative = rt::Trim(lines[i].substr(named ? semicolon + 1 : equals + 1));
      std::replace(relative.begin(), relative.end(), '\\', '/');
      const fs::path target = (folder / relative).lexically_normal();
      if (!fs::is_regular_file(target)) continue;
      const std::string absolute = "C:\\" + WindowsText(fs::relative(target, root_));
      if (!named) {
        expected[i] = lines[i] = key + "=" + absolute;
        continue;
      }
      const std::string name = lines[i].substr(equals + 1, semicolon - equals - 1);
      lines[i] = key + "=" + name + "; " + absolute;
      expected[i] = key + "=" + rt::LTrim(name) + "#" + rt::LCase(WindowsText(target.lexically_relative(folder)));
      fixable = true;
    }
    return expected;
  }

  void CheckList(const fs::path& file, headless::HeadlessIde& ide, bool filtered) {
    handler_->options().ReferenceListFiltered = filtered;
    ReferenceList list(*state_, *handler_, ide);
    list.Fill();
    size_t references = 0;
    for (const platform::ProjectPtr& project : ide.VBProjects()) references += project->References().size();
    const size_t open = ide.VBProjects().size();
    EXPECT_EQ(list.Projects().size(), open > 1 ? open + 1 : open) << file;
    EXPECT_TRUE(filtered ? list.Rows().size() <= references : list.Rows().size() == references) << file;
    for (size_t i = 0; i < list.Rows().size(); ++i) {
      const std::vector<std::string> cells = list.Rows()[i].Cells();
      EXPECT_EQ(cells[0], std::to_string(i + 1)) << file;
      for (const std::string& cell : cells) EXPECT_FALSE(cell.empty()) << file << " row " << i;
    }
    ASSERT_EQ(list.SaveList("C:\\refs.csv"), 0) << file;
    const std::string csv = HostBytes(root_ / "refs.csv");
    EXPECT_EQ(static_cast<size_t>(std::count(csv.begin(), csv.end(), '\n')), list.Rows().size() + 4) << file;
  }

  void CheckFixer(const fs::path& project) {
    const std::string windows = "C:\\" + WindowsText(project);
    const std::string original = HostBytes(root_ / project);
    EXPECT_EQ(Parse4ABSFile(*state_, handler_->options(), windows).outcome, PathFixResult::Outcome::kNothingFound)
        << project;
    EXPECT_EQ(HostBytes(root_ / project), original) << project;

    std::vector<std::string> lines = SplitLines(original);
    bool fixable = false;
    const std::vector<std::string> expected = Absolutise(project, lines, fixable);
    std::string absolute, fixed;
    for (size_t i = 0; i < lines.size(); ++i) {
      absolute += lines[i] + (i + 1 < lines.size() ? "\r\n" : "");
      fixed += expected[i] + "\r\n";
    }
    WriteHost(root_ / project, absolute);
    const PathFixResult result = Parse4ABSFile(*state_, handler_->options(), windows);
    EXPECT_EQ(result.outcome, fixable ? PathFixResult::Outcome::kFixed : PathFixResult::Outcome::kNothingFound)
        << project;
    EXPECT_EQ(HostBytes(root_ / project), fixable ? fixed : absolute) << project;
    if (fixable) {
      std::string backup = result.backupFile.substr(3);
      std::replace(backup.begin(), backup.end(), '\\', '/');
      EXPECT_EQ(HostBytes(root_ / backup), absolute) << project;
      ++fixedProjects_;
    }
  }

  static std::vector<std::string> SplitLines(const std::string& text) {
    std::vector<std::string> lines;
    size_t start = 0;
    for (size_t found; (found = text.find("\r\n", start)) != std::string::npos; start = found + 2)
      lines.push_back(text.substr(start, found - start));
    lines.push_back(text.substr(start));
    return lines;
  }

  std::vector<fs::path> files_;
  int fixedProjects_ = 0;
};

TEST_F(FilesCorpus, EveryProjectListsItsReferencesAndHasItsPathsFixed) {
  EXPECT_GE(files_.size(), 30u);
  for (const fs::path& file : files_) {
    headless::HeadlessIde ide(env_->Files(), typelibs_.get());
    ASSERT_TRUE(ide.Open("C:\\" + WindowsText(file)).ok()) << file;
    CheckList(file, ide, false);
    CheckList(file, ide, true);
    if (rt::IEquals(file.extension().string(), ".vbp")) CheckFixer(file);
  }
  EXPECT_GE(fixedProjects_, 10);
}

TEST_F(ScratchFolder, RefsCommandPrintsOrSavesTheList) {
  const fs::path project = root_ / "App" / "App.vbp";
  fs::create_directories(project.parent_path());
  WriteHost(project, "Type=Exe\r\nReference=*\\G{00020430-0000-0000-C000-000000000046}#2.0#0#Z:\\nowhere\\"
                     "stdole2.tlb#OLE Automation\r\nName=\"App\"\r\n");
  const Run shown = Sentrune({"refs", project.string()});
  EXPECT_EQ(shown.code, 0) << shown.err;
  EXPECT_EQ(shown.out,
            "Ref #  Project  Description                                   Full Path               GUID      "
            "                              TLB Version  Kind\n"
            "1      App      OLE Automation - [Missing/Broken Reference.]  Z:\\nowhere\\stdole2.tlb  "
            "{00020430-0000-0000-C000-000000000046}  2.0          External\n");

  const fs::path csv = temp_ / "refs.csv";
  const Run saved = Sentrune({"refs", project.string(), "--csv", csv.string()});
  EXPECT_EQ(saved.code, 0) << saved.err;
  EXPECT_EQ(saved.out, csv.string() + "\n");
  EXPECT_NE(HostBytes(csv).find("\r\n1,App,OLE Automation"), std::string::npos);

  EXPECT_EQ(Sentrune({"refs", project.string(), "--project", "Other"}).code, 2);
  const Run missing = Sentrune({"refs", (temp_ / "Gone.vbp").string()});
  EXPECT_EQ(missing.code, 2);
  EXPECT_NE(missing.err.find("Gone.vbp"), std::string::npos) << missing.err;
}

TEST_F(ScratchFolder, FixPathsCommandFixesAndRefusesWhatItCannotTouch) {
  const fs::path project = root_ / "App" / "App.vbp";
  fs::create_directories(project.parent_path());
  fs::create_directories(root_ / "Lib");
  WriteHost(root_ / "Lib" / "Widget.cls", "VERSION 1.0 CLASS\r\n");
  // Z: is the host's root, so the scratch folder's Windows form is known.
  WriteHost(project, "Type=Exe\r\nClass=Widget; Z:" + WindowsText(root_ / "Lib" / "Widget.cls") + "\r\n");
  const Run fixed = Sentrune({"fix-paths", project.string()});
  EXPECT_EQ(fixed.code, 0) << fixed.err;
  EXPECT_NE(fixed.out.find("Has been changed to:\nClass=Widget#..\\lib\\widget.cls\n"), std::string::npos)
      << fixed.out;
  EXPECT_EQ(HostBytes(project), "Type=Exe\r\nClass=Widget#..\\lib\\widget.cls\r\n\r\n");
  const size_t backup = fixed.out.find("Backup: ");
  ASSERT_NE(backup, std::string::npos) << fixed.out;
  const fs::path backupPath = fixed.out.substr(backup + 8, fixed.out.find('\n', backup) - backup - 8);
  EXPECT_EQ(backupPath.parent_path(), project.parent_path() / "History");
  EXPECT_TRUE(HostBytes(backupPath).starts_with("Type=Exe\r\nClass=Widget; Z:"));

  fs::permissions(project, fs::perms::owner_read | fs::perms::group_read);
  const Run readOnly = Sentrune({"fix-paths", project.string()});
  EXPECT_EQ(readOnly.code, 2);
  EXPECT_NE(readOnly.err.find("Project File is Read-Only."), std::string::npos) << readOnly.err;
  fs::permissions(project, fs::perms::owner_write, fs::perm_options::add);

  const Run missing = Sentrune({"fix-paths", (root_ / "App" / "Gone.vbp").string()});
  EXPECT_EQ(missing.code, 2);
  EXPECT_NE(missing.err.find("Gone.vbp"), std::string::npos) << missing.err;
}

}  // namespace
}  // namespace sentrune::testing
