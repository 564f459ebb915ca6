#pragma once
// VB's Collection as the add-in uses it: items under case-insensitive text
// keys, kept in insertion order. Adding a key that is there already fails
// and changes nothing; a lookup of a missing key answers "absent" (nullptr)
// where the run time would raise.
//
// KeyField (a std::string T::*) names a text field of T that is the key itself, so that the key is
// not held twice; that field must then not change once the item is added.
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <type_traits>
#include <utility>
#include <vector>

#include "runtime/text.h"

namespace sentrune::rt {

template <class T, auto KeyField = nullptr>
class KeyedCollection {
  static constexpr bool kKeyInItem = !std::is_null_pointer_v<decltype(KeyField)>;
  struct NoKey {};

 public:
  // One member: its key as it was added, and its item. Iteration gives these
  // in insertion order; the item may be changed in place, the key may not.
  class Entry {
   public:
    Entry(std::string key, T value) requires(!kKeyInItem)
        : item(std::move(value)), key_(std::move(key)) {}
    explicit Entry(T value) requires kKeyInItem : item(std::move(value)) {}
    const std::string& key() const {
      if constexpr (kKeyInItem) {
        return item.*KeyField;
      } else {
        return key_;
      }
    }
    T item;

   private:
    [[no_unique_address]] std::conditional_t<kKeyInItem, NoKey, std::string> key_;
  };

  bool Add(std::string key, T item) requires(!kKeyInItem) {
    const size_t hash = IHash(key);
    if (Lookup(key, hash) != kNone) return false;
    entries_.emplace_back(std::move(key), std::move(item));
    Index(hash);
    return true;
  }

  bool Add(T item) requires kKeyInItem {
    const size_t hash = IHash(item.*KeyField);
    if (Lookup(item.*KeyField, hash) != kNone) return false;
    entries_.emplace_back(std::move(item));
    Index(hash);
    return true;
  }

  T* Find(std::string_view key) {
    const size_t position = Lookup(key, IHash(key));
    return position == kNone ? nullptr : &entries_[position].item;
  }
  const T* Find(std::string_view key) const {
    return const_cast<KeyedCollection*>(this)->Find(key);
  }
  bool Contains(std::string_view key) const { return Find(key) != nullptr; }

  // O(n): the members after the removed one move up by one place.
  bool Remove(std::string_view key) {
    const size_t removed = Lookup(key, IHash(key));
    if (removed == kNone) return false;
    entries_.erase(entries_.begin() + static_cast<std::ptrdiff_t>(removed));
    Reindex();
    return true;
  }

  void Clear() {
    entries_.clear();
    slots_.clear();
  }

  // Room for `count` members in all, so that adding them moves nothing.
  void Reserve(size_t count) {
    entries_.reserve(count);
    size_t capacity = slots_.empty() ? 8 : slots_.size();
    while (capacity < 2 * count) capacity *= 2;
    if (capacity > slots_.size()) Grow(capacity);
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
  // The index is open-addressed over positions in entries_, so a key is held
  // once, as added; the folded form is never stored. Models hold tens of
  // thousands of keys, and a node and a folded copy per key cost more than
  // the rest of the read.
  struct Slot {
    uint32_t hash = 0;      // low bits of the key's IHash
    uint32_t position = 0;  // 1 + position in entries_; 0 marks a free slot
  };
  static constexpr size_t kNone = SIZE_MAX;

  size_t Lookup(std::string_view key, size_t hash) const {
    if (slots_.empty()) return kNone;
    const size_t mask = slots_.size() - 1;
    for (size_t i = hash & mask;; i = (i + 1) & mask) {
      const Slot& slot = slots_[i];
      if (slot.position == 0) return kNone;
      if (slot.hash == static_cast<uint32_t>(hash) && IEquals(entries_[slot.position - 1].key(), key))
        return slot.position - 1;
    }
  }

  void Index(size_t hash) {
    if (2 * entries_.size() > slots_.size()) Grow(slots_.empty() ? 8 : 2 * slots_.size());
    Place(hash, entries_.size() - 1);
  }

  void Place(size_t hash, size_t position) {
    const size_t mask = slots_.size() - 1;
    size_t i = hash & mask;
    while (slots_[i].position != 0) i = (i + 1) & mask;
    slots_[i] = {static_cast<uint32_t>(hash), static_cast<uint32_t>(position + 1)};
  }

  void Grow(size_t capacity) {
    std::vector<Slot> old(capacity);
    old.swap(slots_);
    for (const Slot& slot : old)
      if (slot.position != 0) Place(slot.hash, slot.position - 1);
  }

  // After a removal every later position has moved.
  void Reindex() {
    slots_.assign(slots_.size(), Slot{});
    for (size_t i = 0; i < entries_.size(); ++i) Place(IHash(entries_[i].key()), i);
  }

  std::vector<Entry> entries_;
  std::vector<Slot> slots_;  // a power of two in size, at most half full
};

}  // namespace sentrune::rt
