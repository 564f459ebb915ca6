#pragma once
// The sinks subscribed to one kind of event, each for a key (the project or
// control it listens to; nullptr for IDE-wide events). A subscription may
// outlive the list, and sinks may come and go while an event is delivered.
#include <cstdint>
#include <memory>
#include <utility>
#include <vector>

#include "platform/ide.h"

namespace sentrune::headless {

template <class Sink>
class SinkList : public std::enable_shared_from_this<SinkList<Sink>> {
 public:
  std::unique_ptr<platform::Subscription> Add(const void* key, Sink& sink) {
    const uint64_t id = nextId_++;
    entries_.push_back(Entry{id, key, &sink});
    return std::make_unique<Handle>(this->weak_from_this(), id);
  }

  // Calls fn(sink) for every sink subscribed under `key` when the event
  // began and still subscribed when its turn comes.
  template <class Fn>
  void Fire(const void* key, Fn&& fn) {
    std::vector<uint64_t> ids;
    for (const Entry& entry : entries_)
      if (entry.key == key) ids.push_back(entry.id);
    for (const uint64_t id : ids)
      if (Sink* sink = Find(id)) fn(*sink);
  }

  // Ends every subscription under `key`: its target is gone, and a new
  // object at the same address must not inherit them.
  void Forget(const void* key) {
    std::erase_if(entries_, [key](const Entry& entry) { return entry.key == key; });
  }

 private:
  struct Entry {
    uint64_t id;
    const void* key;
    Sink* sink;
  };

  class Handle : public platform::Subscription {
   public:
    Handle(std::weak_ptr<SinkList> list, uint64_t id) : list_(std::move(list)), id_(id) {}
    ~Handle() override {
      if (const auto list = list_.lock()) list->Remove(id_);
    }

   private:
    std::weak_ptr<SinkList> list_;
    uint64_t id_;
  };

  Sink* Find(uint64_t id) const {
    for (const Entry& entry : entries_)
      if (entry.id == id) return entry.sink;
    return nullptr;
  }

  void Remove(uint64_t id) {
    for (auto it = entries_.begin(); it != entries_.end(); ++it)
      if (it->id == id) {
        entries_.erase(it);
        return;
      }
  }

  std::vector<Entry> entries_;
  uint64_t nextId_ = 1;
};

}  // namespace sentrune::headless
