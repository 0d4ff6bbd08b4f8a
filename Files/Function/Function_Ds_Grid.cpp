// Grids among themselves, and the forms that an element's change in place compiles to.
#include "Files/Code/Code.h"
#include "Files/Function/Function.h"
#include "Files/Function/Function_Data_Structures.h"
#include "Files/Support/Support_Data_Structures.h"

#include <algorithm>
#include <numeric>
#include <vector>

namespace vesk {

namespace {

CGrid* GridOf(int32_t id) {
  CGrid* grid = Ds().grids.Find(id);
  if (!grid) Ds_ReportBadId();
  return grid;
}

void GridShuffle(int32_t id) {
  if (CGrid* grid = GridOf(id)) Ds_Shuffle(grid->cells);
}

// Whole rows, by the values of one column.
void GridSort(int32_t id, int32_t column, bool ascending) {
  CGrid* grid = GridOf(id);
  if (!grid || column < 0 || column >= grid->width) return;
  std::vector<int32_t> order(static_cast<size_t>(grid->height));
  std::iota(order.begin(), order.end(), 0);
  std::stable_sort(order.begin(), order.end(), [&](int32_t a, int32_t b) {
    const int compared = CompareValues(*grid->At(column, a), *grid->At(column, b), 0);
    return ascending ? compared < 0 : compared > 0;
  });
  std::vector<RValue> sorted;
  sorted.reserve(grid->cells.size());
  for (const int32_t row : order)
    for (int32_t x = 0; x < grid->width; ++x) sorted.push_back(std::move(*grid->At(x, row)));
  grid->cells = std::move(sorted);
}

enum class Combine { Set, Add, Multiply };

// The source's region with its left top at (toX, toY); what lies outside either grid is passed over.
template <Combine kCombine>
void GridFromGrid(int32_t id, int32_t source, int32_t x1, int32_t y1, int32_t x2, int32_t y2, int32_t toX,
                  int32_t toY) {
  CGrid* to = GridOf(id);
  CGrid* from = GridOf(source);
  if (!to || !from) return;
  const int32_t left = std::max(std::min(x1, x2), 0), top = std::max(std::min(y1, y2), 0);
  const int32_t right = std::min(std::max(x1, x2), from->width - 1);
  const int32_t bottom = std::min(std::max(y1, y2), from->height - 1);
  const CGrid copy = *from; // both may be one grid
  const int64_t shiftX = int64_t{toX} - std::min(x1, x2), shiftY = int64_t{toY} - std::min(y1, y2);
  for (int32_t y = top; y <= bottom; ++y)
    for (int32_t x = left; x <= right; ++x) {
      const int64_t column = x + shiftX, row = y + shiftY;
      if (column < 0 || row < 0 || column >= to->width || row >= to->height) continue;
      RValue& cell = *to->At(static_cast<int32_t>(column), static_cast<int32_t>(row));
      const RValue& value =
          copy.cells[static_cast<size_t>(y) * static_cast<size_t>(copy.width) + static_cast<size_t>(x)];
      if constexpr (kCombine == Combine::Set)
        cell = value;
      else if constexpr (kCombine == Combine::Add)
        ValueAdd(cell, value);
      else
        ValueMultiply(cell, value);
    }
}

// `pre` gives the new value, `post` the one before.
RValue MapSetPre(int32_t id, const RValue& key, const RValue& value) {
  ds_map_replace(id, key, value);
  return WithoutMarks(value);
}
RValue MapSetPost(int32_t id, const RValue& key, const RValue& value) {
  RValue before = ds_map_find_value(id, key);
  if (Ds().maps.Find(id)) ds_map_replace(id, key, value);
  return before;
}
RValue ListSetPost(int32_t id, int32_t position, const RValue& value) {
  RValue before = ds_list_find_value(id, position);
  ds_list_set(id, position, value);
  return before;
}
RValue ListSetPre(int32_t id, int32_t position, const RValue& value) {
  ds_list_set(id, position, value);
  return WithoutMarks(value);
}

constexpr BuiltinRow kBuiltins[] = {
    Builtin<&GridShuffle>("ds_grid_shuffle"),
    Builtin<&GridSort>("ds_grid_sort"),
    Builtin<&GridFromGrid<Combine::Set>>("ds_grid_set_grid_region"),
    Builtin<&GridFromGrid<Combine::Add>>("ds_grid_add_grid_region"),
    Builtin<&GridFromGrid<Combine::Multiply>>("ds_grid_multiply_grid_region"),
    Builtin<&MapSetPre>("ds_map_set_pre"),
    Builtin<&MapSetPost>("ds_map_set_post"),
    Builtin<&ListSetPre>("ds_list_set_pre"),
    Builtin<&ListSetPost>("ds_list_set_post"),
};

} // namespace

void Function_AddDsGrid() { Function_Add(kBuiltins); }

} // namespace vesk
