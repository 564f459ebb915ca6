#include "support/fake_file_system.h"

#include "runtime/winpath.h"

namespace sentrune::testing {

namespace errnum = rt::errnum;
using platform::DirEntry;

// Where a Windows path lands in the store.
struct FakeFileSystem::Where {
  std::string key;         // folded canonical path
  std::string parentPath;  // stored spelling of the folder that holds it
  std::string name;        // last component as given; empty for a root
  const Node* node = nullptr;
  bool isRoot = false;
  bool trailingSlash = false;

  bool Present() const { return isRoot || node != nullptr; }
  bool Folder() const { return isRoot || (node && node->folder); }
  std::string NewPath() const { return parentPath + "\\" + name; }
};

namespace {

rt::VbError Error(int32_t number, const std::string& path) {
  return rt::MakeError(number, rt::DescribeError(number) + ": " + path);
}

std::string KeyOf(const rt::WinPath& path, size_t count) {
  std::string key = rt::UCase(path.root);
  for (size_t i = 0; i < count; ++i) key += "\\" + rt::UCase(path.parts[i]);
  return key;
}

std::string KeyOf(const std::string& path) {
  const std::optional<rt::WinPath> parsed = rt::ParseWinPath(path);
  return parsed ? KeyOf(*parsed, parsed->parts.size()) : rt::UCase(path);
}

bool IsBelow(const std::string& key, const std::string& folderKey) {
  return key.size() > folderKey.size() && key.compare(0, folderKey.size(), folderKey) == 0 &&
         key[folderKey.size()] == '\\';
}

}  // namespace

// --- Setup and inspection

void FakeFileSystem::AddFolder(const std::string& path) {
  const std::optional<rt::WinPath> parsed = rt::ParseWinPath(path);
  if (!parsed) return;
  std::string stored = parsed->root;
  for (size_t i = 0; i < parsed->parts.size(); ++i) {
    Node& node = nodes_[KeyOf(*parsed, i + 1)];
    if (node.path.empty()) {
      node.path = stored + "\\" + parsed->parts[i];
      node.folder = true;
    }
    stored = node.path;
  }
}

void FakeFileSystem::AddFile(const std::string& path, std::string bytes, rt::DateTime mtime) {
  const std::optional<rt::WinPath> parsed = rt::ParseWinPath(path);
  if (!parsed || parsed->parts.empty()) return;
  AddFolder(rt::GetFolder(rt::JoinWinPath(*parsed)));
  const auto parent = nodes_.find(KeyOf(*parsed, parsed->parts.size() - 1));
  Node& node = nodes_[KeyOf(*parsed, parsed->parts.size())];
  const std::string& folder = parent == nodes_.end() ? parsed->root : parent->second.path;
  node = Node{folder + "\\" + parsed->parts.back(), false, std::move(bytes), mtime, node.attributes};
}

void FakeFileSystem::FailNext(FsOp op, const std::string& path, int32_t errorNumber) {
  failures_.push_back({op, path.empty() ? std::string() : KeyOf(path), errorNumber});
}

bool FakeFileSystem::Exists(const std::string& path) const { return Locate(path, true).ok(); }

std::optional<std::string> FakeFileSystem::Contents(const std::string& path) const {
  const rt::Result<Where> where = Locate(path);
  return where && where->node && !where->node->folder ? std::optional(where->node->bytes) : std::nullopt;
}

// --- Lookup

rt::Result<FakeFileSystem::Where> FakeFileSystem::Locate(const std::string& path, bool mustExist) const {
  const std::optional<rt::WinPath> parsed = rt::ParseWinPath(path);
  if (!parsed) return Error(errnum::kBadFileNameOrNumber, path);
  const bool drive = parsed->root.size() == 2 && parsed->root[1] == ':';
  if (!drives_.empty() && (!drive || drives_.find(parsed->root[0]) == std::string::npos))
    return Error(drive ? errnum::kDiskNotReady : errnum::kPathNotFound, path);

  Where where;
  where.parentPath = parsed->root;
  where.trailingSlash = parsed->trailingSlash;
  const size_t count = parsed->parts.size();
  for (size_t i = 0; i + 1 < count; ++i) {
    const auto folder = nodes_.find(KeyOf(*parsed, i + 1));
    if (folder == nodes_.end() || !folder->second.folder) return Error(errnum::kPathNotFound, path);
    where.parentPath = folder->second.path;
  }
  where.key = KeyOf(*parsed, count);
  where.isRoot = count == 0;
  if (!where.isRoot) where.name = parsed->parts.back();
  if (const auto found = nodes_.find(where.key); found != nodes_.end()) where.node = &found->second;  // never a root
  if (mustExist && !where.Present()) return Error(errnum::kFileNotFound, path);
  return where;
}

std::optional<rt::VbError> FakeFileSystem::TakeFailure(FsOp op, const std::string& path,
                                                       const std::string& other) const {
  for (auto it = failures_.begin(); it != failures_.end(); ++it) {
    if (it->op != op) continue;
    if (!it->key.empty() && it->key != KeyOf(path) && (other.empty() || it->key != KeyOf(other))) continue;
    const rt::VbError error = Error(it->number, path);
    failures_.erase(it);
    return error;
  }
  return std::nullopt;
}

FakeFileSystem::Node& FakeFileSystem::Create(const Where& where, bool folder) {
  return nodes_[where.key] = Node{where.NewPath(), folder, {}, NowForWrites(), 0};
}

// --- Attributes and times

rt::Result<uint32_t> FakeFileSystem::GetAttributes(const std::string& path) const {
  rt::Result<Where> where = Locate(path, true);
  if (!where) return where.error();
  return where->isRoot ? uint32_t{platform::kAttrDirectory} : where->node->Attributes();
}

rt::Status FakeFileSystem::SetAttributes(const std::string& path, uint32_t attributes) {
  rt::Result<Where> where = Locate(path, true);
  if (!where) return where.error();
  const uint32_t stored = platform::kAttrReadOnly | platform::kAttrHidden | platform::kAttrSystem;
  if (!where->isRoot) nodes_[where->key].attributes = attributes & stored;
  record_.attributeSets.emplace_back(path, attributes);
  return {};
}

rt::Result<rt::DateTime> FakeFileSystem::GetLastWriteTime(const std::string& path) const {
  rt::Result<Where> where = Locate(path, true);
  if (!where) return where.error();
  return where->isRoot ? kDefaultTime : where->node->mtime;
}

rt::Status FakeFileSystem::SetLastWriteTime(const std::string& path, const rt::DateTime& time) {
  if (!time.IsValid()) return Error(errnum::kInvalidProcedureCall, path);
  rt::Result<Where> where = Locate(path, true);
  if (!where) return where.error();
  if (!where->isRoot) nodes_[where->key].mtime = time;
  return {};
}

// --- Contents

rt::Result<std::string> FakeFileSystem::ReadFile(const std::string& path) const {
  if (auto failure = TakeFailure(FsOp::kRead, path)) return *failure;
  rt::Result<Where> where = Locate(path, true);
  if (!where) return where.error();
  if (where->Folder()) return Error(errnum::kPathFileAccessError, path);
  return where->node->bytes;
}

rt::Status FakeFileSystem::Put(const std::string& path, std::string_view bytes, bool append, FsOp op) {
  if (auto failure = TakeFailure(op, path)) return *failure;
  rt::Result<Where> where = Locate(path);
  if (!where) return where.error();
  if (where->Folder() || (where->node && where->node->ReadOnly()))
    return Error(errnum::kPathFileAccessError, path);
  Node& node = where->node ? nodes_[where->key] : Create(*where, false);
  if (!append) node.bytes.clear();
  node.bytes.append(bytes);
  node.mtime = NowForWrites();
  record_.written.push_back(path);
  return {};
}

rt::Status FakeFileSystem::DeleteFile(const std::string& path) {
  if (auto failure = TakeFailure(FsOp::kDelete, path)) return *failure;
  rt::Result<Where> where = Locate(path, true);
  if (!where) return where.error();
  if (where->Folder()) return Error(errnum::kFileNotFound, path);
  if (where->node->ReadOnly()) return Error(errnum::kPathFileAccessError, path);
  nodes_.erase(where->key);
  record_.deleted.push_back(path);
  return {};
}

rt::Status FakeFileSystem::RenameReplace(const std::string& from, const std::string& to) {
  if (auto failure = TakeFailure(FsOp::kRename, from, to)) return *failure;
  rt::Result<Where> source = Locate(from, true);
  if (!source) return source.error();
  rt::Result<Where> target = Locate(to);
  if (!target) return target.error();
  if (source->isRoot || target->isRoot || IsBelow(target->key, source->key))
    return Error(errnum::kPathFileAccessError, to);
  if (target->node && target->key != source->key) {
    if (target->node->folder) return Error(errnum::kPathFileAccessError, to);
    if (target->node->ReadOnly()) return Error(errnum::kPermissionDenied, to);
  }
  // Move the item and, for a folder, everything below it.
  // A replaced file keeps its stored name, as rename(2) keeps it on a host
  // folder; renaming onto itself takes the new spelling.
  const std::string oldPath = source->node->path;
  const std::string newPath =
      target->node && target->key != source->key ? target->node->path : target->NewPath();
  std::map<std::string, Node> moved;
  for (auto it = nodes_.begin(); it != nodes_.end();) {
    if (it->first != source->key && !IsBelow(it->first, source->key)) {
      ++it;
      continue;
    }
    Node node = std::move(it->second);
    node.path = newPath + node.path.substr(oldPath.size());
    moved.emplace(target->key + it->first.substr(source->key.size()), std::move(node));
    it = nodes_.erase(it);
  }
  nodes_.erase(target->key);
  nodes_.merge(moved);
  record_.renames.emplace_back(from, to);
  return {};
}

rt::Status FakeFileSystem::CopyFile(const std::string& from, const std::string& to, bool failIfExists) {
  if (auto failure = TakeFailure(FsOp::kCopy, from, to)) return *failure;
  rt::Result<Where> source = Locate(from, true);
  if (!source) return source.error();
  if (source->Folder()) return Error(errnum::kPathFileAccessError, from);
  rt::Result<Where> target = Locate(to);
  if (!target) return target.error();
  if (target->Present()) {
    if (failIfExists) return Error(errnum::kFileAlreadyExists, to);
    if (target->Folder() || target->key == source->key) return Error(errnum::kPathFileAccessError, to);
    if (target->node->ReadOnly()) return Error(errnum::kPermissionDenied, to);
  }
  const Node original = *source->node;
  Node& copy = target->node ? nodes_[target->key] : Create(*target, false);
  copy = Node{copy.path, false, original.bytes, original.mtime, original.attributes};  // attributes too, as CopyFile
  record_.copies.emplace_back(from, to);
  return {};
}

// --- Folders

rt::Status FakeFileSystem::CreateDirectory(const std::string& path) {
  if (auto failure = TakeFailure(FsOp::kCreateDirectory, path)) return *failure;
  rt::Result<Where> where = Locate(path);
  if (!where) return where.error();
  if (where->Present()) return Error(errnum::kPathFileAccessError, path);
  Create(*where, true);
  return {};
}

rt::Status FakeFileSystem::RemoveDirectory(const std::string& path) {
  rt::Result<Where> where = Locate(path);
  if (!where) return where.error();
  if (!where->node || !where->node->folder) return Error(errnum::kPathNotFound, path);
  const auto next = nodes_.lower_bound(where->key + "\\");
  if (next != nodes_.end() && IsBelow(next->first, where->key)) return Error(errnum::kPathFileAccessError, path);
  nodes_.erase(where->key);
  return {};
}

rt::Status FakeFileSystem::MakeSureDirectoryPathExists(const std::string& path) {
  std::optional<rt::WinPath> parsed = rt::ParseWinPath(path);
  if (!parsed) return Error(errnum::kBadFileNameOrNumber, path);
  if (!parsed->trailingSlash && !parsed->parts.empty()) parsed->parts.pop_back();  // the file name
  // From the root on, so that a missing drive fails even without folders.
  for (size_t i = 0; i <= parsed->parts.size(); ++i) {
    const rt::WinPath prefix{parsed->root, {parsed->parts.begin(), parsed->parts.begin() + i}, false};
    const std::string folder = rt::JoinWinPath(prefix);
    rt::Result<Where> where = Locate(folder);
    if (!where) return where.error();
    if (where->Folder()) continue;
    if (where->Present()) return Error(errnum::kPathFileAccessError, path);
    if (auto failure = TakeFailure(FsOp::kCreateDirectory, folder)) return *failure;
    Create(*where, true);
  }
  return {};
}

rt::Result<std::vector<DirEntry>> FakeFileSystem::List(const std::string& pattern) const {
  std::optional<rt::WinPath> parsed = rt::ParseWinPath(pattern);
  if (!parsed) return Error(errnum::kBadFileNameOrNumber, pattern);
  std::string namePattern;
  if (!parsed->trailingSlash && !parsed->parts.empty()) {
    namePattern = parsed->parts.back();
    parsed->parts.pop_back();
  }
  rt::Result<Where> folder = Locate(rt::JoinWinPath(*parsed));
  if (!folder) return folder.error();
  if (!folder->Folder()) return Error(errnum::kPathNotFound, pattern);
  std::vector<DirEntry> entries;
  for (auto it = nodes_.lower_bound(folder->key + "\\"); it != nodes_.end() && IsBelow(it->first, folder->key); ++it) {
    if (it->first.find('\\', folder->key.size() + 1) != std::string::npos) continue;
    const std::string name = it->second.path.substr(it->second.path.rfind('\\') + 1);
    if (rt::WildcardMatch(namePattern, name)) entries.push_back(DirEntry{name, it->second.Attributes()});
  }
  return entries;
}

rt::Result<std::string> FakeFileSystem::GetLongPathName(const std::string& path) const {
  rt::Result<Where> where = Locate(path, true);
  if (!where) return where.error();
  if (where->isRoot) return where->parentPath + "\\";
  return where->node->path + (where->trailingSlash && where->node->folder ? "\\" : "");
}

}  // namespace sentrune::testing
