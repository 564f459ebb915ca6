#pragma once
// An owned VARIANT and its conversions to and from what the core speaks:
// UTF-8 texts, Booleans, integers and objects. A conversion that cannot be
// made is a type mismatch naming what was asked for.
#include "platform/win32/windows_api.h"

#include <oaidl.h>

#include <cstdint>
#include <string>

#include "runtime/result.h"
#include "vbe_com_ptr.h"

namespace sentrune::addin {

class Variant {
 public:
  Variant();  // VT_EMPTY
  explicit Variant(const std::string& text);
  explicit Variant(const char* text) : Variant(std::string(text)) {}
  explicit Variant(bool value);
  explicit Variant(int32_t value);
  explicit Variant(IDispatch* object);
  // An optional argument left out.
  static Variant Missing();
  // Takes over a VARIANT the caller owns, leaving it VT_EMPTY.
  static Variant Adopt(VARIANT& owned);

  Variant(const Variant& other);
  Variant(Variant&& other) noexcept;
  Variant& operator=(Variant other) noexcept;
  ~Variant();

  VARIANT& get() { return v_; }
  const VARIANT& get() const { return v_; }

  // `what` names the value in the error.
  rt::Result<std::string> ToText(const std::string& what) const;
  rt::Result<bool> ToBool(const std::string& what) const;
  rt::Result<int32_t> ToLong(const std::string& what) const;
  // Empty, null or Nothing give a null pointer.
  rt::Result<ComPtr<IDispatch>> ToObject(const std::string& what) const;

 private:
  rt::Result<Variant> Changed(VARTYPE type, const std::string& what) const;

  VARIANT v_;
};

// Reads a variant that may be passed by reference (VT_BYREF), as event
// arguments are: a copy of the value it points at.
Variant Dereferenced(const VARIANT& value);

}  // namespace sentrune::addin
