#pragma once
// The type library source without the system's type library API: a file is
// recognised by its content (an MSFT or SLTG library, or a PE image carrying
// one as a "TYPELIB" resource), decoded by the portable readers and projected
// the way platform::TypeLibSource promises.
#include <cstdint>
#include <span>
#include <string>

#include "platform/file_system.h"
#include "platform/tlb/typelib_raw.h"
#include "platform/typelib_source.h"
#include "runtime/result.h"

namespace sentrune::portable {

// Decodes a type library from a file's bytes: MSFT or SLTG as they stand, or
// TYPELIB resource `resourceIndex` of a PE image. Fails with
// rt::errnum::kNotATypeLibrary when the bytes hold no such library and with
// the reader's error when one is there but cannot be decoded; descriptions
// say what is wrong but do not name a file.
rt::Result<RawLibrary> ReadTypeLibBytes(std::span<const uint8_t> bytes, uint32_t resourceIndex);

class PortableTypeLibSource : public platform::TypeLibSource {
 public:
  // The file system must outlive this object.
  explicit PortableTypeLibSource(const platform::FileSystem& fileSystem) : fs_(fileSystem) {}
  rt::Result<platform::TlbLibrary> Load(const std::string& path) override;

 private:
  const platform::FileSystem& fs_;
};

}  // namespace sentrune::portable
