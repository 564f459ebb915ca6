#include "platform/posix/short_names.h"

#include <algorithm>
#include <cctype>
#include <map>
#include <numeric>
#include <set>
#include <string_view>

#include "runtime/text.h"

namespace sentrune::posix {

namespace {

bool IsShortChar(unsigned char c) {
  if (c >= 0x80) return false;
  if (std::isalnum(c)) return true;
  return std::string_view("!#$%&'()-@^_`{}~").find(static_cast<char>(c)) != std::string_view::npos;
}

// Blanks and dots vanish; a character a short name cannot hold becomes one
// "_" (a multi-byte UTF-8 character too, not one per byte).
std::string BasisOf(std::string_view text, size_t limit) {
  std::string out;
  for (unsigned char c : text) {
    if (out.size() == limit) break;
    if (c == ' ' || c == '.' || (c >= 0x80 && c < 0xC0)) continue;
    out += IsShortChar(c) ? static_cast<char>(std::toupper(c)) : '_';
  }
  return out;
}

struct Basis {
  std::string base;  // up to six characters
  std::string ext;   // up to three characters
};

Basis BasisOfName(std::string_view name) {
  name.remove_prefix(std::min(name.find_first_not_of('.'), name.size()));
  const size_t dot = name.rfind('.');
  Basis basis;
  basis.base = BasisOf(name.substr(0, dot), 6);
  if (dot != std::string_view::npos) basis.ext = BasisOf(name.substr(dot + 1), 3);
  if (basis.base.empty()) basis.base = "_";
  return basis;
}

std::string Alias(const Basis& basis, int n) {
  const std::string number = std::to_string(n);
  const size_t keep = std::max<size_t>(1, 7 - std::min<size_t>(number.size(), 6));
  std::string alias = basis.base.substr(0, keep) + "~" + number;
  if (!basis.ext.empty()) alias += "." + basis.ext;
  return alias;
}

}  // namespace

bool IsShortName(const std::string& name) {
  const size_t dot = name.find('.');
  const std::string_view base = std::string_view(name).substr(0, dot);
  const std::string_view ext =
      dot == std::string::npos ? std::string_view() : std::string_view(name).substr(dot + 1);
  if (base.empty() || base.size() > 8 || ext.size() > 3) return false;
  if (dot != std::string::npos && ext.empty()) return false;
  const auto allowed = [](char c) { return IsShortChar(static_cast<unsigned char>(c)); };
  return std::all_of(base.begin(), base.end(), allowed) && std::all_of(ext.begin(), ext.end(), allowed);
}

std::vector<std::string> ShortNames(const std::vector<std::string>& names) {
  std::vector<size_t> order(names.size());
  std::iota(order.begin(), order.end(), 0);
  std::vector<std::string> folded(names.size());
  std::transform(names.begin(), names.end(), folded.begin(), [](const std::string& n) { return rt::UCase(n); });
  std::stable_sort(order.begin(), order.end(), [&](size_t a, size_t b) { return folded[a] < folded[b]; });

  std::vector<std::string> aliases(names.size());
  std::set<std::string> taken;
  for (size_t i = 0; i < names.size(); ++i)
    if (IsShortName(names[i])) taken.insert(aliases[i] = folded[i]);

  std::map<std::string, int> counters;
  for (size_t i : order) {
    if (!aliases[i].empty()) continue;
    const Basis basis = BasisOfName(names[i]);
    int& n = counters[basis.base + "." + basis.ext];
    do aliases[i] = Alias(basis, ++n);
    while (taken.count(aliases[i]));
    taken.insert(aliases[i]);
  }
  return aliases;
}

}  // namespace sentrune::posix
