// The writing half of modFileFunctions: clearing a target, the guarded copy
// and text files.
#include "files/deferred_copy.h"
#include "files/file_functions.h"
#include "files/trapped_error.h"
#include "state/msgbox.h"
#include "runtime/text.h"
#include "runtime/winpath.h"

namespace sentrune {
namespace {

namespace mb = platform::mb;

rt::Status ClearAndDelete(AddinState& state, const std::string& target) {
  platform::FileSystem& fs = state.files();
  const rt::Result<uint32_t> attributes = fs.GetAttributes(target);
  if (!attributes) return attributes.error();
  if (*attributes & platform::kAttrReadOnly) {
    if (rt::Status cleared = fs.SetAttributes(target, *attributes & ~uint32_t{platform::kAttrReadOnly}); !cleared)
      return cleared;
    state.env().DoEvents();
  }
  if (rt::Status deleted = fs.DeleteFile(target); !deleted) return deleted;
  state.env().DoEvents();
  return {};
}

rt::Status WriteText(AddinState& state, const std::string& path, const std::string& text, bool append,
                     bool readOnly) {
  platform::FileSystem& fs = state.files();
  if (lfncFileExists(fs, path)) {
    if (rt::Status writable = fs.SetAttributes(path, platform::kAttrArchive); !writable) return writable;
    if (!append)
      if (rt::Status deleted = fs.DeleteFile(path); !deleted) return deleted;
  }
  const std::string bytes = rt::Utf8ToCp1252(text + "\r\n");
  if (rt::Status written = append ? fs.AppendFile(path, bytes) : fs.WriteFile(path, bytes); !written)
    return written;
  if (!readOnly) return {};
  state.env().DoEvents();
  return fs.SetAttributes(path, platform::kAttrArchive | platform::kAttrReadOnly);
}

}  // namespace

int32_t lfncPrepareOverwrite(AddinState& state, const std::string& target, bool silent) {
  if (!lfncFileExists(state.files(), target)) return -1;
  if (!silent) {
    const int answer = lfncMsgBoxEX(state,
                                    "The file " + target + " already exists.\r\n" +
                                        "Press Ok to Overwrite or Cancel to abort.",
                                    mb::kOkCancel | mb::kExclamation, "File Already Exists");
    // A box suppressed during unload (answer 0) is no consent to overwrite.
    if (answer == mb::kCancel || answer == 0) return 2;
  }
  const rt::Status cleared = ClearAndDelete(state, target);
  return cleared ? -1 : cleared.code();
}

int32_t lfncCopyFileEX(AddinState& state, const OptionSet& options, const std::string& source,
                       const std::string& destination, bool /*reserved*/, bool silent) {
  if (!lfncEnsureFolder(state.files(), rt::GetFolder(destination))) return 0;
  const int32_t prepared = lfncPrepareOverwrite(state, destination, silent);
  if (prepared == 2) return 2;
  if (prepared == rt::errnum::kPermissionDenied) {
    lfncDeferredCopy(state, options, source, destination);
    return 7;
  }
  // Callers have always treated a copy that gets this far as done; a failure
  // here shows up as a missing file, not as a result code.
  (void)state.files().CopyFile(source, destination, false);
  return 0;
}

int32_t lfncWriteTextFile(AddinState& state, const std::string& path, const std::string& text, bool append,
                          bool readOnly) {
  const rt::Status written = WriteText(state, path, text, append, readOnly);
  return written ? 0 : ReportTrappedError(state, written.error(), "modFileFunctions:lfncWriteTextFile");
}

}  // namespace sentrune
