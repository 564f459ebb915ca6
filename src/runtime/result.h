#pragma once
// Result<T>: a value or the VbError that prevented it. Platform calls return
// these so that the core can turn a failure into its procedure's result code.
#include <cassert>
#include <utility>
#include <variant>

#include "runtime/vb_error.h"

namespace sentrune::rt {

template <typename T>
class [[nodiscard]] Result {
 public:
  Result(T value) : data_(std::move(value)) {}                // NOLINT: implicit by design
  Result(VbError error) : data_(std::move(error)) {}          // NOLINT
  bool ok() const { return data_.index() == 0; }
  explicit operator bool() const { return ok(); }
  const T& value() const& { assert(ok()); return std::get<0>(data_); }
  T& value() & { assert(ok()); return std::get<0>(data_); }
  T&& value() && { assert(ok()); return std::get<0>(std::move(data_)); }
  const T& operator*() const& { return value(); }
  T& operator*() & { return value(); }
  const T* operator->() const { return &value(); }
  T* operator->() { return &value(); }
  const VbError& error() const { assert(!ok()); return std::get<1>(data_); }
  T value_or(T fallback) const { return ok() ? value() : std::move(fallback); }

 private:
  std::variant<T, VbError> data_;
};

// Success or a VbError, for operations without a value.
class [[nodiscard]] Status {
 public:
  Status() = default;
  Status(VbError error) : error_(std::move(error)), failed_(true) {}  // NOLINT
  static Status Ok() { return {}; }
  bool ok() const { return !failed_; }
  explicit operator bool() const { return ok(); }
  const VbError& error() const { assert(failed_); return error_; }
  int32_t code() const { return failed_ ? error_.number : 0; }

 private:
  VbError error_;
  bool failed_ = false;
};

}  // namespace sentrune::rt
