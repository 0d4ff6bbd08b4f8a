#include "Files/Function/Function_Data_Structures.h"

#include "Files/Base/Error.h"
#include "Files/Code/Code.h"
#include "Files/Function/Function.h"
#include "Files/Support/Json.h"
#include "Files/Support/Support_Data_Structures.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <memory>
#include <utility>

namespace vesk {

namespace {

constexpr int32_t kLongestList = 1 << 26; // elements: 1 GB

void ReportBadId() { Ds_ReportBadId(); }

CDS_Map* MapOf(int32_t id) {
  CDS_Map* map = Ds().maps.Find(id);
  if (!map) ReportBadId();
  return map;
}
CDS_List* ListOf(int32_t id) {
  CDS_List* list = Ds().lists.Find(id);
  if (!list) ReportBadId();
  return list;
}

bool AddMarked(int32_t id, const RValue& key, const RValue& value) {
  CDS_Map* map = Ds().maps.Find(id);
  if (!map) {
    ReportError("Data structure with index %d, does not exist", id);
    return false;
  }
  return map->Add(key, value);
}

bool ChildMapExists(int32_t child) {
  if (Ds().maps.Find(child)) return true;
  ReportError("Invalid map index for value");
  return false;
}
bool ChildListExists(int32_t child) {
  if (Ds().lists.Find(child)) return true;
  ReportError("Invalid list index for value");
  return false;
}

} // namespace

void Ds_ReportBadId() { ReportError("Data structure with index does not exist."); }

bool ds_exists(int32_t id, int32_t type) {
  const CLock lock(Ds_Mutex());
  switch (type) {
  case kDsMap: return Ds().maps.Find(id) != nullptr;
  case kDsList: return Ds().lists.Find(id) != nullptr;
  case kDsStack: return Ds().stacks.Find(id) != nullptr;
  case kDsQueue: return Ds().queues.Find(id) != nullptr;
  case kDsGrid: return Ds().grids.Find(id) != nullptr;
  case kDsPriority: return Ds().priorities.Find(id) != nullptr;
  default: return false;
  }
}

void ds_set_precision(double precision) { Ds().precision = std::abs(precision); }

// ---- maps ----

int32_t ds_map_create() {
  const CLock lock(Ds_Mutex());
  return Ds().maps.Create(std::make_unique<CDS_Map>());
}

void ds_map_destroy(int32_t id) {
  const CLock lock(Ds_Mutex());
  if (!Ds_DestroyMap(id)) ReportBadId();
}

bool ds_map_add(int32_t id, const RValue& key, const RValue& value) {
  const CLock lock(Ds_Mutex());
  return AddMarked(id, key, WithoutMarks(value));
}

bool ds_map_add_map(int32_t id, const RValue& key, int32_t child) {
  const CLock lock(Ds_Mutex());
  return ChildMapExists(child) && AddMarked(id, key, WithMark(child, kMarkMap));
}

bool ds_map_add_list(int32_t id, const RValue& key, int32_t child) {
  const CLock lock(Ds_Mutex());
  return ChildListExists(child) && AddMarked(id, key, WithMark(child, kMarkList));
}

void ds_map_replace(int32_t id, const RValue& key, const RValue& value) {
  const CLock lock(Ds_Mutex());
  if (CDS_Map* map = MapOf(id)) map->Replace(key, WithoutMarks(value));
}

void ds_map_replace_map(int32_t id, const RValue& key, int32_t child) {
  const CLock lock(Ds_Mutex());
  CDS_Map* map = MapOf(id);
  if (map && ChildMapExists(child)) map->Replace(key, WithMark(child, kMarkMap));
}

void ds_map_replace_list(int32_t id, const RValue& key, int32_t child) {
  const CLock lock(Ds_Mutex());
  CDS_Map* map = MapOf(id);
  if (map && ChildListExists(child)) map->Replace(key, WithMark(child, kMarkList));
}

void ds_map_delete(int32_t id, const RValue& key) {
  const CLock lock(Ds_Mutex());
  if (CDS_Map* map = MapOf(id)) map->Delete(key);
}

bool ds_map_exists(int32_t id, const RValue& key) {
  const CLock lock(Ds_Mutex());
  const CDS_Map* map = MapOf(id);
  return map && map->Find(key);
}

RValue ds_map_find_value(int32_t id, const RValue& key) {
  const CLock lock(Ds_Mutex());
  const CDS_Map* map = MapOf(id);
  if (!map) return 0;
  const CDS_Map::Entry* entry = map->Find(key);
  return entry ? WithoutMarks(entry->value) : RValue();
}

bool ds_map_owns_map(int32_t id, const RValue& key) {
  const CLock lock(Ds_Mutex());
  const CDS_Map* map = MapOf(id);
  const CDS_Map::Entry* entry = map ? map->Find(key) : nullptr;
  return entry && entry->value.IsReal() && (entry->value.kind & kMarkMap) != 0;
}

bool ds_map_owns_list(int32_t id, const RValue& key) {
  const CLock lock(Ds_Mutex());
  const CDS_Map* map = MapOf(id);
  const CDS_Map::Entry* entry = map ? map->Find(key) : nullptr;
  return entry && entry->value.IsReal() && (entry->value.kind & kMarkList) != 0;
}

RValue ds_map_find_first(int32_t id) {
  const CLock lock(Ds_Mutex());
  const CDS_Map* map = MapOf(id);
  if (!map) return 0;
  const CDS_Map::Entry* entry = map->First();
  return entry ? WithoutMarks(entry->key) : RValue();
}

RValue ds_map_find_last(int32_t id) {
  const CLock lock(Ds_Mutex());
  const CDS_Map* map = MapOf(id);
  if (!map) return 0;
  const CDS_Map::Entry* entry = map->Last();
  return entry ? WithoutMarks(entry->key) : RValue();
}

RValue ds_map_find_next(int32_t id, const RValue& key) {
  const CLock lock(Ds_Mutex());
  const CDS_Map* map = MapOf(id);
  if (!map) return 0;
  const CDS_Map::Entry* entry = map->Find(key);
  if (entry) entry = map->Next(entry);
  return entry ? WithoutMarks(entry->key) : RValue();
}

RValue ds_map_find_previous(int32_t id, const RValue& key) {
  const CLock lock(Ds_Mutex());
  const CDS_Map* map = MapOf(id);
  if (!map) return 0;
  const CDS_Map::Entry* entry = map->Find(key);
  if (entry) entry = map->Previous(entry);
  return entry ? WithoutMarks(entry->key) : RValue();
}

int32_t ds_map_size(int32_t id) {
  const CLock lock(Ds_Mutex());
  const CDS_Map* map = MapOf(id);
  return map ? map->Count() : 0;
}

bool ds_map_empty(int32_t id) { return ds_map_size(id) == 0; }

void ds_map_clear(int32_t id) {
  const CLock lock(Ds_Mutex());
  CDS_Map* map = MapOf(id);
  if (!map) return;
  std::vector<RValue> values;
  for (const CDS_Map::Entry* at = map->First(); at; at = map->Next(at)) values.push_back(at->value);
  map->Clear();
  Ds_DestroyOwned(values);
}

// The copy owns nothing: nested ids are plain numbers in it.
void ds_map_copy(int32_t id, int32_t source) {
  const CLock lock(Ds_Mutex());
  CDS_Map* to = MapOf(id);
  const CDS_Map* from = MapOf(source);
  if (!to || !from || to == from) return;
  to->Clear();
  for (const CDS_Map::Entry* at = from->First(); at; at = from->Next(at))
    to->Append(at->key, WithoutMarks(at->value));
}

// ---- lists ----

int32_t ds_list_create() { return Ds().lists.Create(std::make_unique<CDS_List>()); }

void ds_list_destroy(int32_t id) {
  if (!Ds_DestroyList(id)) ReportBadId();
}

void ds_list_add(int32_t id, const RValue& value) {
  if (CDS_List* list = ListOf(id)) list->values.push_back(WithoutMarks(value));
}

int32_t ds_list_size(int32_t id) {
  const CDS_List* list = ListOf(id);
  return list ? static_cast<int32_t>(list->values.size()) : 0;
}

RValue ds_list_find_value(int32_t id, int32_t position) {
  const CDS_List* list = ListOf(id);
  if (!list) return 0;
  if (position < 0 || static_cast<size_t>(position) >= list->values.size()) return {};
  return WithoutMarks(list->values[static_cast<size_t>(position)]);
}

void ds_list_set(int32_t id, int32_t position, const RValue& value) {
  CDS_List* list = ListOf(id);
  if (!list || position < 0) return;
  if (position >= kLongestList) {
    ReportError("ds_list_set: a list of %d elements is not possible", position);
    return;
  }
  if (static_cast<size_t>(position) >= list->values.size())
    list->values.resize(static_cast<size_t>(position) + 1, RValue(0.0));
  list->values[static_cast<size_t>(position)] = WithoutMarks(value);
}

void Ds_Shuffle(std::vector<RValue>& values) {
  const auto size = static_cast<uint32_t>(values.size());
  if (size < 2) return;
  for (uint64_t swaps = uint64_t{8} * size; swaps > 0; --swaps) {
    const uint32_t first = Random_Next() % size;
    const uint32_t second = Random_Next() % size;
    if (first != second) std::swap(values[first], values[second]);
  }
}

void ds_list_shuffle(int32_t id) {
  if (CDS_List* list = ListOf(id)) Ds_Shuffle(list->values);
}

// ---- text ----

std::string json_encode(int32_t map) {
  const CLock lock(Ds_Mutex());
  return Json_EncodeMap(map);
}

int32_t json_decode(const RValue& text) {
  const CLock lock(Ds_Mutex());
  return Json_DecodeMap(text);
}

namespace {

// ---- forms that only scripts by name reach ----

int32_t MapCreate(Args args) {
  const int32_t buckets = args.empty() ? static_cast<int32_t>(CDS_Map::kBuckets) : ArgAsInt32(args.data(), 0);
  if (buckets < 1 || !std::has_single_bit(static_cast<uint32_t>(buckets)) || buckets > (1 << 20)) {
    ReportError("ds_map_create: the number of buckets must be a power of two up to 1048576, not %d", buckets);
    return ds_map_create();
  }
  const CLock lock(Ds_Mutex());
  return Ds().maps.Create(std::make_unique<CDS_Map>(static_cast<uint32_t>(buckets)));
}

void ListAdd(int32_t id, Args values) {
  for (const RValue& value : values) ds_list_add(id, value);
}
bool ListEmpty(int32_t id) { return ds_list_size(id) == 0; }

RValue* ElementOf(int32_t id, int32_t position) {
  CDS_List* list = ListOf(id);
  if (!list || position < 0 || static_cast<size_t>(position) >= list->values.size()) return nullptr;
  return &list->values[static_cast<size_t>(position)];
}

void ListMarkAsMap(int32_t id, int32_t position) {
  RValue* value = ElementOf(id, position);
  if (value && ChildMapExists(ValueAsInt32(*value))) *value = WithMark(ValueAsReal(*value), kMarkMap);
}
void ListMarkAsList(int32_t id, int32_t position) {
  RValue* value = ElementOf(id, position);
  if (value && ChildListExists(ValueAsInt32(*value))) *value = WithMark(ValueAsReal(*value), kMarkList);
}

void ListClear(int32_t id) {
  CDS_List* list = ListOf(id);
  if (!list) return;
  const std::vector<RValue> values = std::exchange(list->values, {});
  Ds_DestroyOwned(values);
}

void ListCopy(int32_t id, int32_t source) {
  CDS_List* to = ListOf(id);
  const CDS_List* from = ListOf(source);
  if (!to || !from || to == from) return;
  to->values.clear();
  for (const RValue& value : from->values) to->values.push_back(WithoutMarks(value));
}

// A position at the end appends; elsewhere outside nothing happens.
void ListInsert(int32_t id, int32_t position, const RValue& value) {
  CDS_List* list = ListOf(id);
  if (list && position >= 0 && static_cast<size_t>(position) <= list->values.size())
    list->values.insert(list->values.begin() + position, WithoutMarks(value));
}
void ListReplace(int32_t id, int32_t position, const RValue& value) {
  if (RValue* element = ElementOf(id, position)) *element = WithoutMarks(value);
}
void ListDelete(int32_t id, int32_t position) {
  if (ElementOf(id, position)) {
    CDS_List* list = Ds().lists.Find(id);
    list->values.erase(list->values.begin() + position);
  }
}
int32_t ListFindIndex(int32_t id, const RValue& wanted) {
  const CDS_List* list = ListOf(id);
  if (!list) return 0;
  const auto found = std::find_if(list->values.begin(), list->values.end(),
                                  [&](const RValue& value) { return Ds_Equal(value, wanted); });
  return found == list->values.end() ? -1 : static_cast<int32_t>(found - list->values.begin());
}
// Exact comparison: within a tolerance "less" would be no order that a sort may rely on.
bool Less(const RValue& a, const RValue& b) { return CompareValues(a, b, 0) < 0; }
void ListSort(int32_t id, bool ascending) {
  CDS_List* list = ListOf(id);
  if (!list) return;
  std::stable_sort(list->values.begin(), list->values.end(),
                   [&](const RValue& a, const RValue& b) { return ascending ? Less(a, b) : Less(b, a); });
}

// ---- stacks and queues ----

template <auto Table> auto* Structure(int32_t id) {
  auto* structure = (Ds().*Table).Find(id);
  if (!structure) ReportBadId();
  return structure;
}

template <auto Table, class T> int32_t Create() { return (Ds().*Table).Create(std::make_unique<T>()); }
template <auto Table> void Destroy(int32_t id) {
  if (!(Ds().*Table).Take(id)) ReportBadId();
}
template <auto Table> int32_t Size(int32_t id) {
  const auto* structure = Structure<Table>(id);
  return structure ? static_cast<int32_t>(structure->values.size()) : 0;
}
template <auto Table> bool Empty(int32_t id) { return Size<Table>(id) == 0; }
template <auto Table> void Clear(int32_t id) {
  if (auto* structure = Structure<Table>(id)) structure->values.clear();
}
template <auto Table> void Copy(int32_t id, int32_t source) {
  auto* to = Structure<Table>(id);
  const auto* from = Structure<Table>(source);
  if (to && from && to != from) to->values = from->values;
}
template <auto Table> void Append(int32_t id, Args values) {
  if (auto* structure = Structure<Table>(id))
    for (const RValue& value : values) structure->values.push_back(WithoutMarks(value));
}
template <auto Table> RValue Front(int32_t id) {
  const auto* structure = Structure<Table>(id);
  if (!structure) return 0;
  return structure->values.empty() ? RValue() : structure->values.front();
}
template <auto Table> RValue Back(int32_t id) {
  const auto* structure = Structure<Table>(id);
  if (!structure) return 0;
  return structure->values.empty() ? RValue() : structure->values.back();
}

constexpr auto kStacks = &DsState::stacks;
constexpr auto kQueues = &DsState::queues;
constexpr auto kPriorities = &DsState::priorities;

RValue StackPop(int32_t id) {
  RValue top = Back<kStacks>(id);
  CDS_Stack* stack = Ds().stacks.Find(id);
  if (stack && !stack->values.empty()) stack->values.pop_back();
  return top;
}
RValue QueueDequeue(int32_t id) {
  RValue head = Front<kQueues>(id);
  CDS_Queue* queue = Ds().queues.Find(id);
  if (queue && !queue->values.empty()) queue->values.pop_front();
  return head;
}

// ---- priority queues ----

using Items = std::vector<CDS_Priority::Item>;

bool LowerPriority(const CDS_Priority::Item& a, const CDS_Priority::Item& b) {
  return CompareValues(a.priority, b.priority, 0) < 0;
}
CDS_Priority::Item* ItemOf(CDS_Priority& queue, const RValue& value) {
  for (CDS_Priority::Item& item : queue.items)
    if (Ds_Equal(item.value, value)) return &item;
  return nullptr;
}

int32_t PrioritySize(int32_t id) {
  const CDS_Priority* queue = Structure<kPriorities>(id);
  return queue ? static_cast<int32_t>(queue->items.size()) : 0;
}
bool PriorityEmpty(int32_t id) { return PrioritySize(id) == 0; }
void PriorityClear(int32_t id) {
  if (CDS_Priority* queue = Structure<kPriorities>(id)) queue->items.clear();
}
void PriorityCopy(int32_t id, int32_t source) {
  CDS_Priority* to = Structure<kPriorities>(id);
  const CDS_Priority* from = Structure<kPriorities>(source);
  if (to && from && to != from) to->items = from->items;
}
void PriorityAdd(int32_t id, const RValue& value, const RValue& priority) {
  if (CDS_Priority* queue = Structure<kPriorities>(id))
    queue->items.push_back({WithoutMarks(value), WithoutMarks(priority)});
}
void PriorityChange(int32_t id, const RValue& value, const RValue& priority) {
  CDS_Priority* queue = Structure<kPriorities>(id);
  CDS_Priority::Item* item = queue ? ItemOf(*queue, value) : nullptr;
  if (item) item->priority = WithoutMarks(priority);
}
RValue PriorityOf(int32_t id, const RValue& value) {
  CDS_Priority* queue = Structure<kPriorities>(id);
  if (!queue) return 0;
  const CDS_Priority::Item* item = ItemOf(*queue, value);
  return item ? item->priority : RValue();
}
void PriorityDeleteValue(int32_t id, const RValue& value) {
  CDS_Priority* queue = Structure<kPriorities>(id);
  const CDS_Priority::Item* item = queue ? ItemOf(*queue, value) : nullptr;
  if (item) queue->items.erase(queue->items.begin() + (item - queue->items.data()));
}
template <bool kLowest, bool kDelete> RValue PriorityExtreme(int32_t id) {
  CDS_Priority* queue = Structure<kPriorities>(id);
  if (!queue) return 0;
  if (queue->items.empty()) return {};
  const auto item = kLowest ? std::min_element(queue->items.begin(), queue->items.end(), LowerPriority)
                            : std::max_element(queue->items.begin(), queue->items.end(), LowerPriority);
  RValue value = item->value;
  if (kDelete) queue->items.erase(item);
  return value;
}

// ---- grids ----

constexpr auto kGrids = &DsState::grids;
constexpr int32_t kLargestGrid = 1 << 26; // cells: 1 GB

bool GridSizeFits(const char* name, int32_t width, int32_t height) {
  if (width >= 0 && height >= 0 && int64_t{width} * height <= kLargestGrid) return true;
  ReportError("%s: a grid of %d by %d cells is not possible", name, width, height);
  return false;
}
int32_t GridCreate(int32_t width, int32_t height) {
  if (!GridSizeFits("ds_grid_create", width, height)) return -1;
  return Ds().grids.Create(std::make_unique<CGrid>(width, height));
}
void GridResize(int32_t id, int32_t width, int32_t height) {
  CGrid* grid = Structure<kGrids>(id);
  if (grid && GridSizeFits("ds_grid_resize", width, height)) grid->Resize(width, height);
}
void GridCopy(int32_t id, int32_t source) {
  CGrid* to = Structure<kGrids>(id);
  const CGrid* from = Structure<kGrids>(source);
  if (to && from && to != from) *to = *from;
}
int32_t GridWidth(int32_t id) {
  const CGrid* grid = Structure<kGrids>(id);
  return grid ? grid->width : 0;
}
int32_t GridHeight(int32_t id) {
  const CGrid* grid = Structure<kGrids>(id);
  return grid ? grid->height : 0;
}
void GridClear(int32_t id, const RValue& value) {
  if (CGrid* grid = Structure<kGrids>(id)) std::fill(grid->cells.begin(), grid->cells.end(), value);
}
RValue* CellOf(int32_t id, int32_t x, int32_t y) {
  CGrid* grid = Structure<kGrids>(id);
  RValue* cell = grid ? grid->At(x, y) : nullptr;
  if (grid && !cell)
    ReportError("Grid %d, index out of bounds: (%d, %d) is outside %d by %d cells", id, x, y, grid->width,
                grid->height);
  return cell;
}
RValue GridGet(int32_t id, int32_t x, int32_t y) {
  const RValue* cell = CellOf(id, x, y);
  if (cell) return *cell;
  return Ds().grids.Find(id) ? RValue() : RValue(0);
}

enum class CellChange { Set, Add, Multiply };

template <CellChange kChange> void Change(RValue& cell, const RValue& value) {
  if constexpr (kChange == CellChange::Set)
    cell = WithoutMarks(value);
  else if constexpr (kChange == CellChange::Add)
    ValueAdd(cell, value);
  else
    ValueMultiply(cell, value);
}
template <CellChange kChange> void GridChange(int32_t id, int32_t x, int32_t y, const RValue& value) {
  if (RValue* cell = CellOf(id, x, y)) Change<kChange>(*cell, value);
}

// Calls visit(x, y, cell) for the cells of a region that lie in the grid; the corners in any order.
template <class Visit>
void ForRegion(CGrid& grid, int32_t x1, int32_t y1, int32_t x2, int32_t y2, Visit visit) {
  for (int32_t y = std::max(std::min(y1, y2), 0); y <= std::min(std::max(y1, y2), grid.height - 1); ++y)
    for (int32_t x = std::max(std::min(x1, x2), 0); x <= std::min(std::max(x1, x2), grid.width - 1); ++x)
      visit(x, y, *grid.At(x, y));
}
// The same for cells whose place lies within `radius` of (x, y).
template <class Visit> void ForDisk(CGrid& grid, double x, double y, double radius, Visit visit) {
  if (!(radius >= 0)) return;
  const auto clampTo = [](double value, int32_t size) {
    return static_cast<int32_t>(std::clamp(value, -1.0, static_cast<double>(size)));
  };
  ForRegion(grid, clampTo(std::floor(x - radius), grid.width), clampTo(std::floor(y - radius), grid.height),
            clampTo(std::ceil(x + radius), grid.width), clampTo(std::ceil(y + radius), grid.height),
            [&](int32_t cellX, int32_t cellY, RValue& cell) {
              const double dx = cellX - x;
              const double dy = cellY - y;
              if (dx * dx + dy * dy <= radius * radius) visit(cellX, cellY, cell);
            });
}

template <CellChange kChange>
void GridChangeRegion(int32_t id, int32_t x1, int32_t y1, int32_t x2, int32_t y2, const RValue& value) {
  if (CGrid* grid = Structure<kGrids>(id))
    ForRegion(*grid, x1, y1, x2, y2, [&](int32_t, int32_t, RValue& cell) { Change<kChange>(cell, value); });
}
template <CellChange kChange>
void GridChangeDisk(int32_t id, double x, double y, double radius, const RValue& value) {
  if (CGrid* grid = Structure<kGrids>(id))
    ForDisk(*grid, x, y, radius, [&](int32_t, int32_t, RValue& cell) { Change<kChange>(cell, value); });
}

enum class Summary { Sum, Highest, Lowest, Mean };

struct Collected {
  double sum = 0, highest = 0, lowest = 0;
  int64_t count = 0;
  void Add(const RValue& cell) {
    const double value = cell.IsNumber() ? ValueAsReal(cell) : 0;
    sum += value;
    highest = count == 0 ? value : std::max(highest, value);
    lowest = count == 0 ? value : std::min(lowest, value);
    ++count;
  }
  double Get(Summary summary) const {
    switch (summary) {
    case Summary::Sum: return sum;
    case Summary::Highest: return highest;
    case Summary::Lowest: return lowest;
    case Summary::Mean: return count > 0 ? sum / static_cast<double>(count) : 0;
    }
    return 0;
  }
};
template <Summary kSummary> double GridOfRegion(int32_t id, int32_t x1, int32_t y1, int32_t x2, int32_t y2) {
  Collected collected;
  if (CGrid* grid = Structure<kGrids>(id))
    ForRegion(*grid, x1, y1, x2, y2, [&](int32_t, int32_t, const RValue& cell) { collected.Add(cell); });
  return collected.Get(kSummary);
}
template <Summary kSummary> double GridOfDisk(int32_t id, double x, double y, double radius) {
  Collected collected;
  if (CGrid* grid = Structure<kGrids>(id))
    ForDisk(*grid, x, y, radius, [&](int32_t, int32_t, const RValue& cell) { collected.Add(cell); });
  return collected.Get(kSummary);
}

enum class Answer { Exists, X, Y };

struct FoundCell {
  int32_t x = 0, y = 0;
  bool found = false;
  double Get(Answer answer) const {
    switch (answer) {
    case Answer::Exists: return found ? 1 : 0;
    case Answer::X: return found ? x : -1;
    case Answer::Y: return found ? y : -1;
    }
    return 0;
  }
  void Note(int32_t cellX, int32_t cellY, const RValue& cell, const RValue& wanted) {
    if (found || !Ds_Equal(cell, wanted)) return;
    *this = {cellX, cellY, true};
  }
};
template <Answer kAnswer>
double GridFind(int32_t id, int32_t x1, int32_t y1, int32_t x2, int32_t y2, const RValue& wanted) {
  FoundCell cell;
  if (CGrid* grid = Structure<kGrids>(id))
    ForRegion(*grid, x1, y1, x2, y2,
              [&](int32_t x, int32_t y, const RValue& value) { cell.Note(x, y, value, wanted); });
  return cell.Get(kAnswer);
}
template <Answer kAnswer>
double GridFindInDisk(int32_t id, double x, double y, double radius, const RValue& wanted) {
  FoundCell cell;
  if (CGrid* grid = Structure<kGrids>(id))
    ForDisk(*grid, x, y, radius, [&](int32_t cellX, int32_t cellY, const RValue& value) {
      cell.Note(cellX, cellY, value, wanted);
    });
  return cell.Get(kAnswer);
}

constexpr BuiltinRow kBuiltins[] = {
    Builtin<&ds_exists>("ds_exists"),
    Builtin<&ds_set_precision>("ds_set_precision"),
    Builtin<&MapCreate>("ds_map_create"),
    Builtin<&ds_map_destroy>("ds_map_destroy"),
    Builtin<&ds_map_add>("ds_map_add"),
    Builtin<&ds_map_add_map>("ds_map_add_map"),
    Builtin<&ds_map_add_list>("ds_map_add_list"),
    Builtin<&ds_map_replace>("ds_map_replace"),
    Builtin<&ds_map_replace>("ds_map_set"),
    Builtin<&ds_map_replace_map>("ds_map_replace_map"),
    Builtin<&ds_map_replace_list>("ds_map_replace_list"),
    Builtin<&ds_map_delete>("ds_map_delete"),
    Builtin<&ds_map_exists>("ds_map_exists"),
    Builtin<&ds_map_find_value>("ds_map_find_value"),
    Builtin<&ds_map_find_first>("ds_map_find_first"),
    Builtin<&ds_map_find_last>("ds_map_find_last"),
    Builtin<&ds_map_find_next>("ds_map_find_next"),
    Builtin<&ds_map_find_previous>("ds_map_find_previous"),
    Builtin<&ds_map_size>("ds_map_size"),
    Builtin<&ds_map_empty>("ds_map_empty"),
    Builtin<&ds_map_clear>("ds_map_clear"),
    Builtin<&ds_map_copy>("ds_map_copy"),
    Builtin<&ds_list_create>("ds_list_create"),
    Builtin<&ds_list_destroy>("ds_list_destroy"),
    Builtin<&ListAdd>("ds_list_add"),
    Builtin<&ds_list_size>("ds_list_size"),
    Builtin<&ds_list_find_value>("ds_list_find_value"),
    Builtin<&ds_list_shuffle>("ds_list_shuffle"),
    Builtin<&ListEmpty>("ds_list_empty"),
    Builtin<&ListClear>("ds_list_clear"),
    Builtin<&ListCopy>("ds_list_copy"),
    Builtin<&ListInsert>("ds_list_insert"),
    Builtin<&ListReplace>("ds_list_replace"),
    Builtin<&ds_list_set>("ds_list_set"),
    Builtin<&ListDelete>("ds_list_delete"),
    Builtin<&ListFindIndex>("ds_list_find_index"),
    Builtin<&ListSort>("ds_list_sort"),
    Builtin<&ListMarkAsMap>("ds_list_mark_as_map"),
    Builtin<&ListMarkAsList>("ds_list_mark_as_list"),
    Builtin<&Create<kStacks, CDS_Stack>>("ds_stack_create"),
    Builtin<&Destroy<kStacks>>("ds_stack_destroy"),
    Builtin<&Clear<kStacks>>("ds_stack_clear"),
    Builtin<&Copy<kStacks>>("ds_stack_copy"),
    Builtin<&Size<kStacks>>("ds_stack_size"),
    Builtin<&Empty<kStacks>>("ds_stack_empty"),
    Builtin<&Append<kStacks>>("ds_stack_push"),
    Builtin<&StackPop>("ds_stack_pop"),
    Builtin<&Back<kStacks>>("ds_stack_top"),
    Builtin<&Create<kQueues, CDS_Queue>>("ds_queue_create"),
    Builtin<&Destroy<kQueues>>("ds_queue_destroy"),
    Builtin<&Clear<kQueues>>("ds_queue_clear"),
    Builtin<&Copy<kQueues>>("ds_queue_copy"),
    Builtin<&Size<kQueues>>("ds_queue_size"),
    Builtin<&Empty<kQueues>>("ds_queue_empty"),
    Builtin<&Append<kQueues>>("ds_queue_enqueue"),
    Builtin<&QueueDequeue>("ds_queue_dequeue"),
    Builtin<&Front<kQueues>>("ds_queue_head"),
    Builtin<&Back<kQueues>>("ds_queue_tail"),
    Builtin<&Create<kPriorities, CDS_Priority>>("ds_priority_create"),
    Builtin<&Destroy<kPriorities>>("ds_priority_destroy"),
    Builtin<&PriorityClear>("ds_priority_clear"),
    Builtin<&PriorityCopy>("ds_priority_copy"),
    Builtin<&PrioritySize>("ds_priority_size"),
    Builtin<&PriorityEmpty>("ds_priority_empty"),
    Builtin<&PriorityAdd>("ds_priority_add"),
    Builtin<&PriorityChange>("ds_priority_change_priority"),
    Builtin<&PriorityOf>("ds_priority_find_priority"),
    Builtin<&PriorityDeleteValue>("ds_priority_delete_value"),
    Builtin<&PriorityExtreme<true, true>>("ds_priority_delete_min"),
    Builtin<&PriorityExtreme<true, false>>("ds_priority_find_min"),
    Builtin<&PriorityExtreme<false, true>>("ds_priority_delete_max"),
    Builtin<&PriorityExtreme<false, false>>("ds_priority_find_max"),
    Builtin<&GridCreate>("ds_grid_create"),
    Builtin<&Destroy<kGrids>>("ds_grid_destroy"),
    Builtin<&GridCopy>("ds_grid_copy"),
    Builtin<&GridResize>("ds_grid_resize"),
    Builtin<&GridWidth>("ds_grid_width"),
    Builtin<&GridHeight>("ds_grid_height"),
    Builtin<&GridClear>("ds_grid_clear"),
    Builtin<&GridGet>("ds_grid_get"),
    Builtin<&GridChange<CellChange::Set>>("ds_grid_set"),
    Builtin<&GridChange<CellChange::Add>>("ds_grid_add"),
    Builtin<&GridChange<CellChange::Multiply>>("ds_grid_multiply"),
    Builtin<&GridChangeRegion<CellChange::Set>>("ds_grid_set_region"),
    Builtin<&GridChangeRegion<CellChange::Add>>("ds_grid_add_region"),
    Builtin<&GridChangeRegion<CellChange::Multiply>>("ds_grid_multiply_region"),
    Builtin<&GridChangeDisk<CellChange::Set>>("ds_grid_set_disk"),
    Builtin<&GridChangeDisk<CellChange::Add>>("ds_grid_add_disk"),
    Builtin<&GridChangeDisk<CellChange::Multiply>>("ds_grid_multiply_disk"),
    Builtin<&GridOfRegion<Summary::Sum>>("ds_grid_get_sum"),
    Builtin<&GridOfRegion<Summary::Highest>>("ds_grid_get_max"),
    Builtin<&GridOfRegion<Summary::Lowest>>("ds_grid_get_min"),
    Builtin<&GridOfRegion<Summary::Mean>>("ds_grid_get_mean"),
    Builtin<&GridOfDisk<Summary::Sum>>("ds_grid_get_disk_sum"),
    Builtin<&GridOfDisk<Summary::Highest>>("ds_grid_get_disk_max"),
    Builtin<&GridOfDisk<Summary::Lowest>>("ds_grid_get_disk_min"),
    Builtin<&GridOfDisk<Summary::Mean>>("ds_grid_get_disk_mean"),
    Builtin<&GridFind<Answer::Exists>>("ds_grid_value_exists"),
    Builtin<&GridFind<Answer::X>>("ds_grid_value_x"),
    Builtin<&GridFind<Answer::Y>>("ds_grid_value_y"),
    Builtin<&GridFindInDisk<Answer::Exists>>("ds_grid_value_disk_exists"),
    Builtin<&GridFindInDisk<Answer::X>>("ds_grid_value_disk_x"),
    Builtin<&GridFindInDisk<Answer::Y>>("ds_grid_value_disk_y"),
    Builtin<&json_encode>("json_encode"),
    Builtin<&json_decode>("json_decode"),
};

} // namespace

void Function_AddDs() {
  Function_Add(kBuiltins);
  Function_AddDsText();
  Function_AddDsGrid();
}

} // namespace vesk
