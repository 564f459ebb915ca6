#pragma once
// A second look at the type descriptors and references an MSFT file stores,
// for what only rewriting the library needs: the bounds of fixed arrays and
// the library an imported type comes from. Private to the MSFT reader.
#include "platform/tlb/msft_file.h"

namespace sentrune::portable::msft {

// Completes the descriptors `types` has decoded into `library`. Details that
// do not fit their tables are left out: the model does without them.
void AddDescriptorDetails(const MsftFile& file, const MsftTypes& types, RawLibrary& library);

// Adds the imported library and the type's position in it to `ref`, decoded
// from `hrefType`, when that names a type of another library.
void AddImportOrigin(const MsftFile& file, int32_t hrefType, RawRef& ref);

}  // namespace sentrune::portable::msft
