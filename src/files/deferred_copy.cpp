#include "files/deferred_copy.h"

#include "files/file_functions.h"
#include "state/msgbox.h"
#include "runtime/text.h"
#include "runtime/winpath.h"
#include "sysutil/shell_folders.h"

namespace sentrune {
namespace {

namespace mb = platform::mb;

// cmd expands %NAME% even between quotes; a doubled "%" is a literal one.
std::string Quoted(const std::string& path) { return "\"" + rt::Replace(path, "%", "%%") + "\""; }

bool UserWantsBatchFile(AddinState& state, const std::string& source, const std::string& destination) {
  const std::string prompt = "VB Reported 'Permission Denied' while trying to copy '" + source + "' to '" +
                             destination + "'.\r\n" +
                             "Do you want Sentrune to create a batch file on your desktop that you can use "
                             "to complete this operation after you shut VB down?";
  return lfncMsgBoxEX(state, prompt, mb::kYesNo | mb::kCritical, "Permission Denied") == mb::kYes;
}

}  // namespace

std::optional<std::string> DeferredCopyBatch(const std::string& source, const std::string& destination) {
  // A quotation mark would end the quoted path and let cmd run the rest of
  // the line; no Windows file name holds one.
  if (source.find('"') != std::string::npos || destination.find('"') != std::string::npos) return std::nullopt;
  return "@Echo Copying " + Quoted(source) + " to " + Quoted(destination) + "\r\n" +  //
         "@xcopy " + Quoted(source) + " " + Quoted(destination) + " /f\r\n" +        //
         "@Pause\r\n";
}

void lfncDeferredCopy(AddinState& state, const OptionSet& options, const std::string& source,
                      const std::string& destination) {
  if (!options.EnableDeferredActions) return;
  const std::optional<std::string> batch = DeferredCopyBatch(source, destination);
  if (!batch) {
    lfncMsgBoxEX(state,
                 "Sentrune did not write a batch file to copy '" + source + "' to '" + destination +
                     "': a path holds a quotation mark (\"), which no Windows file name can hold, and the batch "
                     "file would run what follows it as a command.",
                 mb::kExclamation, "Permission Denied");
    return;
  }
  if (!UserWantsBatchFile(state, source, destination)) return;
  const std::string desktop = ShellFolderPath(state.env(), platform::kFolderDesktop);
  if (desktop.empty()) return;
  const std::string batchFile =
      rt::AddBackslash(desktop) + "Copy " + rt::StripExtension(rt::GetFileTitle(source)) + ".bat";
  if (!state.files().WriteFile(batchFile, rt::Utf8ToCp1252(*batch))) return;
  lfncMsgBoxEX(state,
               "Sentrune created the following file:\r\n" + batchFile + "\r\n" +
                   "Double click the file above after shutting VB down",
               mb::kInformation, "Sentrune");
}

}  // namespace sentrune
