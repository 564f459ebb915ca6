#pragma once
// A read-only view of a PE image (PE32 or PE32+) that finds resources. The
// image is untrusted input: every header field, RVA and size is checked before
// use, so a truncated or hostile file gives an error or "not found", never an
// access outside the bytes.
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <variant>
#include <vector>

#include "platform/pe/byte_reader.h"
#include "runtime/result.h"

namespace sentrune::portable {

// The run time's "Invalid file format", used for bytes that are not a
// well-formed PE image.
inline constexpr int32_t kInvalidFileFormat = 321;

// Resource types the add-in looks up.
inline constexpr uint32_t kRtVersion = 16;
inline constexpr const char* kTypeLibResourceType = "TYPELIB";

// A resource type or name: a numeric ID or a string name. Names compare
// without regard to ASCII case, as the resource loader compares them.
class ResourceId {
 public:
  static ResourceId Number(uint32_t id) { return ResourceId(id); }
  static ResourceId Named(std::string name) { return ResourceId(std::move(name)); }

  bool IsNumber() const { return value_.index() == 0; }
  uint32_t number() const { return std::get<0>(value_); }
  const std::string& name() const { return std::get<1>(value_); }  // UTF-8

  bool Matches(const ResourceId& other) const;
  // "#16" for a number, the name otherwise; for messages.
  std::string ToString() const;

 private:
  explicit ResourceId(uint32_t id) : value_(id) {}
  explicit ResourceId(std::string name) : value_(std::move(name)) {}
  std::variant<uint32_t, std::string> value_;
};

class PeImage {
 public:
  // "MZ" and a "PE\0\0" signature where e_lfanew points.
  static bool LooksLikePe(std::span<const uint8_t> bytes);

  // Reads the headers and the section table. The image refers to `bytes`
  // without copying them: the caller keeps them alive as long as the image and
  // every span it returns. Fails with kInvalidFileFormat and a description of
  // the first defect.
  static rt::Result<PeImage> Parse(std::span<const uint8_t> bytes);

  bool is64() const { return is64_; }

  // The data of resource type/name in the first language stored; nothing when
  // the image has no such resource or its entry points outside the file.
  std::optional<std::span<const uint8_t>> FindResource(const ResourceId& type,
                                                       const ResourceId& name) const;
  // The names stored under a type, in directory order (empty when none).
  std::vector<ResourceId> ResourceNames(const ResourceId& type) const;

 private:
  struct Section {
    uint32_t virtualAddress = 0;
    uint32_t rawOffset = 0;
    uint32_t rawSize = 0;  // clamped to the bytes present in the file
  };
  struct DirEntry {
    uint32_t nameField = 0;
    uint32_t dataField = 0;
  };

  PeImage(ByteReader file, bool is64, std::vector<Section> sections, uint32_t resourceRva);

  // The file bytes at [rva, rva + size) when they lie in one section's raw data.
  std::optional<std::span<const uint8_t>> MapRva(uint32_t rva, uint32_t size) const;
  std::vector<DirEntry> ReadDirectory(uint32_t offset) const;
  std::optional<ResourceId> EntryName(const DirEntry& entry) const;
  bool EntryMatches(const DirEntry& entry, const ResourceId& id) const;
  std::optional<uint32_t> FindSubdirectory(uint32_t dirOffset, const ResourceId& id) const;
  std::optional<std::span<const uint8_t>> FirstLanguageData(uint32_t nameDirOffset) const;

  ByteReader file_;
  bool is64_ = false;
  std::vector<Section> sections_;
  // The resource section from the root directory on; empty when the image
  // has no resources. Every offset inside the tree is relative to its start.
  ByteReader resources_;
};

}  // namespace sentrune::portable
