// Structures to and from text, and maps in files that only this program's own hand may change.
#include "Files/Base/Console.h"
#include "Files/Base/Error.h"
#include "Files/Function/Function.h"
#include "Files/Function/Function_Data_Structures.h"
#include "Files/Support/DsText.h"
#include "Files/Support/Support_Data_Structures.h"
#include "Files/Support/Support_Files.h"
#include "Platform/Files.h"
#include "Platform/Hash.h"

#include <algorithm>
#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace vesk {

namespace {

// First word of a text, by kind of structure.
enum TextKind : uint32_t {
  kTextMap = 0x0001534Du,
  kTextList = 0x0001534Cu,
  kTextStack = 0x00015353u,
  kTextQueue = 0x00015351u,
  kTextPriority = 0x00015350u,
  kTextGrid = 0x00015347u,
};
constexpr uint32_t kLeastValue = 4; // bytes of the shortest value
constexpr int64_t kLargestGrid = 1 << 26;

// What a structure holds, row after row, for writing and reading by one walk each.
uint32_t Size(const CDS_Map& map) { return static_cast<uint32_t>(map.Count()); }

void WriteTo(DsTextWriter& writer, const CDS_Map& map) {
  writer.Number(Size(map));
  for (const CDS_Map::Entry* at = map.First(); at; at = map.Next(at)) {
    writer.Value(at->key);
    writer.Value(at->value);
  }
}
template <class Structure>
requires requires(Structure s) { s.values; }
void WriteTo(DsTextWriter& writer, const Structure& structure) {
  writer.Number(static_cast<uint32_t>(structure.values.size()));
  for (const RValue& value : structure.values) writer.Value(value);
}
void WriteTo(DsTextWriter& writer, const CDS_Priority& queue) {
  writer.Number(static_cast<uint32_t>(queue.items.size()));
  for (const CDS_Priority::Item& item : queue.items) {
    writer.Value(item.value);
    writer.Value(item.priority);
  }
}
void WriteTo(DsTextWriter& writer, const CGrid& grid) {
  writer.Number(static_cast<uint32_t>(grid.width));
  writer.Number(static_cast<uint32_t>(grid.height));
  for (const RValue& cell : grid.cells) writer.Value(cell);
}

bool ReadFrom(DsTextReader& reader, CDS_Map& map) {
  for (uint32_t left = reader.Count(2 * kLeastValue); left > 0 && reader.Good(); --left) {
    const RValue key = reader.Value();
    map.Replace(key, reader.Value());
  }
  return reader.AtEnd();
}
template <class Structure>
requires requires(Structure s) { s.values; }
bool ReadFrom(DsTextReader& reader, Structure& structure) {
  for (uint32_t left = reader.Count(kLeastValue); left > 0 && reader.Good(); --left)
    structure.values.push_back(reader.Value());
  return reader.AtEnd();
}
bool ReadFrom(DsTextReader& reader, CDS_Priority& queue) {
  for (uint32_t left = reader.Count(2 * kLeastValue); left > 0 && reader.Good(); --left) {
    RValue value = reader.Value();
    queue.items.push_back({std::move(value), reader.Value()});
  }
  return reader.AtEnd();
}
bool ReadFrom(DsTextReader& reader, CGrid& grid) {
  const auto width = static_cast<int32_t>(reader.Number()), height = static_cast<int32_t>(reader.Number());
  if (!reader.Good() || width < 0 || height < 0 || int64_t{width} * height > kLargestGrid) return false;
  std::vector<RValue> cells;
  for (int64_t left = int64_t{width} * height; left > 0 && reader.Good(); --left)
    cells.push_back(reader.Value());
  grid.width = width;
  grid.height = height;
  grid.cells = std::move(cells);
  return reader.AtEnd();
}

template <class T> std::unique_ptr<T> Fresh() { return std::make_unique<T>(); }
template <> std::unique_ptr<CGrid> Fresh<CGrid>() { return std::make_unique<CGrid>(0, 0); }

template <auto Table, uint32_t kKind> std::string Write(int32_t id) {
  const CLock lock(Ds_Mutex());
  const auto* structure = (Ds().*Table).Find(id);
  if (!structure) {
    Ds_ReportBadId();
    return {};
  }
  DsTextWriter writer(kKind);
  WriteTo(writer, *structure);
  return writer.Text();
}

// What was owned by the old contents goes with them.
template <class T> void Take(T& to, T& from) { to = std::move(from); }
void Take(CDS_List& to, CDS_List& from) {
  const std::vector<RValue> old = std::exchange(to.values, std::move(from.values));
  Ds_DestroyOwned(old);
}
void Take(CDS_Map& to, CDS_Map& from) {
  std::vector<RValue> old;
  for (const CDS_Map::Entry* at = to.First(); at; at = to.Next(at)) old.push_back(at->value);
  to.Clear();
  Ds_DestroyOwned(old);
  for (const CDS_Map::Entry* at = from.First(); at; at = from.Next(at)) to.Append(at->key, at->value);
}

// A text that isn't one of this kind leaves the structure as it is.
template <auto Table, class T, uint32_t kKind> void Read(int32_t id, std::string_view text, Args) {
  const CLock lock(Ds_Mutex());
  T* structure = (Ds().*Table).Find(id);
  if (!structure) return Ds_ReportBadId();
  DsTextReader reader(text, kKind);
  const std::unique_ptr<T> read = Fresh<T>();
  if (reader.Good() && ReadFrom(reader, *read))
    Take(*structure, *read);
  else
    ReportError("The text is not a written structure of this kind.");
}

// ---- ds_map_secure_* ----

// Not a seal against an expert: it tells a file that was damaged or changed by hand.
std::string Seal(std::string_view text) {
  uint32_t first = Hash_Text("map in a file"), second = Hash_Text("and back again");
  for (const char letter : text) {
    first = first * 0x01000193u ^ static_cast<unsigned char>(letter);
    second = (second ^ static_cast<unsigned char>(letter)) * 0x85EBCA6Bu + first;
  }
  return FormatText("%08X%08X", first, second);
}

bool SecureSave(int32_t id, std::string_view fileName) {
  const CLock lock(Ds_Mutex());
  const CDS_Map* map = Ds().maps.Find(id);
  if (!map) {
    Ds_ReportBadId();
    return false;
  }
  const std::string path = Files_SavePath(std::string(fileName));
  DsTextWriter writer(kTextMap);
  WriteTo(writer, *map);
  std::string why = "it lies outside the save area";
  if (!path.empty() && Directory_Make(Path_Folder(path), &why) &&
      File_WriteAll(path, Seal(writer.Text()) + writer.Text(), &why))
    return true;
  ReportError("ds_map_secure_save: \"" + std::string(fileName) + "\" can't be written: " + why, false);
  return false;
}

// A new map; -1 when there is no such file, or none that ds_map_secure_save left as it is.
int32_t SecureLoad(std::string_view fileName) {
  const CLock lock(Ds_Mutex());
  const std::string path = Files_FindForReading(std::string(fileName));
  std::string bytes;
  if (path.empty() || !File_ReadAll(path, bytes)) return -1;
  constexpr size_t kSeal = 16;
  const std::string_view text = std::string_view(bytes).substr(std::min(kSeal, bytes.size()));
  auto map = std::make_unique<CDS_Map>();
  DsTextReader reader(text, kTextMap);
  if (bytes.substr(0, kSeal) == Seal(text) && reader.Good() && ReadFrom(reader, *map))
    return Ds().maps.Create(std::move(map));
  ReportError("ds_map_secure_load: \"" + std::string(fileName) + "\" was changed or damaged", false);
  return -1;
}

constexpr BuiltinRow kBuiltins[] = {
    Builtin<&Write<&DsState::maps, kTextMap>>("ds_map_write"),
    Builtin<&Read<&DsState::maps, CDS_Map, kTextMap>>("ds_map_read"),
    Builtin<&Write<&DsState::lists, kTextList>>("ds_list_write"),
    Builtin<&Read<&DsState::lists, CDS_List, kTextList>>("ds_list_read"),
    Builtin<&Write<&DsState::stacks, kTextStack>>("ds_stack_write"),
    Builtin<&Read<&DsState::stacks, CDS_Stack, kTextStack>>("ds_stack_read"),
    Builtin<&Write<&DsState::queues, kTextQueue>>("ds_queue_write"),
    Builtin<&Read<&DsState::queues, CDS_Queue, kTextQueue>>("ds_queue_read"),
    Builtin<&Write<&DsState::priorities, kTextPriority>>("ds_priority_write"),
    Builtin<&Read<&DsState::priorities, CDS_Priority, kTextPriority>>("ds_priority_read"),
    Builtin<&Write<&DsState::grids, kTextGrid>>("ds_grid_write"),
    Builtin<&Read<&DsState::grids, CGrid, kTextGrid>>("ds_grid_read"),
    Builtin<&SecureSave>("ds_map_secure_save"),
    Builtin<&SecureLoad>("ds_map_secure_load"),
};

} // namespace

void Function_AddDsText() { Function_Add(kBuiltins); }

} // namespace vesk
