#include "Files/Support/Support_Data_Structures.h"

#include "Platform/Hash.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <new>
#include <utility>

namespace vesk {

namespace {

DsState g_ds;
CMutex g_dsMutex;

constexpr size_t kFirstBlock = 8; // entries
constexpr size_t kLargestBlock = 1024;

// Structures to destroy, by kind; a list of its own instead of recursion, so that depth costs no stack.
struct Owned {
  std::vector<int32_t> maps;
  std::vector<int32_t> lists;

  void Note(const RValue& value) {
    if (!value.IsReal() || (value.kind & kMarks) == 0) return;
    ((value.kind & kMarkMap) ? maps : lists).push_back(static_cast<int32_t>(value.real));
  }
  void Destroy() {
    while (!maps.empty() || !lists.empty()) {
      if (!maps.empty()) {
        const auto map = g_ds.maps.Take(maps.back());
        maps.pop_back();
        if (!map) continue;
        for (const CDS_Map::Entry* at = map->First(); at; at = map->Next(at)) Note(at->value);
      } else {
        const auto list = g_ds.lists.Take(lists.back());
        lists.pop_back();
        if (!list) continue;
        for (const RValue& value : list->values) Note(value);
      }
    }
  }
};

} // namespace

DsState& Ds() { return g_ds; }
CMutex& Ds_Mutex() { return g_dsMutex; }

void Ds_Reset() {
  g_ds.maps.Reset();
  g_ds.lists.Reset();
  g_ds.stacks.Reset();
  g_ds.queues.Reset();
  g_ds.grids.Reset();
  g_ds.priorities.Reset();
  g_ds.precision = DsState().precision;
}

RValue WithMark(const RValue& value, uint32_t mark) {
  RValue marked = value;
  marked.kind = (marked.kind & ~kMarks) | mark;
  return marked;
}

bool Ds_Equal(const RValue& a, const RValue& b) {
  if (a.IsString() && b.IsString()) return a.Text() == b.Text();
  if (a.IsNumber() && b.IsNumber()) return std::abs(ValueAsReal(a) - ValueAsReal(b)) <= g_ds.precision;
  if (a.Kind() != b.Kind()) return false;
  if (a.IsUndefined()) return true;
  return a.int64 == b.int64;
}

bool Ds_DestroyMap(int32_t id) {
  if (!g_ds.maps.Find(id)) return false;
  Owned owned;
  owned.maps.push_back(id);
  owned.Destroy();
  return true;
}

bool Ds_DestroyList(int32_t id) {
  if (!g_ds.lists.Find(id)) return false;
  Owned owned;
  owned.lists.push_back(id);
  owned.Destroy();
  return true;
}

void Ds_DestroyOwned(const std::vector<RValue>& values) {
  Owned owned;
  for (const RValue& value : values) owned.Note(value);
  owned.Destroy();
}

// ---- map ----

CDS_Map::CDS_Map(uint32_t bucketCount)
    : m_chains(bucketCount), m_used((bucketCount + 63) / 64), m_mask(bucketCount - 1) {}

CDS_Map::~CDS_Map() { Clear(); }

uint32_t CDS_Map::HashOf(const RValue& key) {
  if (key.IsString()) return Hash_Text(key.Text());
  if (key.IsUndefined()) return 0;
  return Hash_Real(ValueAsReal(key));
}

template <class Equal> CDS_Map::Entry* CDS_Map::FindHash(uint32_t hash, Equal equal) const {
  if (m_index.empty()) {
    for (Entry* at = m_chains[hash & m_mask].first; at; at = at->next)
      if (at->hash == hash && equal(*at)) return at;
  } else {
    for (Entry* at = m_index[SlotOf(hash)]; at; at = at->nextInSlot)
      if (at->hash == hash && equal(*at)) return at;
  }
  return nullptr;
}

CDS_Map::Entry* CDS_Map::Find(const RValue& key) const {
  return FindHash(HashOf(key), [&](const Entry& entry) { return Ds_Equal(entry.key, key); });
}

CDS_Map::Entry* CDS_Map::Find(std::string_view key) const {
  return FindHash(Hash_Text(key),
                  [&](const Entry& entry) { return entry.key.IsString() && entry.key.Text() == key; });
}

CDS_Map::Entry* CDS_Map::Allocate() {
  if (!m_freed.empty()) {
    Entry* entry = m_freed.back();
    m_freed.pop_back();
    return entry;
  }
  if (m_blockUsed == m_blockSize) {
    m_blockSize = m_blockSize == 0 ? kFirstBlock : std::min(m_blockSize * 2, kLargestBlock);
    m_blocks.push_back(std::make_unique<std::byte[]>(m_blockSize * sizeof(Entry)));
    m_blockUsed = 0;
  }
  return reinterpret_cast<Entry*>(m_blocks.back().get()) + m_blockUsed++;
}

CDS_Map::Entry* CDS_Map::AppendNew(std::string_view key) {
  const uint32_t hash = Hash_Text(key);
  if (FindHash(hash, [&](const Entry& entry) { return entry.key.IsString() && entry.key.Text() == key; }))
    return nullptr;
  return Append(hash, RValue(key), RValue());
}

CDS_Map::Entry* CDS_Map::Append(uint32_t hash, RValue key, RValue value) {
  const uint32_t bucket = hash & m_mask;
  Chain& chain = m_chains[bucket];
  Entry* entry = new (Allocate()) Entry{std::move(key), std::move(value), hash, chain.last, nullptr, nullptr};
  (chain.last ? chain.last->next : chain.first) = entry;
  chain.last = entry;
  m_used[bucket / 64] |= uint64_t{1} << (bucket % 64);
  ++m_count;
  if (static_cast<uint32_t>(m_count) > std::max<size_t>(m_index.size(), 2 * m_chains.size()))
    RebuildIndex();
  else if (!m_index.empty())
    EnterIndex(entry);
  return entry;
}

// Behind the others of its slot, so that entries of one hash keep the order of their chain.
void CDS_Map::EnterIndex(Entry* entry) {
  Entry** place = &m_index[SlotOf(entry->hash)];
  while (*place) place = &(*place)->nextInSlot;
  entry->nextInSlot = nullptr;
  *place = entry;
}

void CDS_Map::RebuildIndex() {
  const uint32_t slots = std::bit_ceil(static_cast<uint32_t>(m_count)) * 2;
  m_indexShift = 32 - static_cast<uint32_t>(std::countr_zero(slots));
  m_index.assign(slots, nullptr);
  for (Entry* at = First(); at; at = Next(at)) EnterIndex(at);
}

bool CDS_Map::Add(const RValue& key, const RValue& value) {
  if (Find(key)) return false;
  Append(key, value);
  return true;
}

void CDS_Map::Replace(const RValue& key, const RValue& value) {
  if (Entry* entry = Find(key))
    entry->value = value;
  else
    Append(key, value);
}

bool CDS_Map::Delete(const RValue& key) {
  const uint32_t hash = HashOf(key);
  Entry* entry = FindHash(hash, [](const Entry&) { return true; });
  if (!entry) return false;
  if (!m_index.empty()) {
    Entry** place = &m_index[SlotOf(hash)];
    while (*place != entry) place = &(*place)->nextInSlot;
    *place = entry->nextInSlot;
  }
  const uint32_t bucket = hash & m_mask;
  Chain& chain = m_chains[bucket];
  (entry->previous ? entry->previous->next : chain.first) = entry->next;
  (entry->next ? entry->next->previous : chain.last) = entry->previous;
  if (!chain.first) m_used[bucket / 64] &= ~(uint64_t{1} << (bucket % 64));
  entry->~Entry();
  m_freed.push_back(entry);
  --m_count;
  return true;
}

void CDS_Map::Clear() {
  for (Chain& chain : m_chains) {
    for (Entry* at = chain.first; at;) {
      Entry* next = at->next;
      at->~Entry();
      at = next;
    }
    chain = {};
  }
  std::fill(m_used.begin(), m_used.end(), 0);
  m_index.clear();
  m_blocks.clear();
  m_blockSize = m_blockUsed = 0;
  m_freed.clear();
  m_count = 0;
}

CDS_Map::Entry* CDS_Map::First() const {
  for (size_t word = 0; word < m_used.size(); ++word)
    if (m_used[word] != 0)
      return m_chains[word * 64 + static_cast<size_t>(std::countr_zero(m_used[word]))].first;
  return nullptr;
}

CDS_Map::Entry* CDS_Map::Last() const {
  for (size_t word = m_used.size(); word-- > 0;)
    if (m_used[word] != 0)
      return m_chains[word * 64 + 63 - static_cast<size_t>(std::countl_zero(m_used[word]))].last;
  return nullptr;
}

CDS_Map::Entry* CDS_Map::Next(const Entry* entry) const {
  if (entry->next) return entry->next;
  const uint32_t bucket = entry->hash & m_mask;
  size_t word = bucket / 64;
  // Two shifts, because one by 64 isn't defined.
  uint64_t later = m_used[word] & (~uint64_t{0} << (bucket % 64) << 1);
  while (later == 0) {
    if (++word == m_used.size()) return nullptr;
    later = m_used[word];
  }
  return m_chains[word * 64 + static_cast<size_t>(std::countr_zero(later))].first;
}

CDS_Map::Entry* CDS_Map::Previous(const Entry* entry) const {
  if (entry->previous) return entry->previous;
  const uint32_t bucket = entry->hash & m_mask;
  size_t word = bucket / 64;
  uint64_t earlier = m_used[word] & ((uint64_t{1} << (bucket % 64)) - 1);
  while (earlier == 0) {
    if (word-- == 0) return nullptr;
    earlier = m_used[word];
  }
  return m_chains[word * 64 + 63 - static_cast<size_t>(std::countl_zero(earlier))].last;
}

// ---- grid ----

CGrid::CGrid(int32_t gridWidth, int32_t gridHeight)
    : width(gridWidth), height(gridHeight),
      cells(static_cast<size_t>(gridWidth) * static_cast<size_t>(gridHeight), RValue(0.0)) {}

RValue* CGrid::At(int32_t x, int32_t y) {
  if (x < 0 || y < 0 || x >= width || y >= height) return nullptr;
  return &cells[static_cast<size_t>(y) * static_cast<size_t>(width) + static_cast<size_t>(x)];
}

void CGrid::Resize(int32_t newWidth, int32_t newHeight) {
  CGrid resized(newWidth, newHeight);
  for (int32_t y = 0; y < std::min(height, newHeight); ++y)
    for (int32_t x = 0; x < std::min(width, newWidth); ++x) *resized.At(x, y) = std::move(*At(x, y));
  width = newWidth;
  height = newHeight;
  cells = std::move(resized.cells);
}

} // namespace vesk
