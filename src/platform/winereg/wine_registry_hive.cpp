#include "platform/winereg/wine_registry_hive.h"

#include "platform/registry.h"

namespace sentrune::portable::winereg {

HiveFile::HiveFile(platform::FileSystem& files, std::string path)
    : files_(files), path_(std::move(path)) {}

rt::Result<RegFile*> HiveFile::Load() {
  rt::Result<std::string> bytes = files_.ReadFile(path_);
  if (!bytes) {
    const int32_t number = bytes.error().number;
    if (number != rt::errnum::kFileNotFound && number != rt::errnum::kPathNotFound) {
      doc_.reset();
      return rt::MakeError(platform::regerr::kBadDb, "Cannot read the Wine registry file '" +
                                                         path_ + "': " + bytes.error().description);
    }
    missing_ = true;
    bytes_.clear();
    doc_ = RegFile();
    return &*doc_;
  }
  if (doc_ && !missing_ && *bytes == bytes_) return &*doc_;
  doc_.reset();
  rt::Result<RegFile> parsed = RegFile::Parse(*bytes, path_);
  if (!parsed) return parsed.error();
  missing_ = false;
  bytes_ = std::move(*bytes);
  doc_ = std::move(*parsed);
  return &*doc_;
}

rt::Result<RegFile*> HiveFile::LoadForWriting() {
  rt::Result<RegFile*> doc = Load();
  if (doc && missing_) {
    return rt::MakeError(
        platform::regerr::kCantWrite,
        "The Wine prefix has no registry file '" + path_ + "' (run wineboot to set the prefix up)");
  }
  return doc;
}

rt::Status HiveFile::Save() {
  if (!doc_)
    return rt::MakeError(platform::regerr::kCantWrite,
                         "Nothing loaded to write to '" + path_ + "'");
  std::string text = doc_->Serialise();
  const std::string temporary = path_ + ".sentrune-new";
  rt::Status status = files_.WriteFile(temporary, text);
  if (status.ok()) {
    status = files_.RenameReplace(temporary, path_);
    if (!status.ok()) (void)files_.DeleteFile(temporary);
  }
  if (!status.ok()) {
    doc_.reset();
    return rt::MakeError(
        platform::regerr::kCantWrite,
        "Cannot write the Wine registry file '" + path_ + "': " + status.error().description);
  }
  bytes_ = std::move(text);
  return {};
}

}  // namespace sentrune::portable::winereg
