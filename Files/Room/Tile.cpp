// Tiles: drawing order, look-up by id, look-up by place.
#include "Files/Room/Tile.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <utility>

namespace vesk {

namespace {

constexpr float kCell = 32;        // room pixels
constexpr int32_t kMostCells = 64; // a tile over more cells is looked at in every search

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

uint64_t PlaceKey(float depth, int32_t column, int32_t row) {
  const auto bits = std::bit_cast<uint32_t>(depth == 0 ? 0.0f : depth); // -0 is 0
  uint64_t key = bits * 0x9E3779B97F4A7C15ull;
  key ^= static_cast<uint32_t>(column) * 0xC2B2AE3D27D4EB4Full;
  key ^= static_cast<uint32_t>(row) * 0x165667B19E3779F9ull;
  return key ^ (key >> 29); // equal keys of different cells do no harm: each tile is tested itself
}

} // namespace

void TileList::Add(const Tile& tile) {
  const auto index = static_cast<uint32_t>(m_tiles.size());
  m_tiles.push_back(tile);
  m_byId.Set(tile.id) = index;
  if (m_placesValid) IndexPlace(index);
}

const Tile* TileList::Find(int32_t id) const {
  const uint32_t* index = m_byId.Find(id);
  return index ? &m_tiles[*index] : nullptr;
}

Tile* TileList::Edit(int32_t id) {
  const uint32_t* index = m_byId.Find(id);
  if (!index) return nullptr;
  m_placesValid = false;
  return &m_tiles[*index];
}

bool TileList::Delete(int32_t id) {
  const uint32_t* index = m_byId.Find(id);
  if (!index) return false;
  Tile& tile = m_tiles[*index];
  tile.id = -1;
  tile.visible = false;
  ++m_deleted;
  m_byId.Remove(id);
  return true;
}

void TileList::DeleteAtDepth(float depth) {
  for (const Tile& tile : m_tiles)
    if (tile.depth == depth) Delete(tile.id);
}

void TileList::SortByDepth() {
  if (m_deleted > 0) {
    std::erase_if(m_tiles, [](const Tile& tile) { return tile.id < 0; });
    m_deleted = 0;
    IndexIds();
  }
  const auto higher = [](const Tile& a, const Tile& b) { return a.depth > b.depth; };
  if (std::is_sorted(m_tiles.begin(), m_tiles.end(), higher)) return;
  std::stable_sort(m_tiles.begin(), m_tiles.end(), higher);
  IndexIds();
}

void TileList::IndexIds() {
  m_byId.Clear();
  for (size_t i = 0; i < m_tiles.size(); ++i)
    if (m_tiles[i].id >= 0) m_byId.Set(m_tiles[i].id) = static_cast<uint32_t>(i);
  m_placesValid = false;
}

void TileList::IndexPlaces() const {
  m_byPlace.Clear();
  m_places.clear();
  m_wide.clear();
  for (size_t i = 0; i < m_tiles.size(); ++i)
    if (m_tiles[i].id >= 0) IndexPlace(static_cast<uint32_t>(i));
  m_placesValid = true;
}

void TileList::IndexPlace(uint32_t index) const {
  const Tile& tile = m_tiles[index];
  const Box box = BoxOf(tile);
  const int32_t left = CellOf(box.left), right = CellOf(box.right), top = CellOf(box.top),
                bottom = CellOf(box.bottom);
  if (static_cast<int64_t>(right - left + 1) * (bottom - top + 1) > kMostCells) {
    m_wide.push_back(index);
    return;
  }
  for (int32_t row = top; row <= bottom; ++row) {
    for (int32_t column = left; column <= right; ++column) {
      int32_t& first = m_byPlace.Set(PlaceKey(tile.depth, column, row));
      m_places.push_back({index, first - 1});
      first = static_cast<int32_t>(m_places.size());
    }
  }
}

const Tile* TileList::FindAt(float depth, float x, float y) const {
  if (!m_placesValid) IndexPlaces();
  const Tile* best = nullptr;
  float nearest = 0;
  const auto consider = [&](const Tile& tile) {
    if (tile.id < 0 || tile.depth != depth) return;
    const Box box = BoxOf(tile);
    if (!(box.left <= x && x < box.right && box.top <= y && y < box.bottom)) return;
    const float dx = (box.left + box.right) / 2 - x, dy = (box.top + box.bottom) / 2 - y;
    const float distance = dx * dx + dy * dy;
    if (best && (distance > nearest || (distance == nearest && best < &tile))) return;
    best = &tile;
    nearest = distance;
  };
  for (const uint32_t index : m_wide) consider(m_tiles[index]);
  if (const int32_t* first = m_byPlace.Find(PlaceKey(depth, CellOf(x), CellOf(y))))
    for (int32_t at = *first - 1; at >= 0; at = m_places[static_cast<size_t>(at)].next)
      consider(m_tiles[m_places[static_cast<size_t>(at)].tile]);
  return best;
}

} // namespace vesk
