// The slot map's growth, and the pool that its values come from.
#include "Files/Code/SlotMap.h"

#include <new>
#include <utility>
#include <vector>

namespace vesk {

namespace {

constexpr uint32_t kFirstCapacity = 8;
constexpr size_t kBucketBytes = 1 << 20;
constexpr size_t kBlocksPerBucket = kBucketBytes / sizeof(RValue);

// One value's place; while free, the link to the next free one.
union Block {
  Block* nextFree;
  alignas(RValue) unsigned char bytes[sizeof(RValue)];
};
static_assert(sizeof(Block) == 16);

// Blocks of 16 bytes, a bucket of 1 MB at a time. Buckets are kept for the next game.
class CBucketPool {
public:
  RValue* Take() {
    if (!m_free) AddBucket();
    Block* block = m_free;
    m_free = block->nextFree;
    ++m_inUse;
    return new (block->bytes) RValue();
  }
  void Return(RValue* value) {
    value->~RValue();
    Block* block = new (static_cast<void*>(value)) Block;
    block->nextFree = m_free;
    m_free = block;
    --m_inUse;
  }
  SlotPoolUse Use() const { return {m_buckets.size(), m_inUse}; }

private:
  void AddBucket() {
    m_buckets.push_back(new Block[kBlocksPerBucket]);
    Block* bucket = m_buckets.back();
    for (size_t i = kBlocksPerBucket; i-- > 0;) {
      bucket[i].nextFree = m_free;
      m_free = &bucket[i];
    }
  }

  std::vector<Block*> m_buckets;
  Block* m_free = nullptr;
  size_t m_inUse = 0;
};

// Never destroyed: objects of other files may die after this file's statics.
CBucketPool& g_pool = *new CBucketPool;

} // namespace

SlotPoolUse SlotPool() { return g_pool.Use(); }

SlotMap::SlotMap() : m_entries(new Entry[kFirstCapacity]()), m_mask(kFirstCapacity - 1) {}

SlotMap::~SlotMap() {
  for (uint32_t at = 0; at <= m_mask; ++at)
    if (m_entries[at].hash != 0) g_pool.Return(m_entries[at].value);
}

RValue& SlotMap::Insert(int32_t key, uint32_t newKind) {
  if (static_cast<double>(m_count) > 0.6 * (m_mask + 1)) {
    const std::unique_ptr<Entry[]> old = std::move(m_entries);
    const uint32_t oldMask = m_mask;
    m_mask = m_mask * 2 + 1;
    m_entries.reset(new Entry[m_mask + 1]());
    for (uint32_t at = 0; at <= oldMask; ++at)
      if (old[at].hash != 0) Place(old[at]);
  }
  RValue* value = g_pool.Take();
  value->kind = newKind;
  Place({key, Hash(key), value});
  ++m_count;
  return *value;
}

// Robin hood: an entry far from its home takes the place of one that is nearer to its own.
void SlotMap::Place(Entry entry) {
  uint32_t distance = 0;
  for (uint32_t at = entry.hash & m_mask;; at = (at + 1) & m_mask, ++distance) {
    Entry& resident = m_entries[at];
    if (resident.hash == 0) {
      resident = entry;
      return;
    }
    const uint32_t residentDistance = (at - resident.hash) & m_mask;
    if (residentDistance < distance) {
      std::swap(resident, entry);
      distance = residentDistance;
    }
  }
}

} // namespace vesk
