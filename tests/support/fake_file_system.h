#pragma once
// An in-memory file system that behaves as the add-in expects Windows to:
// names are matched without regard to case and keep the case they were
// created with, files report archive, read-only files refuse deletion and
// overwriting. Every drive (and share) exists unless LimitDrives says
// otherwise. It records the files it wrote, deleted, copied and renamed, and
// a test can make the next call of an operation fail with a chosen error number.
#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "platform/env.h"
#include "platform/file_system.h"
#include "runtime/text.h"

namespace sentrune::testing {

enum class FsOp { kRead, kWrite, kAppend, kDelete, kRename, kCopy, kCreateDirectory };

// The file changes made through the FileSystem interface, in order, with paths
// as the caller wrote them. Setup helpers (AddFile, AddFolder) are not
// recorded, and neither are calls that failed.
struct FsRecord {
  std::vector<std::string> written;         // WriteFile and AppendFile
  std::vector<std::string> deleted;         // DeleteFile
  std::vector<std::pair<std::string, uint32_t>> attributeSets;
  std::vector<std::pair<std::string, std::string>> copies;   // from, to
  std::vector<std::pair<std::string, std::string>> renames;  // from, to
};

class FakeFileSystem : public platform::FileSystem {
 public:
  static constexpr rt::DateTime kDefaultTime{2004, 5, 6, 14, 3, 9};

  // --- Setup, not recorded. Missing parent folders are created.
  void AddFile(const std::string& path, std::string bytes, rt::DateTime mtime = kDefaultTime);
  void AddFolder(const std::string& path);
  // From now on only these drive letters exist ("CT"); other drives fail
  // with 71 and shares with 76.
  void LimitDrives(std::string_view letters) { drives_ = rt::UCase(letters); }
  // Files written from now on get this clock's Now (else kDefaultTime).
  void UseClock(const platform::Clock* clock) { clock_ = clock; }
  // The next call of `op` whose path (either path for copy and rename)
  // names `path` fails with `errorNumber` and changes nothing; an empty
  // `path` matches any. MakeSureDirectoryPathExists also consults
  // kCreateDirectory for each folder it would create.
  void FailNext(FsOp op, const std::string& path, int32_t errorNumber);

  // --- Inspection.
  bool Exists(const std::string& path) const;
  // The bytes of a file; nothing for a folder or a missing path.
  std::optional<std::string> Contents(const std::string& path) const;
  const FsRecord& Record() const { return record_; }
  void ClearRecord() { record_ = {}; }

  // --- platform::FileSystem
  rt::Result<uint32_t> GetAttributes(const std::string& path) const override;
  rt::Status SetAttributes(const std::string& path, uint32_t attributes) override;
  rt::Result<rt::DateTime> GetLastWriteTime(const std::string& path) const override;
  rt::Status SetLastWriteTime(const std::string& path, const rt::DateTime& time) override;
  rt::Result<std::string> ReadFile(const std::string& path) const override;
  rt::Status WriteFile(const std::string& path, std::string_view bytes) override {
    return Put(path, bytes, false, FsOp::kWrite);
  }
  rt::Status AppendFile(const std::string& path, std::string_view bytes) override {
    return Put(path, bytes, true, FsOp::kAppend);
  }
  rt::Status DeleteFile(const std::string& path) override;
  rt::Status RenameReplace(const std::string& from, const std::string& to) override;
  rt::Status CopyFile(const std::string& from, const std::string& to, bool failIfExists) override;
  // Names are found in any letter case here, as on Windows.
  rt::Status CopyFileToNew(const std::string& from, const std::string& to) override {
    return CopyFile(from, to, true);
  }
  rt::Status CreateDirectory(const std::string& path) override;
  rt::Status RemoveDirectory(const std::string& path) override;
  rt::Status MakeSureDirectoryPathExists(const std::string& path) override;
  rt::Result<std::vector<platform::DirEntry>> List(const std::string& pattern) const override;
  rt::Result<std::string> GetLongPathName(const std::string& path) const override;

 private:
  struct Node {
    std::string path;  // stored spelling
    bool folder = false;
    std::string bytes;
    rt::DateTime mtime = kDefaultTime;
    uint32_t attributes = 0;  // the stored bits: read-only, hidden, system
    bool ReadOnly() const { return !folder && (attributes & platform::kAttrReadOnly); }
    // A folder reports only its hidden and system bits; a file is always archive.
    uint32_t Attributes() const {
      return folder ? platform::kAttrDirectory | (attributes & (platform::kAttrHidden | platform::kAttrSystem))
                    : platform::kAttrArchive | attributes;
    }
  };
  struct Where;

  // Fails with 53 for a missing item when `mustExist`.
  rt::Result<Where> Locate(const std::string& path, bool mustExist = false) const;
  std::optional<rt::VbError> TakeFailure(FsOp op, const std::string& path,
                                         const std::string& other = {}) const;
  rt::Status Put(const std::string& path, std::string_view bytes, bool append, FsOp op);
  Node& Create(const Where& where, bool folder);
  rt::DateTime NowForWrites() const { return clock_ ? clock_->Now() : kDefaultTime; }

  std::map<std::string, Node> nodes_;  // by upper-cased canonical path
  std::string drives_;                 // empty: every drive exists
  const platform::Clock* clock_ = nullptr;
  struct Failure {
    FsOp op;
    std::string key;
    int32_t number;
  };
  mutable std::vector<Failure> failures_;
  FsRecord record_;
};

}  // namespace sentrune::testing
