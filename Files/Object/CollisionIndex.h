#pragma once
// Where the instances stand: a grid of 64-pixel cells over the boxes of everything in the objects' lists.
//
// Object lists report what enters and leaves; CInstance::DirtyBounds reports what moves, and the grid takes
// the new box before its next answer. The grid only proposes: it names every instance whose box can meet a
// region, and the tests of Collision.h decide. Game thread only.
#include "Files/Object/Instance.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <vector>

namespace vesk {

class CObjectFb;

// ---- reported by the lists ----

// `object` put the instance into its lists: behind everything that stands there.
void CollisionIndex_Enter(CInstance& instance, CObjectFb& object);
// It left them; nothing for an instance that never entered.
void CollisionIndex_Leave(CInstance& instance);

void CollisionIndex_Reset();

// ---- asked by the queries ----

struct CollisionIndexState {
  static constexpr int kCellShift = 6;                 // 64 pixels
  static constexpr int32_t kColumns = 128, kRows = 64; // cells farther apart share a bucket
  static constexpr int32_t kLimit = 1 << 22;           // pixels; boxes beyond it stand aside from the grid
  static constexpr int64_t kWideCells = 64;            // so do boxes that cover more cells

  struct CellRange {
    int32_t left, top, right, bottom; // inclusive
    int64_t Count() const { return (int64_t{right} - left + 1) * (int64_t{bottom} - top + 1); }
    bool operator==(const CellRange&) const = default;
  };
  enum class Place : uint8_t { kNowhere, kGrid, kWide };
  struct Record {
    CInstance* instance = nullptr; // null: the slot is free
    CObjectFb* object = nullptr;   // in whose lists it stands
    uint64_t serial = 0;           // its order in all of these lists
    BoundingBox box;
    CellRange cells{};
    Place place = Place::kNowhere;
    bool stale = false; // in `stale`
  };
  struct Entry { // of a bucket: the box stands here, so that most of a bucket is passed without a jump
    BoundingBox box;
    int32_t slot;
  };

  bool enabled = true; // cleared by tests and benchmarks that want the plain walks
  std::vector<Record> records;
  std::vector<int32_t> freeSlots;
  std::vector<int32_t> stale; // slots whose box must be read again
  std::array<std::vector<Entry>, size_t{kColumns} * kRows> buckets;
  std::vector<Entry> wide;
  int32_t count = 0; // instances
  uint64_t nextSerial = 0;
  int32_t watchers = 0;
  std::vector<int32_t> changed; // slots that got another box while there are watchers

  // Takes the new boxes of all that moved; `except` stays as it was and waits for the next call.
  void Refresh(const CInstance* except = nullptr);
  static CellRange Cells(const BoundingBox& box);
  static bool Covers(const BoundingBox& region);
  std::vector<Entry>& Bucket(int32_t column, int32_t row) {
    return buckets[static_cast<size_t>((row & (kRows - 1)) * kColumns + (column & (kColumns - 1)))];
  }
  // Calls visit(const Record&) once for each instance whose box shares a pixel with the region, in no order.
  // The region must be covered and Refresh done; the visitor must change nothing.
  template <class Visit> void ForEachIn(const BoundingBox& region, Visit visit);
};
CollisionIndexState& CollisionIndex();

inline CollisionIndexState::CellRange CollisionIndexState::Cells(const BoundingBox& box) {
  // A box of no size has its far side before its near one.
  return {std::min(box.left, box.right) >> kCellShift, std::min(box.top, box.bottom) >> kCellShift,
          std::max(box.left, box.right) >> kCellShift, std::max(box.top, box.bottom) >> kCellShift};
}

inline bool CollisionIndexState::Covers(const BoundingBox& region) {
  return region.left > -kLimit && region.top > -kLimit && region.right < kLimit && region.bottom < kLimit &&
         region.left < kLimit && region.top < kLimit && region.right > -kLimit && region.bottom > -kLimit;
}

template <class Visit> void CollisionIndexState::ForEachIn(const BoundingBox& region, Visit visit) {
  const auto meets = [&region](const BoundingBox& box) {
    return box.right >= region.left && box.left <= region.right && box.bottom >= region.top &&
           box.top <= region.bottom;
  };
  const CellRange cells = Cells(region);
  if (cells.Count() > kWideCells * 4) {
    for (const Record& record : records)
      if (record.instance && meets(record.box)) visit(record);
    return;
  }
  const int32_t regionLeft = std::min(region.left, region.right);
  const int32_t regionTop = std::min(region.top, region.bottom);
  for (int32_t row = cells.top; row <= cells.bottom; ++row)
    for (int32_t column = cells.left; column <= cells.right; ++column)
      for (const Entry& entry : Bucket(column, row)) {
        if (!meets(entry.box)) continue;
        // Of all cells that both share, only the first one reports.
        const int32_t x = std::max(regionLeft, std::min(entry.box.left, entry.box.right));
        const int32_t y = std::max(regionTop, std::min(entry.box.top, entry.box.bottom));
        if (x >> kCellShift == column && y >> kCellShift == row)
          visit(records[static_cast<size_t>(entry.slot)]);
      }
  for (const Entry& entry : wide)
    if (meets(entry.box)) visit(records[static_cast<size_t>(entry.slot)]);
}

} // namespace vesk
