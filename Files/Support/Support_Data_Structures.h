#pragma once
// Maps, lists, stacks, queues, grids and priority queues behind integer ids. The runner owns them; scripts
// hold ids. An id is free again once its structure is destroyed, and the lowest free one is given next.
#include "Files/Code/Value.h"
#include "Platform/Threads.h"

#include <cstdint>
#include <deque>
#include <functional>
#include <memory>
#include <queue>
#include <string_view>
#include <utility>
#include <vector>

namespace vesk {

enum DsType : int32_t { kDsMap = 1, kDsList, kDsStack, kDsQueue, kDsGrid, kDsPriority };

// Marks in the kind word of a number: it is the id of a nested structure that its holder owns.
inline constexpr uint32_t kMarkMap = 0x80000000u;
inline constexpr uint32_t kMarkList = 0x40000000u;
inline constexpr uint32_t kMarks = kMarkMap | kMarkList;

RValue WithMark(const RValue& value, uint32_t mark);
inline RValue WithoutMarks(const RValue& value) { return WithMark(value, 0); }

// The fixed number of chains decides the order of iteration: chain 0 first, within a chain the oldest first.
// A second index over the hashes, made when the chains grow long, keeps look-ups and successors at constant
// time.
class CDS_Map {
public:
  struct Entry {
    RValue key;
    RValue value;
    uint32_t hash;
    Entry* previous; // in the chain
    Entry* next;
    Entry* nextInSlot; // in the index
  };
  static constexpr uint32_t kBuckets = 256;

  explicit CDS_Map(uint32_t bucketCount = kBuckets); // a power of two
  ~CDS_Map();
  CDS_Map(const CDS_Map&) = delete;
  CDS_Map& operator=(const CDS_Map&) = delete;

  Entry* Find(const RValue& key) const; // null: not there
  Entry* Find(std::string_view key) const;
  // Adds behind all others of its chain; the key must not be there yet.
  Entry* Append(RValue key, RValue value) {
    const uint32_t hash = HashOf(key);
    return Append(hash, std::move(key), std::move(value));
  }
  // The same for a key that may be there: null then.
  Entry* AppendNew(std::string_view key);
  bool Add(const RValue& key, const RValue& value); // false, and nothing changes, when the key is there
  void Replace(const RValue& key, const RValue& value);
  bool Delete(const RValue& key); // the oldest entry with the key's hash
  void Clear();

  Entry* First() const; // in iteration order; null when empty
  Entry* Last() const;
  Entry* Next(const Entry* entry) const;
  Entry* Previous(const Entry* entry) const;
  int32_t Count() const { return m_count; }

  static uint32_t HashOf(const RValue& key);

private:
  struct Chain {
    Entry* first = nullptr;
    Entry* last = nullptr;
  };
  template <class Equal> Entry* FindHash(uint32_t hash, Equal equal) const;
  uint32_t SlotOf(uint32_t hash) const { return (hash * 0x9E3779B1u) >> m_indexShift; }
  void RebuildIndex();
  void EnterIndex(Entry* entry);
  Entry* Append(uint32_t hash, RValue key, RValue value);
  Entry* Allocate();

  std::vector<Chain> m_chains;
  std::vector<uint64_t> m_used; // a bit for each chain that isn't empty
  std::vector<Entry*> m_index;  // empty while the chains are short
  uint32_t m_mask;
  uint32_t m_indexShift = 32;
  int32_t m_count = 0;
  std::vector<std::unique_ptr<std::byte[]>> m_blocks;
  size_t m_blockSize = 0; // entries in the newest block
  size_t m_blockUsed = 0;
  std::vector<Entry*> m_freed; // places of deleted entries
};

class CDS_List {
public:
  virtual ~CDS_List() = default;
  std::vector<RValue> values;
};

class CDS_Stack {
public:
  virtual ~CDS_Stack() = default;
  std::vector<RValue> values; // the top is the last
};

class CDS_Queue {
public:
  virtual ~CDS_Queue() = default;
  std::deque<RValue> values; // the head is the first
};

class CDS_Priority {
public:
  virtual ~CDS_Priority() = default;
  struct Item {
    RValue value;
    RValue priority;
  };
  std::vector<Item> items; // in the order in which they came
};

class CGrid {
public:
  CGrid(int32_t gridWidth, int32_t gridHeight);
  virtual ~CGrid() = default;
  void Resize(int32_t newWidth, int32_t newHeight); // keeps what fits, the rest is 0
  RValue* At(int32_t x, int32_t y);                 // null outside
  int32_t width;
  int32_t height;
  std::vector<RValue> cells; // row after row
};

template <class T> class DsTable {
public:
  int32_t Create(std::unique_ptr<T> structure) {
    if (m_free.empty()) {
      m_slots.push_back(std::move(structure));
      return static_cast<int32_t>(m_slots.size()) - 1;
    }
    const int32_t id = m_free.top();
    m_free.pop();
    m_slots[static_cast<size_t>(id)] = std::move(structure);
    return id;
  }
  T* Find(int32_t id) const {
    return id >= 0 && static_cast<size_t>(id) < m_slots.size() ? m_slots[static_cast<size_t>(id)].get()
                                                               : nullptr;
  }
  // Takes the structure out and frees the id.
  std::unique_ptr<T> Take(int32_t id) {
    if (!Find(id)) return nullptr;
    m_free.push(id);
    return std::move(m_slots[static_cast<size_t>(id)]);
  }
  void Reset() { *this = DsTable(); }
  const std::vector<std::unique_ptr<T>>& Slots() const { return m_slots; } // by id; null for a free one
  void Assign(std::vector<std::unique_ptr<T>> slots) {
    Reset();
    m_slots = std::move(slots);
    for (size_t id = 0; id < m_slots.size(); ++id)
      if (!m_slots[id]) m_free.push(static_cast<int32_t>(id));
  }

private:
  std::vector<std::unique_ptr<T>> m_slots;
  std::priority_queue<int32_t, std::vector<int32_t>, std::greater<>> m_free;
};

struct DsState {
  DsTable<CDS_Map> maps;
  DsTable<CDS_List> lists;
  DsTable<CDS_Stack> stacks;
  DsTable<CDS_Queue> queues;
  DsTable<CGrid> grids;
  DsTable<CDS_Priority> priorities;
  double precision = 0.00000001; // ds_set_precision
};
DsState& Ds();
void Ds_Reset(); // frees everything that is left

// "DsMutex": held by the map built-ins and by the JSON conversions. The functions below expect the caller to
// hold it where another thread could be at work.
CMutex& Ds_Mutex();

// Destroys the structure and everything that it owns by mark. False for a bad id.
bool Ds_DestroyMap(int32_t id);
bool Ds_DestroyList(int32_t id);
// Destroys what the marked values own, however deep.
void Ds_DestroyOwned(const std::vector<RValue>& values);
// Equal as keys and as list elements: numbers within the precision, strings by content.
bool Ds_Equal(const RValue& a, const RValue& b);

} // namespace vesk
