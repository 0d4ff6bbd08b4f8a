#include "Files/Object/CollisionIndex.h"

namespace vesk {

namespace {

using Record = CollisionIndexState::Record;
using Entry = CollisionIndexState::Entry;
using Place = CollisionIndexState::Place;

// Never destroyed, so that instances that outlive everything else may still leave it.
CollisionIndexState& g_index = *new CollisionIndexState;

Record& RecordAt(int32_t slot) { return g_index.records[static_cast<size_t>(slot)]; }

template <class Act> void ForEachBucketOf(const Record& record, Act act) {
  if (record.place == Place::kWide) act(g_index.wide);
  if (record.place != Place::kGrid) return;
  for (int32_t row = record.cells.top; row <= record.cells.bottom; ++row)
    for (int32_t column = record.cells.left; column <= record.cells.right; ++column)
      act(g_index.Bucket(column, row));
}

Entry* EntryOf(std::vector<Entry>& bucket, int32_t slot) {
  for (Entry& entry : bucket)
    if (entry.slot == slot) return &entry;
  return nullptr;
}

void TakeOut(int32_t slot) {
  Record& record = RecordAt(slot);
  ForEachBucketOf(record, [slot](std::vector<Entry>& bucket) {
    if (Entry* entry = EntryOf(bucket, slot)) {
      *entry = bucket.back();
      bucket.pop_back();
    }
  });
  record.place = Place::kNowhere;
}

void PutIn(int32_t slot, const BoundingBox& box) {
  Record& record = RecordAt(slot);
  record.box = box;
  record.cells = CollisionIndexState::Cells(box);
  const bool fits =
      CollisionIndexState::Covers(box) && record.cells.Count() <= CollisionIndexState::kWideCells;
  record.place = fits ? Place::kGrid : Place::kWide;
  ForEachBucketOf(record, [&](std::vector<Entry>& bucket) { bucket.push_back({box, slot}); });
}

bool SameBox(const BoundingBox& a, const BoundingBox& b) {
  return a.left == b.left && a.top == b.top && a.right == b.right && a.bottom == b.bottom;
}

void TakeNewBox(int32_t slot) {
  Record& record = RecordAt(slot);
  const BoundingBox box = record.instance->Bounds();
  if (record.place != Place::kNowhere && SameBox(box, record.box)) return;
  if (g_index.watchers > 0) g_index.changed.push_back(slot);
  if (record.place == Place::kGrid && CollisionIndexState::Covers(box) &&
      CollisionIndexState::Cells(box) == record.cells) {
    record.box = box;
    ForEachBucketOf(record, [&](std::vector<Entry>& bucket) { EntryOf(bucket, slot)->box = box; });
    return;
  }
  TakeOut(slot);
  PutIn(slot, box);
}

void MarkStale(int32_t slot) {
  Record& record = RecordAt(slot);
  if (record.stale) return;
  record.stale = true;
  g_index.stale.push_back(slot);
}

} // namespace

CollisionIndexState& CollisionIndex() { return g_index; }

void CollisionIndexState::Refresh(const CInstance* except) {
  size_t kept = 0;
  for (const int32_t slot : stale) {
    Record& record = RecordAt(slot);
    if (record.instance && record.instance == except) {
      stale[kept++] = slot;
      continue;
    }
    record.stale = false;
    if (record.instance)
      TakeNewBox(slot);
    else
      freeSlots.push_back(slot); // it left meanwhile
  }
  stale.resize(kept);
}

void CollisionIndex_Enter(CInstance& instance, CObjectFb& object) {
  CollisionIndex_Leave(instance);
  int32_t slot;
  if (g_index.freeSlots.empty()) {
    slot = static_cast<int32_t>(g_index.records.size());
    g_index.records.emplace_back();
  } else {
    slot = g_index.freeSlots.back();
    g_index.freeSlots.pop_back();
  }
  Record& record = RecordAt(slot);
  record = {};
  record.instance = &instance;
  record.object = &object;
  record.serial = ++g_index.nextSerial;
  instance.indexSlot = slot;
  ++g_index.count;
  MarkStale(slot);
}

void CollisionIndex_Leave(CInstance& instance) {
  const int32_t slot = instance.indexSlot;
  if (slot < 0) return;
  instance.indexSlot = -1;
  TakeOut(slot);
  Record& record = RecordAt(slot);
  record.instance = nullptr;
  --g_index.count;
  if (!record.stale) g_index.freeSlots.push_back(slot);
}

void CollisionIndex_Moved(CInstance& instance) { MarkStale(instance.indexSlot); }

void CollisionIndex_Reset() {
  for (Record& record : g_index.records)
    if (record.instance) record.instance->indexSlot = -1;
  g_index = {};
}

} // namespace vesk
