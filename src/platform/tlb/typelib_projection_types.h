#pragma once
// Projects stored type descriptors into (variant code, user-defined name)
// pairs: pointer levels become the by-reference flag except where a pointer is
// the object reference itself, arrays set the array flag, aliases resolve to
// their targets and other user-defined types give code 0 and their name.
#include <cstdint>

#include "platform/tlb/typelib_raw.h"
#include "platform/typelib_source.h"

namespace sentrune::portable {

class TypeProjection {
 public:
  explicit TypeProjection(const RawLibrary& raw) : raw_(raw) {}

  // A typeDescs index; anything that leads nowhere (a bad index, an unknown
  // import, an alias cycle) gives code 29 without a name.
  platform::TlbType Project(int32_t desc) const { return Walk(desc, 0); }
  // The type a pointer descriptor points at (the [retval] of a dispatch view
  // becomes the return type); a descriptor that is no pointer is projected
  // as it is.
  platform::TlbType Pointee(int32_t desc) const;

 private:
  const RawTypeDesc* Desc(int32_t index) const;
  platform::TlbType Walk(int32_t desc, int depth) const;
  platform::TlbType UserType(const RawRef& ref, int depth) const;
  bool IsObject(int32_t desc, int depth) const;

  const RawLibrary& raw_;
};

}  // namespace sentrune::portable
