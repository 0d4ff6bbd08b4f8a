#pragma once
// The tiles of a running room, in drawing order, with look-ups by id and by place.
#include "Files/Room/FlatTable.h"

#include <cstdint>
#include <vector>

namespace vesk {

struct Tile {
  float x = 0, y = 0; // room pixels
  int32_t background = -1;
  int32_t left = 0, top = 0, width = 0, height = 0; // pixels of the background
  float depth = 0;
  int32_t id = -1; // below 0: deleted, and gone after the next SortByDepth
  float xscale = 1, yscale = 1;
  uint32_t blend = 0xFFFFFF; // as scripts have colours: red in the low byte
  float alpha = 1;
  bool visible = true; // false for a deleted one
};

// Edges belong to the area.
struct TileArea {
  float left, top, right, bottom; // room pixels
};
bool Tile_Meets(const Tile& tile, const TileArea& area);

class TileList {
public:
  using const_iterator = std::vector<Tile>::const_iterator;
  // Deleted tiles still stand in between until the next SortByDepth; they are not visible.
  const_iterator begin() const { return m_tiles.begin(); }
  const_iterator end() const { return m_tiles.end(); }
  size_t size() const { return m_tiles.size(); }
  bool empty() const { return m_tiles.empty(); }
  const Tile& operator[](size_t index) const { return m_tiles[index]; }
  size_t LiveCount() const { return m_tiles.size() - m_deleted; }

  void Add(const Tile& tile); // last among its depth
  const Tile* Find(int32_t id) const;
  // The tile for writing any field but the id; null when there is none. Good until the next change of the
  // list.
  Tile* Edit(int32_t id);
  bool Delete(int32_t id);
  void DeleteAtDepth(float depth);
  // The tile of exactly this depth that contains the point and whose centre is nearest; null none.
  const Tile* FindAt(float depth, float x, float y) const;
  // Numbers of the visible tiles that meet the area, ascending. Costs what stands there, not what the list
  // holds. Good until the next call.
  const std::vector<uint32_t>& FindIn(const TileArea& area) const;
  // Calls change(tile) for each tile of exactly this depth.
  template <class Change> void ForEachAtDepth(float depth, Change change) {
    for (Tile& tile : m_tiles)
      if (tile.id >= 0 && tile.depth == depth) change(tile);
    m_placesValid = m_orderKnown = false;
    ++m_changes;
  }
  // Highest depth first, stable. At the start of each draw pass; looks only at what changed since the last.
  void SortByDepth();
  uint64_t Changes() const { return m_changes; }          // grows with every change
  bool Sorted() const { return m_sortedAt == m_changes; } // nothing changed since SortByDepth
  void Clear() { *this = TileList(); }

private:
  struct CellRange {
    int32_t left = 0, top = 0, right = -1, bottom = -1; // empty: kept in m_wide
    bool operator==(const CellRange&) const = default;
  };
  struct PlaceEntry {
    uint32_t tile;
    int32_t next; // -1 last
  };
  static CellRange RangeOf(const Tile& tile);
  bool InOrder() const;
  void IndexIds();
  void IndexPlaces() const;
  void EnterPlace(uint32_t index, const CellRange& range) const;
  void RefreshPlaces() const;
  template <class Visit> void ForCell(int32_t column, int32_t row, Visit visit) const;

  std::vector<Tile> m_tiles;
  size_t m_deleted = 0;
  FlatTable<int32_t, uint32_t> m_byId;
  uint64_t m_changes = 0, m_sortedAt = 0;
  std::vector<uint32_t> m_edited; // since the last SortByDepth
  bool m_orderKnown = true;       // but for what m_edited names

  // Tiles by cell, made when a search asks for it. A tile that moves is entered anew and its old entries stay
  // until there are too many: every search looks at the tile itself.
  mutable FlatTable<uint64_t, int32_t> m_cells; // first entry + 1
  mutable std::vector<PlaceEntry> m_places;
  mutable std::vector<CellRange> m_ranges; // by tile number
  mutable std::vector<uint32_t> m_wide;    // tiles that cover very many cells
  mutable std::vector<uint32_t> m_moved;   // perhaps: edited since the index was brought up to date
  mutable size_t m_freshPlaces = 0;        // entries when it was made
  mutable bool m_placesValid = false;
  mutable std::vector<uint64_t> m_seen; // a bit a tile; all clear between searches
  mutable std::vector<uint32_t> m_found;
};

} // namespace vesk
