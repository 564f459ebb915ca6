#include "platform/win32/win32_clock.h"

#include "platform/win32/windows_api.h"

namespace sentrune::win32 {

namespace {

rt::DateTime FromSystemTime(const SYSTEMTIME& time) {
  return rt::DateTime{time.wYear, time.wMonth, time.wDay, time.wHour, time.wMinute, time.wSecond};
}

FILETIME ToFileTime(uint64_t value) {
  return FILETIME{static_cast<DWORD>(value & 0xFFFFFFFFu), static_cast<DWORD>(value >> 32)};
}

uint64_t FromFileTime(const FILETIME& time) {
  return (static_cast<uint64_t>(time.dwHighDateTime) << 32) | time.dwLowDateTime;
}

}  // namespace

rt::DateTime Win32Clock::Now() const {
  SYSTEMTIME now{};
  GetLocalTime(&now);
  return FromSystemTime(now);
}

double Win32Clock::Timer() const {
  SYSTEMTIME now{};
  GetLocalTime(&now);
  return now.wHour * 3600.0 + now.wMinute * 60.0 + now.wSecond + now.wMilliseconds / 1000.0;
}

rt::DateTime LocalDateTime(uint64_t fileTime) {
  const FILETIME utc = ToFileTime(fileTime);
  FILETIME local{};
  SYSTEMTIME time{};
  if (!FileTimeToLocalFileTime(&utc, &local) || !FileTimeToSystemTime(&local, &time)) return rt::DateTime{};
  return FromSystemTime(time);
}

std::optional<uint64_t> FileTimeOfLocal(const rt::DateTime& local) {
  if (!local.IsValid()) return std::nullopt;
  const SYSTEMTIME time{static_cast<WORD>(local.year), static_cast<WORD>(local.month), 0,
                        static_cast<WORD>(local.day), static_cast<WORD>(local.hour),
                        static_cast<WORD>(local.minute), static_cast<WORD>(local.second), 0};
  FILETIME localTime{}, utc{};
  if (!SystemTimeToFileTime(&time, &localTime) || !LocalFileTimeToFileTime(&localTime, &utc)) return std::nullopt;
  return FromFileTime(utc);
}

}  // namespace sentrune::win32
