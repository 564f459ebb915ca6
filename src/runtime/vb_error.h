#pragma once
// A run-time error as the VB run time numbers and describes it. Procedures of
// the add-in turn failures into these and then into their 32-bit result codes.
#include <cstdint>
#include <string>

namespace sentrune::rt {

// Error numbers the add-in's logic tests for; the values are the run time's.
namespace errnum {
inline constexpr int32_t kTypeMismatch = 13;
inline constexpr int32_t kOverflow = 6;
inline constexpr int32_t kBadFileNameOrNumber = 52;
inline constexpr int32_t kFileNotFound = 53;
inline constexpr int32_t kFileAlreadyOpen = 55;
inline constexpr int32_t kDeviceIoError = 57;
inline constexpr int32_t kFileAlreadyExists = 58;
inline constexpr int32_t kDiskFull = 61;
inline constexpr int32_t kPermissionDenied = 70;
inline constexpr int32_t kDiskNotReady = 71;
inline constexpr int32_t kPathFileAccessError = 75;
inline constexpr int32_t kPathNotFound = 76;
inline constexpr int32_t kInvalidProcedureCall = 5;
// TYPE_E_ELEMENTNOTFOUND style failure of the type library loader for a file
// that holds no type library.
inline constexpr int32_t kNotATypeLibrary = -2147220990;  // 0x80040202
// TYPE_E_CANTLOADLIBRARY: a type library that is there but cannot be decoded.
inline constexpr int32_t kCantLoadTypeLibrary = -2147312566;  // 0x80029C4A
}  // namespace errnum

struct VbError {
  int32_t number = 0;
  std::string description;
  std::string source;
};

// The run time's own description for the error numbers above; a generic text
// for others.
std::string DescribeError(int32_t number);

inline VbError MakeError(int32_t number, std::string description = {}, std::string source = {}) {
  if (description.empty()) description = DescribeError(number);
  return VbError{number, std::move(description), std::move(source)};
}

}  // namespace sentrune::rt
