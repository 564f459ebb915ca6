#pragma once
// The user interface the core shows itself through. Forms keep their logic
// and state in the core; a Ui only presents them and returns the answers.
#include <optional>
#include <string>
#include <vector>

namespace sentrune::platform {

// Message box styles and answers, in the run time's encoding.
namespace mb {
inline constexpr int kOkOnly = 0, kOkCancel = 1, kYesNoCancel = 3, kYesNo = 4;
inline constexpr int kCritical = 16, kQuestion = 32, kExclamation = 48, kInformation = 64;
inline constexpr int kOk = 1, kCancel = 2, kYes = 6, kNo = 7;
}  // namespace mb

// What frmFileHandlerEX shows; filled by the core before showing it.
struct FileHandlerQuestion {
  std::string caption;
  std::string prompt;
  std::string sourceLabel;
  std::string destinationLabel;
  std::string source;
  std::string destination;
  bool enableEdit = false;
  bool browseEnabled = false;
  std::string browsePrompt;
  std::string browseStartPath;
  std::string browsePathFooter;
  bool commentsVisible = false;
  bool commentsEnabled = false;  // the store-comment check box
  std::string commentText;
  bool referencesVisible = false;
  bool referencesEnabled = false;  // the gather-references check box
};

// What the user did with it: the button (mb::kYes, kNo, kCancel) and the
// fields as they were when the dialog closed. A Ui may call `browse` on the
// core's form to turn a browsed folder into a destination; that logic lives
// in the core, so a Ui that browses hands back the chosen folder.
struct FileHandlerAnswer {
  int button = mb::kNo;
  std::string destination;
  std::optional<std::string> browsedFolder;  // set when the user browsed
  std::string commentText;
  bool commentsEnabled = false;
  bool referencesEnabled = false;
};

struct TreeNode {
  std::string key;
  std::string text;
  std::vector<TreeNode> children;
};

struct GridRow {
  int level = 0;           // outline level (0 for section titles)
  bool isSection = false;  // drawn as a section title row
  std::vector<std::string> cells;
};

// A form model to show: a text window, a tree or a grid with a caption.
struct FormView {
  enum class Kind { kText, kTree, kGrid };
  Kind kind = Kind::kText;
  std::string caption;
  std::string text;
  std::vector<TreeNode> tree;
  std::vector<std::string> headers;
  std::vector<GridRow> rows;
};

class Ui {
 public:
  virtual ~Ui() = default;
  // MsgBox: returns the pressed button's code.
  virtual int MsgBox(const std::string& prompt, int style, const std::string& title) = 0;
  // frmFileHandlerEX shown modally.
  virtual FileHandlerAnswer AskFileHandler(const FileHandlerQuestion& question) = 0;
  // Common dialog file pickers; nothing when cancelled. The filter is in the
  // common dialog's "Description|*.ext|..." form.
  virtual std::optional<std::string> OpenFile(const std::string& title, const std::string& filter) = 0;
  virtual std::optional<std::string> SaveFile(const std::string& title, const std::string& filter) = 0;
  // The shell's folder browser; empty text when cancelled.
  virtual std::string BrowseForFolder(const std::string& title, const std::string& startFolder) = 0;
  // Shows a form model modally.
  virtual void ShowForm(const FormView& form) = 0;
};

}  // namespace sentrune::platform
