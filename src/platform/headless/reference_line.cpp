#include "platform/headless/reference_line.h"

#include <charconv>
#include <cstdio>
#include <vector>

#include "runtime/text.h"

namespace sentrune::headless {
namespace {

std::vector<std::string_view> SplitAt(std::string_view text, char separator) {
  std::vector<std::string_view> parts;
  size_t pos = 0;
  while (true) {
    const size_t next = text.find(separator, pos);
    parts.push_back(text.substr(pos, next == std::string_view::npos ? std::string_view::npos : next - pos));
    if (next == std::string_view::npos) return parts;
    pos = next + 1;
  }
}

int HexNumber(std::string_view text) {
  int number = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number, 16);
  return error == std::errc() && end == text.data() + text.size() ? number : 0;
}

void ParseVersion(std::string_view text, int& major, int& minor) {
  const size_t dot = text.find('.');
  major = HexNumber(text.substr(0, dot));
  minor = dot == std::string_view::npos ? 0 : HexNumber(text.substr(dot + 1));
}

std::string Hex(int number) {
  char buffer[16];
  std::snprintf(buffer, sizeof buffer, "%x", static_cast<unsigned>(number));
  return buffer;
}

bool HasPrefix(std::string_view value, std::string_view prefix) {
  return value.size() >= prefix.size() && rt::IEquals(value.substr(0, prefix.size()), prefix);
}

}  // namespace

ReferenceLine ParseReferenceValue(std::string_view value) {
  ReferenceLine line;
  if (HasPrefix(value, "*\\A")) {
    line.recognised = line.isProject = true;
    line.path = value.substr(3);
    return line;
  }
  if (!HasPrefix(value, "*\\G")) return line;
  line.recognised = true;
  const auto parts = SplitAt(value.substr(3), '#');
  line.guid = parts[0];
  if (parts.size() > 1) ParseVersion(parts[1], line.major, line.minor);
  if (parts.size() > 3) line.path = parts[3];
  // Real files carry a stray extra "#" field after the path; the
  // description is always the last field.
  if (parts.size() > 4) line.description = parts.back();
  return line;
}

std::string FormatTypeLibReference(const std::string& guid, int major, int minor,
                                   const std::string& path, const std::string& description) {
  return "*\\G" + guid + "#" + Hex(major) + "." + Hex(minor) + "#0#" + path + "#" + description;
}

ObjectLine ParseObjectValue(std::string_view value) {
  ObjectLine line;
  if (HasPrefix(value, "*\\A")) {
    line.isProject = true;
    line.file = value.substr(3);
    return line;
  }
  // "{guid}#version#lcid; file" as the IDE writes it, or
  // "{guid}#version#lcid#file" as the path fixer rewrites it.
  const size_t semicolon = value.find(';');
  const auto parts = SplitAt(value.substr(0, semicolon), '#');
  line.guid = rt::Trim(parts[0]);
  if (parts.size() > 1) {
    line.version = parts[1];
    ParseVersion(parts[1], line.major, line.minor);
  }
  if (semicolon != std::string_view::npos) {
    line.file = rt::Trim(value.substr(semicolon + 1));
  } else if (parts.size() > 3) {
    const size_t fourth = value.find('#', value.find('#', value.find('#') + 1) + 1);
    line.file = rt::Trim(value.substr(fourth + 1));
  }
  return line;
}

}  // namespace sentrune::headless
