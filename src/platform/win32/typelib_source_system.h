#pragma once
// The type library source over the system's own loader (LoadTypeLibEx and
// ITypeLib / ITypeInfo), giving the same view as the portable reader: what
// the IDE's tools saw on the machine where they ran. Types imported from
// other libraries are followed through the registry, as the system does.
#include <string>

#include "platform/typelib_source.h"
#include "runtime/result.h"

namespace sentrune::win32 {

class SystemTypeLibSource : public platform::TypeLibSource {
 public:
  // Missing file 53; a file the loader finds no type library in (no TYPELIB
  // resource, not a library at all) rt::errnum::kNotATypeLibrary; any other
  // failure the loader's HRESULT as the number, with a description that
  // names the file and gives the HRESULT in hex. A thread without COM joins
  // a single-threaded apartment for the call and leaves it again; a thread
  // in an apartment stays in it.
  rt::Result<platform::TlbLibrary> Load(const std::string& path) override;
};

}  // namespace sentrune::win32
