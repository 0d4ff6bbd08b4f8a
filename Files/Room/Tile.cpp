// Tiles: drawing order, look-up by id, look-up by place.
#include "Files/Room/Tile.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <utility>

namespace vesk {

namespace {

constexpr float kCell = 32;        // room pixels
constexpr int64_t kMostCells = 64; // a tile over more cells is looked at in every search
constexpr size_t kSpareEntries = 1024;

struct Box {
  float left, top, right, bottom;
};

Box BoxOf(const Tile& tile) {
  Box box = {tile.x, tile.y, tile.x + static_cast<float>(tile.width) * tile.xscale,
             tile.y + static_cast<float>(tile.height) * tile.yscale};
  if (box.left > box.right) std::swap(box.left, box.right);
  if (box.top > box.bottom) std::swap(box.top, box.bottom);
  return box;
}

int32_t CellOf(float coordinate) {
  const float cell = std::floor(coordinate / kCell);
  if (!(cell > -1e6f)) return -1000000;
  return cell < 1e6f ? static_cast<int32_t>(cell) : 1000000;
}

uint64_t CellKey(int32_t column, int32_t row) {
  return static_cast<uint64_t>(static_cast<uint32_t>(row)) << 32 | static_cast<uint32_t>(column);
}

bool Higher(const Tile& a, const Tile& b) { return a.depth > b.depth; }

} // namespace

bool Tile_Meets(const Tile& tile, const TileArea& area) {
  const Box box = BoxOf(tile);
  return box.right >= area.left && box.left <= area.right && box.bottom >= area.top && box.top <= area.bottom;
}

void TileList::Add(const Tile& tile) {
  const auto index = static_cast<uint32_t>(m_tiles.size());
  if (index > 0 && Higher(tile, m_tiles.back())) m_orderKnown = false;
  m_tiles.push_back(tile);
  m_byId.Set(tile.id) = index;
  ++m_changes;
  if (!m_placesValid) return;
  m_ranges.push_back(RangeOf(tile));
  EnterPlace(index, m_ranges.back());
}

const Tile* TileList::Find(int32_t id) const {
  const uint32_t* index = m_byId.Find(id);
  return index ? &m_tiles[*index] : nullptr;
}

Tile* TileList::Edit(int32_t id) {
  const uint32_t* index = m_byId.Find(id);
  if (!index) return nullptr;
  ++m_changes;
  if (m_orderKnown) m_edited.push_back(*index);
  if (m_edited.size() > m_tiles.size()) m_orderKnown = false;
  if (m_placesValid) m_moved.push_back(*index);
  if (m_moved.size() > m_tiles.size()) m_placesValid = false;
  return &m_tiles[*index];
}

bool TileList::Delete(int32_t id) {
  const uint32_t* index = m_byId.Find(id);
  if (!index) return false;
  Tile& tile = m_tiles[*index];
  tile.id = -1;
  tile.visible = false;
  ++m_deleted;
  ++m_changes;
  m_byId.Remove(id);
  return true;
}

void TileList::DeleteAtDepth(float depth) {
  for (const Tile& tile : m_tiles)
    if (tile.depth == depth) Delete(tile.id);
}

bool TileList::InOrder() const {
  if (!m_orderKnown) return std::is_sorted(m_tiles.begin(), m_tiles.end(), Higher);
  return std::none_of(m_edited.begin(), m_edited.end(), [this](uint32_t index) {
    return (index > 0 && Higher(m_tiles[index], m_tiles[index - 1])) ||
           (index + 1 < m_tiles.size() && Higher(m_tiles[index + 1], m_tiles[index]));
  });
}

void TileList::SortByDepth() {
  if (m_deleted > 0) {
    std::erase_if(m_tiles, [](const Tile& tile) { return tile.id < 0; });
    m_deleted = 0;
    m_orderKnown = false; // the numbers of the edited ones are void
    IndexIds();
  }
  if (!InOrder()) {
    std::stable_sort(m_tiles.begin(), m_tiles.end(), Higher);
    IndexIds();
  }
  m_edited.clear();
  m_orderKnown = true;
  m_sortedAt = m_changes;
}

void TileList::IndexIds() {
  m_byId.Clear();
  for (size_t i = 0; i < m_tiles.size(); ++i)
    if (m_tiles[i].id >= 0) m_byId.Set(m_tiles[i].id) = static_cast<uint32_t>(i);
  m_placesValid = false;
}

TileList::CellRange TileList::RangeOf(const Tile& tile) {
  const Box box = BoxOf(tile);
  const CellRange range{CellOf(box.left), CellOf(box.top), CellOf(box.right), CellOf(box.bottom)};
  const int64_t columns = int64_t{range.right} - range.left + 1, rows = int64_t{range.bottom} - range.top + 1;
  const bool known = box.left <= box.right && box.top <= box.bottom; // else one is not a number
  return known && columns * rows <= kMostCells ? range : CellRange{};
}

void TileList::IndexPlaces() const {
  m_cells.Clear();
  m_places.clear();
  m_wide.clear();
  m_moved.clear();
  m_ranges.assign(m_tiles.size(), {});
  m_seen.assign((m_tiles.size() + 63) / 64, 0);
  for (size_t i = 0; i < m_tiles.size(); ++i) {
    if (m_tiles[i].id < 0) continue;
    m_ranges[i] = RangeOf(m_tiles[i]);
    EnterPlace(static_cast<uint32_t>(i), m_ranges[i]);
  }
  m_freshPlaces = m_places.size();
  m_placesValid = true;
}

void TileList::EnterPlace(uint32_t index, const CellRange& range) const {
  if (range == CellRange{}) {
    m_wide.push_back(index);
    return;
  }
  for (int32_t row = range.top; row <= range.bottom; ++row)
    for (int32_t column = range.left; column <= range.right; ++column) {
      int32_t& first = m_cells.Set(CellKey(column, row));
      m_places.push_back({index, first - 1});
      first = static_cast<int32_t>(m_places.size());
    }
}

void TileList::RefreshPlaces() const {
  const size_t bound = 2 * m_freshPlaces + kSpareEntries;
  if (!m_placesValid || m_places.size() > bound || m_wide.size() > bound) return IndexPlaces();
  for (const uint32_t index : m_moved) {
    const CellRange range = RangeOf(m_tiles[index]);
    if (range == m_ranges[index]) continue;
    m_ranges[index] = range;
    EnterPlace(index, range);
  }
  m_moved.clear();
}

template <class Visit> void TileList::ForCell(int32_t column, int32_t row, Visit visit) const {
  const int32_t* first = m_cells.Find(CellKey(column, row));
  for (int32_t at = first ? *first - 1 : -1; at >= 0; at = m_places[static_cast<size_t>(at)].next)
    visit(m_places[static_cast<size_t>(at)].tile);
}

const Tile* TileList::FindAt(float depth, float x, float y) const {
  RefreshPlaces();
  const Tile* best = nullptr;
  float nearest = 0;
  const auto consider = [&](uint32_t index) {
    const Tile& tile = m_tiles[index];
    if (tile.id < 0 || tile.depth != depth) return;
    const Box box = BoxOf(tile);
    if (!(box.left <= x && x < box.right && box.top <= y && y < box.bottom)) return;
    const float dx = (box.left + box.right) / 2 - x, dy = (box.top + box.bottom) / 2 - y;
    const float distance = dx * dx + dy * dy;
    if (best && (distance > nearest || (distance == nearest && best < &tile))) return;
    best = &tile;
    nearest = distance;
  };
  for (const uint32_t index : m_wide) consider(index);
  ForCell(CellOf(x), CellOf(y), consider);
  return best;
}

const std::vector<uint32_t>& TileList::FindIn(const TileArea& area) const {
  m_found.clear();
  const int32_t left = CellOf(area.left), right = CellOf(area.right), top = CellOf(area.top),
                bottom = CellOf(area.bottom);
  const auto wanted = [&](uint32_t index) {
    return m_tiles[index].visible && Tile_Meets(m_tiles[index], area);
  };
  const int64_t cells = (int64_t{right} - left + 1) * (int64_t{bottom} - top + 1);
  if (cells > static_cast<int64_t>(m_tiles.size())) {
    for (uint32_t index = 0; index < m_tiles.size(); ++index)
      if (wanted(index)) m_found.push_back(index);
    return m_found;
  }
  RefreshPlaces();
  m_seen.resize((m_tiles.size() + 63) / 64);
  const auto mark = [&](uint32_t index) {
    if (wanted(index)) m_seen[index / 64] |= uint64_t{1} << (index % 64);
  };
  for (int32_t row = top; row <= bottom; ++row)
    for (int32_t column = left; column <= right; ++column) ForCell(column, row, mark);
  for (const uint32_t index : m_wide) mark(index);
  for (size_t word = 0; word < m_seen.size(); ++word)
    for (uint64_t bits = std::exchange(m_seen[word], 0); bits != 0; bits &= bits - 1)
      m_found.push_back(static_cast<uint32_t>(word * 64 + static_cast<size_t>(std::countr_zero(bits))));
  return m_found;
}

} // namespace vesk
