#pragma once
// VB's Collection as the add-in uses it: items under case-insensitive text
// keys, kept in insertion order. Adding a key that is there already fails
// and changes nothing; a lookup of a missing key answers "absent" (nullptr)
// where the run time would raise.
#include <cstddef>
#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>
#include <vector>

#include "runtime/text.h"

namespace sentrune::rt {

template <class T>
class KeyedCollection {
 public:
  // One member: its key as it was added, and its item. Iteration gives these
  // in insertion order; the item may be changed in place, the key may not.
  class Entry {
   public:
    Entry(std::string key, T value) : item(std::move(value)), key_(std::move(key)) {}
    const std::string& key() const { return key_; }
    T item;

   private:
    std::string key_;
  };

  bool Add(std::string key, T item) {
    if (!index_.try_emplace(LCase(key), entries_.size()).second) return false;
    entries_.emplace_back(std::move(key), std::move(item));
    return true;
  }

  T* Find(std::string_view key) {
    const auto hit = index_.find(LCase(key));
    return hit == index_.end() ? nullptr : &entries_[hit->second].item;
  }
  const T* Find(std::string_view key) const {
    return const_cast<KeyedCollection*>(this)->Find(key);
  }
  bool Contains(std::string_view key) const { return Find(key) != nullptr; }

  // O(n): the members after the removed one move up by one place.
  bool Remove(std::string_view key) {
    const auto hit = index_.find(LCase(key));
    if (hit == index_.end()) return false;
    const size_t removed = hit->second;
    index_.erase(hit);
    entries_.erase(entries_.begin() + static_cast<std::ptrdiff_t>(removed));
    for (auto& [folded, position] : index_)
      if (position > removed) --position;
    return true;
  }

  void Clear() {
    entries_.clear();
    index_.clear();
  }

  size_t size() const { return entries_.size(); }
  bool empty() const { return entries_.empty(); }

  // 0-based position in insertion order; throws std::out_of_range beyond it.
  T& at(size_t i) { return entries_.at(i).item; }
  const T& at(size_t i) const { return entries_.at(i).item; }
  const std::string& keyAt(size_t i) const { return entries_.at(i).key(); }

  auto begin() { return entries_.begin(); }
  auto end() { return entries_.end(); }
  auto begin() const { return entries_.cbegin(); }
  auto end() const { return entries_.cend(); }

 private:
  std::vector<Entry> entries_;
  std::unordered_map<std::string, size_t> index_;  // folded key -> position
};

}  // namespace sentrune::rt
