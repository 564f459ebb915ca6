// Scratch: dumps the model of SCRATCH_TLB through both sources.
#include <gtest/gtest.h>
#include <cstdlib>
#include <fstream>
#include "platform/tlb/typelib_source_portable.h"
#include "platform/win32/typelib_source_system.h"
#include "platform/win32/win32_file_system.h"

namespace sentrune::testing {
namespace {
std::string T(const platform::TlbType& t) { return std::to_string(t.code) + (t.userTypeName.empty() ? "" : ":" + t.userTypeName); }
std::string V(const platform::TlbValue& v) { return std::to_string(v.vt) + "/" + std::to_string(v.integer) + "/" + std::to_string(v.real) + "/" + v.text; }
std::string Lines(const platform::TlbLibrary& l) {
  std::string s = l.name + "|" + l.helpString + "|" + l.guid + "|" + std::to_string(l.majorVersion) + "." + std::to_string(l.minorVersion) + "\n";
  for (const auto& t : l.types) {
    s += "type " + t.name + "|" + t.kind + "|" + t.helpString + "|" + t.guid + "|" + std::to_string(t.flags) + "|" + std::to_string(t.defaultInterface) + "|" + std::to_string(t.defaultSource) + "\n";
    for (const auto* list : {&t.functions, &t.variables})
      for (const auto& m : *list) {
        s += " " + m.name + "|" + std::to_string(m.memberId) + "|" + std::to_string(m.invokeKind) + "|" + std::to_string(m.flags) + "|" + m.helpString + "|" + (m.value ? V(*m.value) : "-") + "|" + T(m.type) + "\n";
        for (const auto& p : m.params) s += "   " + p.name + "|" + std::to_string(p.optional) + std::to_string(p.hasDefault) + "|" + V(p.defaultValue) + "|" + T(p.type) + "\n";
      }
  }
  return s;
}
TEST(Scratch, Dump) {
  const char* list = std::getenv("SCRATCH_LIST");
  if (!list) GTEST_SKIP();
  win32::Win32FileSystem fs;
  portable::PortableTypeLibSource p(fs);
  win32::SystemTypeLibSource s;
  std::ifstream in(list);
  std::string path;
  int n = 0;
  while (std::getline(in, path)) {
    ++n;
    auto a = p.Load(path);
    auto b = s.Load(path);
    std::ofstream("Z:\\tmp\\tlbw\\out\\" + std::to_string(n) + ".portable") << path << "\n" << (a.ok() ? Lines(*a) : a.error().description + " " + std::to_string(a.error().number));
    std::ofstream("Z:\\tmp\\tlbw\\out\\" + std::to_string(n) + ".system") << path << "\n" << (b.ok() ? Lines(*b) : b.error().description + " " + std::to_string(b.error().number));
  }
}
}  // namespace
}  // namespace sentrune::testing
#include <windows.h>
#include <oleauto.h>
#include <cstdio>
namespace sentrune::testing {
TEST(Scratch, Refs) {
  ITypeLib* lib = nullptr;
  ASSERT_EQ(LoadTypeLibEx(L"Z:\\work\\main\\tests\\fixtures\\typelib\\shapes.tlb", REGKIND_NONE, &lib), S_OK);
  for (UINT i = 0; i < lib->GetTypeInfoCount(); ++i) {
    ITypeInfo* ti; lib->GetTypeInfo(i, &ti);
    BSTR name; ti->GetDocumentation(-1, &name, nullptr, nullptr, nullptr);
    TYPEATTR* a; ti->GetTypeAttr(&a);
    printf("%u %ls kind %d funcs %d\n", i, name, a->typekind, a->cFuncs);
    for (UINT f = 0; f < a->cFuncs; ++f) {
      FUNCDESC* fd; ti->GetFuncDesc(f, &fd);
      for (SHORT p = 0; p < fd->cParams; ++p) {
        const TYPEDESC& t = fd->lprgelemdescParam[p].tdesc;
        if (t.vt == VT_USERDEFINED) {
          ITypeInfo* r = nullptr; HRESULT hr = ti->GetRefTypeInfo(t.hreftype, &r);
          printf("  func %u param %d href %lx hr %lx\n", f, p, (unsigned long)t.hreftype, (unsigned long)hr);
          if (r) r->Release();
        }
      }
      ti->ReleaseFuncDesc(fd);
    }
    ti->ReleaseTypeAttr(a); ti->Release();
  }
  lib->Release();
}
}
