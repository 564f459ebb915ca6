// The writing half of modFileFunctions: the guarded copy, which puts only
// whole files in place, and text files.
#include "files/deferred_copy.h"
#include "files/file_functions.h"
#include "files/trapped_error.h"
#include "state/msgbox.h"
#include "runtime/text.h"
#include "runtime/winpath.h"

namespace sentrune {
namespace {

namespace mb = platform::mb;

constexpr const char* kCopyTitle = "modFileFunctions:lfncCopyFileEX";

// A replaced target goes in one rename, which a read-only file refuses.
rt::Status MakeWritable(AddinState& state, const std::string& target) {
  platform::FileSystem& fs = state.files();
  const rt::Result<uint32_t> attributes = fs.GetAttributes(target);
  if (!attributes) return attributes.error();
  if (*attributes & platform::kAttrReadOnly) {
    if (rt::Status cleared = fs.SetAttributes(target, *attributes & ~uint32_t{platform::kAttrReadOnly}); !cleared)
      return cleared;
    state.env().DoEvents();
  }
  return {};
}

// Every byte of the source arrived: a full disk can leave a short copy
// behind a copy call that reported none.
rt::Status CheckComplete(const platform::FileSystem& fs, const std::string& source, const std::string& copy) {
  const rt::Result<std::string> original = fs.ReadFile(source);
  if (!original) return original.error();
  const rt::Result<std::string> copied = fs.ReadFile(copy);
  if (!copied) return copied.error();
  if (copied->size() == original->size()) return {};
  return rt::MakeError(rt::errnum::kDiskFull, rt::DescribeError(rt::errnum::kDiskFull) + ": " + copy);
}

void Discard(platform::FileSystem& fs, const std::string& temporary) {
  if (!lfncFileExists(fs, temporary)) return;
  (void)fs.SetAttributes(temporary, platform::kAttrArchive);
  (void)fs.DeleteFile(temporary);
}

// Copies beside the destination under a temporary name and renames the
// whole copy into place (the file system flushes it first), so that the
// destination is never a partial file and a failure leaves no file behind.
// `replacing` tells a failure to replace the destination from one to copy.
rt::Status CopyWhole(platform::FileSystem& fs, const std::string& source, const std::string& destination,
                     bool& replacing) {
  const std::string temporary = rt::GetFolder(destination) + "~" + rt::GetFileTitle(destination) + ".tmp";
  replacing = false;
  rt::Status status = fs.CopyFile(source, temporary, false);
  if (status) status = CheckComplete(fs, source, temporary);
  if (status) {
    replacing = lfncFileExists(fs, destination);
    status = fs.RenameReplace(temporary, destination);
  }
  if (!status) Discard(fs, temporary);
  return status;
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
  const rt::Status writable = MakeWritable(state, target);
  return writable ? -1 : writable.code();
}

int32_t lfncCopyFileEX(AddinState& state, const OptionSet& options, const std::string& source,
                       const std::string& destination, bool /*reserved*/, bool silent) {
  platform::FileSystem& fs = state.files();
  if (rt::Status folder = fs.MakeSureDirectoryPathExists(rt::GetFolder(destination)); !folder)
    return ReportTrappedError(state, folder.error(), kCopyTitle);
  const int32_t prepared = lfncPrepareOverwrite(state, destination, silent);
  if (prepared == 2) return 2;
  bool replacing = true;
  const rt::Status copied =
      prepared == -1 ? CopyWhole(fs, source, destination, replacing)
                     : rt::Status(rt::MakeError(prepared, rt::DescribeError(prepared) + ": " + destination));
  if (copied) return 0;
  // A destination in use (the IDE holds components loaded) can be replaced
  // once the IDE is closed.
  if (replacing && copied.code() == rt::errnum::kPermissionDenied) {
    lfncDeferredCopy(state, options, source, destination);
    return 7;
  }
  return ReportTrappedError(state, copied.error(), kCopyTitle);
}

int32_t lfncWriteTextFile(AddinState& state, const std::string& path, const std::string& text, bool append,
                          bool readOnly) {
  const rt::Status written = WriteText(state, path, text, append, readOnly);
  return written ? 0 : ReportTrappedError(state, written.error(), "modFileFunctions:lfncWriteTextFile");
}

}  // namespace sentrune
