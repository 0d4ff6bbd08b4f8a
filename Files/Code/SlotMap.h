#pragma once
// Open-addressing map from slot number to value with linear probing and the robin-hood rule. Values stand in
// pooled blocks, so growth moves no value.
#include "Files/Code/Value.h"

#include <cstddef>
#include <cstdint>
#include <memory>

namespace vesk {

class SlotMap {
public:
  SlotMap(const SlotMap&) = delete;
  SlotMap& operator=(const SlotMap&) = delete;
  struct Entry {
    int32_t key;
    uint32_t hash; // (key + 1) & 0x7FFFFFFF; 0 is empty
    RValue* value;
  };

  SlotMap();
  ~SlotMap(); // releases every value

  RValue* Find(int32_t key) const {
    const uint32_t hash = Hash(key);
    for (uint32_t at = hash & m_mask, distance = 0;; at = (at + 1) & m_mask, ++distance) {
      const Entry& entry = m_entries[at];
      if (entry.hash == hash) return entry.value;
      if (entry.hash == 0 || distance > ((at - entry.hash) & m_mask)) return nullptr;
    }
  }
  // The value of the key; a new one has the given kind and payload 0.
  RValue& Get(int32_t key, uint32_t newKind) {
    if (RValue* found = Find(key)) return *found;
    return Insert(key, newKind);
  }
  uint32_t Count() const { return m_count; }
  template <class Visit> void ForEach(Visit visit) const {
    for (uint32_t at = 0; at <= m_mask; ++at)
      if (m_entries[at].hash != 0) visit(m_entries[at].key, *m_entries[at].value);
  }

private:
  static uint32_t Hash(int32_t key) { return (static_cast<uint32_t>(key) + 1) & 0x7FFFFFFF; }
  RValue& Insert(int32_t key, uint32_t newKind);
  void Place(Entry entry);

  std::unique_ptr<Entry[]> m_entries;
  uint32_t m_mask;
  uint32_t m_count = 0;
};

// What the pool of all maps holds, for tests and logs.
struct SlotPoolUse {
  size_t buckets; // of 1 MB each
  size_t values;  // in use
};
SlotPoolUse SlotPool();

} // namespace vesk
