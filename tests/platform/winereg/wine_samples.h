#pragma once
// A system.reg cut down from one that Wine 8 wrote for a fresh 64-bit prefix
// (a win32 entry added beside each type library version).
namespace sentrune::testdata {

inline constexpr const char* kSystemReg = R"reg(WINE REGISTRY Version 2
;; All keys relative to REGISTRY\\Machine

#arch=win64

[Software\\Classes\\.ai] 1795266545
#time=1dd79b97c45ccdc
"Content Type"="application/postscript"

[Software\\Classes\\chm.file\\shell\\open\\command] 1795266545
#time=1dd79b97cc1885e
@="\"C:\\windows\\hh.exe\" \"%1\""

[Software\\Classes\\Typelib\\{00020430-0000-0000-C000-000000000046}\\1.0] 1795266539
#time=1dd79b978d3eaca
@="OLE Automation"

[Software\\Classes\\Typelib\\{00020430-0000-0000-C000-000000000046}\\1.0\\0\\win32] 1795266539
#time=1dd79b978d3e890
@="C:\\windows\\system32\\stdole32.tlb"

[Software\\Classes\\Typelib\\{00020430-0000-0000-C000-000000000046}\\2.0] 1795266539
#time=1dd79b978d15de6
@="OLE Automation"

[Software\\Classes\\Typelib\\{00020430-0000-0000-C000-000000000046}\\2.0\\0\\win32] 1795266539
#time=1dd79b978d15bc0
@="C:\\windows\\system32\\stdole2.tlb"

[Software\\Classes\\Wow6432Node\\TypeLib] 1795266526
#time=1dd79b9715e0a50
#link
"SymbolicLinkValue"=hex(6):5c,00,52,00,65,00,67,00,69,00,73,00,74,00,72,00,79,\
  00,5c,00,4d,00,61,00,63,00,68,00,69,00,6e,00,65,00,5c,00,53,00,6f,00,66,00,\
  74,00,77,00,61,00,72,00,65,00,5c,00,43,00,6c,00,61,00,73,00,73,00,65,00,73,\
  00,5c,00,54,00,79,00,70,00,65,00,4c,00,69,00,62,00

)reg";

}  // namespace sentrune::testdata
