// The file: a head line with the game's id, then sections "[kind number]" of lines "NAME=VALUE". It is read
// and checked as a whole before anything of the running game is touched.
#include "Files/Run/SavedGame.h"

#include "Files/Base/Error.h"
#include "Files/Function/Function.h"
#include "Files/IO/IO.h"
#include "Files/Object/Object.h"
#include "Files/Run/WorldFields.h"
#include "Files/Support/Support_Data_Structures.h"
#include "Files/Support/Support_Files.h"
#include "Files/Support/ValueText.h"
#include "Platform/Files.h"

#include <charconv>
#include <map>
#include <memory>
#include <set>
#include <type_traits>

namespace vesk {

namespace {

constexpr std::string_view kHead = "vesk-save 1 ";
constexpr std::string_view kSlotPrefix = "self.";

std::string g_loadFile; // of the request in Rooms().request

// ---- writing ----

class FieldWriter {
public:
  void Section(const std::string& name) { text += "[" + name + "]\n"; }
  void operator()(std::string_view name, const RValue& value) { Line(name, ValueText_Write(value)); }
  void operator()(std::string_view name, const std::string& value) {
    Line(name, ValueText_Write(RValue(value)));
  }
  template <class T>
  requires std::is_arithmetic_v<T>
  void operator()(std::string_view name, const T& value) {
    if constexpr (std::is_floating_point_v<T>)
      Line(name, NumberText_Write(value));
    else
      Line(name, std::to_string(value));
  }
  std::string text;

private:
  void Line(std::string_view name, const std::string& value) {
    text += name;
    text += '=' + value + '\n';
  }
};

void WriteRoom(FieldWriter& write, CRoom& room) {
  write.Section("room");
  VisitFields(write, room);
  for (size_t n = 0; n < room.backgrounds.size(); ++n) {
    write.Section("background " + std::to_string(n));
    VisitFields(write, room.backgrounds[n]);
  }
  for (size_t n = 0; n < room.views.size(); ++n) {
    write.Section("view " + std::to_string(n));
    VisitFields(write, room.views[n]);
  }
  for (Tile tile : room.tiles) {
    if (tile.id < 0) continue;
    write.Section("tile " + std::to_string(tile.id));
    VisitFields(write, tile);
  }
  for (CInstance* head : {room.active.head, room.inactive.head}) {
    for (CInstance* it = head; it; it = it->next) {
      if (it->marked) continue;
      write.Section("instance " + std::to_string(it->id));
      VisitFields(write, *it);
      VisitSlots(write, *it);
    }
  }
}

// The order in which instances entered the lists of objects: those of the objects without a parent hold all.
void WriteOrder(FieldWriter& write) {
  write.Section("order");
  for (const auto& object : Objects().table) {
    if (!object || object->parent) continue;
    for (InstanceList::Node* node = object->instancesRecursive.head; node; node = node->next)
      write("id", node->instance->id);
  }
}

template <class Table, class Write>
void WriteTable(FieldWriter& write, const char* kind, Table& table, Write each) {
  for (size_t id = 0; id < table.Slots().size(); ++id) {
    if (!table.Slots()[id]) continue;
    write.Section(kind + (" " + std::to_string(id)));
    each(*table.Slots()[id]);
  }
}

void WriteStructures(FieldWriter& write) {
  DsState& ds = Ds();
  const auto values = [&write](const auto& structure) {
    for (const RValue& value : structure.values) write("v", value);
  };
  WriteTable(write, "map", ds.maps, [&write](const CDS_Map& map) {
    for (const CDS_Map::Entry* entry = map.First(); entry; entry = map.Next(entry)) {
      write("k", entry->key);
      write("v", entry->value);
    }
  });
  WriteTable(write, "list", ds.lists, values);
  WriteTable(write, "stack", ds.stacks, values);
  WriteTable(write, "queue", ds.queues, values);
  WriteTable(write, "grid", ds.grids, [&write](const CGrid& grid) {
    write("width", grid.width);
    write("height", grid.height);
    for (const RValue& value : grid.cells) write("v", value);
  });
  WriteTable(write, "priority", ds.priorities, [&write](const CDS_Priority& queue) {
    for (const CDS_Priority::Item& item : queue.items) {
      write("v", item.value);
      write("p", item.priority);
    }
  });
}

// ---- reading ----

struct Section {
  std::string kind;
  int32_t number = 0;
  std::vector<std::pair<std::string, std::string>> lines;
};

// Takes fields from a section; one that it lacks stays as it is.
class FieldReader {
public:
  FieldReader(const Section& section, std::string& problem) : m_section(section), m_problem(problem) {}
  template <class T> void operator()(std::string_view name, T& field) {
    // Mostly the next line, as the lists of fields are in order.
    for (size_t step = 0; step < m_section.lines.size(); ++step) {
      const size_t at = (m_next + step) % m_section.lines.size();
      if (m_section.lines[at].first != name) continue;
      m_next = at + 1;
      Check(Read(m_section.lines[at].second, field), name);
      return;
    }
  }
  void Check(bool good, std::string_view name) {
    if (!good && m_problem.empty())
      m_problem = "[" + m_section.kind + " " + std::to_string(m_section.number) + "]: bad value of \"" +
                  std::string(name) + "\"";
  }

private:
  static bool Read(const std::string& text, std::string& field) {
    RValue value;
    const bool good = ValueText_Read(text, value) && value.IsString();
    if (good) field = value.Text();
    return good;
  }
  static bool Read(const std::string& text, float& field) { return NumberText_Read(text, field); }
  static bool Read(const std::string& text, double& field) { return NumberText_Read(text, field); }
  static bool Read(const std::string& text, bool& field) {
    field = text == "1";
    return field || text == "0";
  }
  template <class T>
  requires std::is_integral_v<T>
  static bool Read(const std::string& text, T& field) {
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), field);
    return error == std::errc() && end == text.data() + text.size();
  }

  const Section& m_section;
  std::string& m_problem;
  size_t m_next = 0;
};

// All that a file says, built beside the running game.
struct SavedWorld {
  std::unique_ptr<CRoom> room;
  std::vector<std::unique_ptr<CInstance>> instances; // active ones in list order, then inactive ones
  std::vector<int32_t> order;                        // ids, as they enter the lists of objects
  std::vector<std::pair<int32_t, RValue>> globals;   // slot and value
  GameVariables game = Game();
  double epsilon = g_epsilon;
  std::array<int32_t, 256> keys = Input().keyMap;
  RandomState random = Random();
  int32_t lastInstanceId = 0, lastTileId = 0;
  std::map<int32_t, std::unique_ptr<CDS_Map>> maps;
  std::map<int32_t, std::unique_ptr<CDS_List>> lists;
  std::map<int32_t, std::unique_ptr<CDS_Stack>> stacks;
  std::map<int32_t, std::unique_ptr<CDS_Queue>> queues;
  std::map<int32_t, std::unique_ptr<CGrid>> grids;
  std::map<int32_t, std::unique_ptr<CDS_Priority>> priorities;
};

class WorldReader {
public:
  // "" or what is wrong with the text.
  std::string Read(std::string_view text) {
    Split(text);
    for (const Section& section : m_sections)
      if (m_problem.empty()) Take(section);
    if (m_problem.empty() && !m_world.room) m_problem = "it has no room";
    return m_problem;
  }
  SavedWorld& World() { return m_world; }

private:
  void Split(std::string_view text);
  void Take(const Section& section);
  void TakeRoom(const Section& section);
  void TakeInstance(const Section& section);
  void TakeTile(const Section& section);
  void TakeStructure(const Section& section);
  template <class Store> void TakeSlots(const Section& section, Store store);
  std::vector<RValue> Values(const Section& section, std::string_view name);

  std::vector<Section> m_sections;
  SavedWorld m_world;
  std::set<int32_t> m_instanceIds, m_tileIds;
  std::string m_problem;
};

void WorldReader::Split(std::string_view text) {
  const std::string head = std::string(kHead) + std::to_string(Game().gameId) + "\n";
  if (!text.starts_with(kHead)) {
    m_problem = "it is no saved game";
    return;
  }
  if (!text.starts_with(head)) {
    m_problem = "another game saved it";
    return;
  }
  int64_t number = 1;
  for (text.remove_prefix(head.size()); !text.empty() && m_problem.empty();) {
    ++number;
    const size_t end = text.find('\n');
    const std::string_view line = text.substr(0, end);
    text.remove_prefix(end == std::string_view::npos ? text.size() : end + 1);
    const size_t equal = line.find('=');
    if (line.starts_with('[') && line.ends_with(']')) {
      const std::string_view name = line.substr(1, line.size() - 2);
      const size_t blank = name.find(' ');
      Section& section = m_sections.emplace_back();
      section.kind = name.substr(0, blank);
      if (blank == std::string_view::npos) continue;
      const char* digits = name.data() + blank + 1;
      if (std::from_chars(digits, name.data() + name.size(), section.number).ec == std::errc()) continue;
    } else if (equal != std::string_view::npos && !m_sections.empty()) {
      m_sections.back().lines.emplace_back(line.substr(0, equal), line.substr(equal + 1));
      continue;
    }
    m_problem = "line " + std::to_string(number) + " says nothing known";
  }
}

void WorldReader::TakeRoom(const Section& section) {
  FieldReader read(section, m_problem);
  int32_t index = -1;
  read("room", index);
  const CRoom* source = Room_Find(index);
  if (!source) {
    m_problem = "there is no room " + std::to_string(index);
    return;
  }
  m_world.room = Room_CopyWithoutContents(*source);
  VisitFields(read, *m_world.room);
}

template <class Store> void WorldReader::TakeSlots(const Section& section, Store store) {
  for (const auto& [name, text] : section.lines) {
    if (!name.starts_with(kSlotPrefix)) continue;
    const int32_t slot = Variable_SlotOf(name.substr(kSlotPrefix.size()));
    RValue value;
    if (slot < 0)
      m_problem = "there is no variable \"" + name.substr(kSlotPrefix.size()) + "\"";
    else
      FieldReader(section, m_problem).Check(ValueText_Read(text, value), name);
    if (!m_problem.empty()) return;
    store(slot, value);
  }
}

void WorldReader::TakeInstance(const Section& section) {
  FieldReader read(section, m_problem);
  int32_t index = -1;
  read("object_index", index);
  CObjectFb* object = Object_Find(index);
  if (!object || section.number < kFirstInstanceId || !m_instanceIds.insert(section.number).second) {
    m_problem = "[instance " + std::to_string(section.number) +
                "]: " + (object ? "a bad id" : "there is no object " + std::to_string(index));
    return;
  }
  auto instance = std::make_unique<CInstance>(object, 0.0f, 0.0f, section.number, Code().instanceSlotCount);
  VisitFields(read, static_cast<InstanceState&>(*instance));
  instance->marked = false;
  instance->DirtyBounds();
  TakeSlots(section, [&instance](int32_t slot, const RValue& value) { instance->GetSlot(slot) = value; });
  m_world.instances.push_back(std::move(instance));
}

void WorldReader::TakeTile(const Section& section) {
  if (!m_world.room || section.number < 0 || !m_tileIds.insert(section.number).second) {
    m_problem = "[tile " + std::to_string(section.number) + "]: a bad id";
    return;
  }
  Tile tile;
  tile.id = section.number;
  FieldReader read(section, m_problem);
  VisitFields(read, tile);
  m_world.room->tiles.Add(tile);
}

std::vector<RValue> WorldReader::Values(const Section& section, std::string_view name) {
  std::vector<RValue> values;
  for (const auto& [line, text] : section.lines) {
    if (line != name) continue;
    FieldReader(section, m_problem).Check(ValueText_Read(text, values.emplace_back()), name);
  }
  return values;
}

// A container that is filled with the values "v" of a section.
template <class T> std::unique_ptr<T> Filled(const std::vector<RValue>& values) {
  auto structure = std::make_unique<T>();
  structure->values.assign(values.begin(), values.end());
  return structure;
}

void WorldReader::TakeStructure(const Section& section) {
  constexpr int32_t kMostStructures = 1000000, kMostCells = 100000000;
  const std::vector<RValue> values = Values(section, "v");
  const int32_t id = section.number;
  bool good = id >= 0 && id < kMostStructures;
  if (section.kind == "list") {
    m_world.lists[id] = Filled<CDS_List>(values);
  } else if (section.kind == "stack") {
    m_world.stacks[id] = Filled<CDS_Stack>(values);
  } else if (section.kind == "queue") {
    m_world.queues[id] = Filled<CDS_Queue>(values);
  } else if (section.kind == "map") {
    const std::vector<RValue> keys = Values(section, "k");
    auto map = std::make_unique<CDS_Map>();
    good = good && keys.size() == values.size();
    for (size_t at = 0; good && at < keys.size(); ++at) good = map->Add(keys[at], values[at]);
    m_world.maps[id] = std::move(map);
  } else if (section.kind == "priority") {
    const std::vector<RValue> priorities = Values(section, "p");
    auto queue = std::make_unique<CDS_Priority>();
    good = good && priorities.size() == values.size();
    for (size_t at = 0; good && at < values.size(); ++at)
      queue->items.push_back({values[at], priorities[at]});
    m_world.priorities[id] = std::move(queue);
  } else {
    FieldReader read(section, m_problem);
    int32_t width = -1, height = -1;
    read("width", width);
    read("height", height);
    good = good && width >= 0 && height >= 0 && int64_t{width} * height <= kMostCells &&
           static_cast<size_t>(width) * static_cast<size_t>(height) == values.size();
    if (!good) width = height = 0;
    auto grid = std::make_unique<CGrid>(width, height);
    if (good) grid->cells = values;
    m_world.grids[id] = std::move(grid);
  }
  if (!good && m_problem.empty()) m_problem = "[" + section.kind + " " + std::to_string(id) + "]: it is torn";
}

void WorldReader::Take(const Section& section) {
  FieldReader read(section, m_problem);
  const auto slot = static_cast<size_t>(section.number);
  if (section.kind == "room") {
    TakeRoom(section);
  } else if (section.kind == "background" && m_world.room && slot < kRoomSlots) {
    VisitFields(read, m_world.room->backgrounds[slot]);
  } else if (section.kind == "view" && m_world.room && slot < kRoomSlots) {
    VisitFields(read, m_world.room->views[slot]);
  } else if (section.kind == "tile") {
    TakeTile(section);
  } else if (section.kind == "instance") {
    TakeInstance(section);
  } else if (section.kind == "order") {
    for (const RValue& id : Values(section, "id")) m_world.order.push_back(ValueAsInt32(id));
  } else if (section.kind == "global") {
    TakeSlots(section, [this](int32_t at, const RValue& value) { m_world.globals.emplace_back(at, value); });
  } else if (section.kind == "game") {
    VisitFields(read, m_world.game);
  } else if (section.kind == "keys") {
    KeyMap keys{m_world.keys};
    VisitFields(read, keys);
  } else if (section.kind == "random") {
    VisitFields(read, m_world.random);
    read.Check(m_world.random.index < std::size(m_world.random.words), "index");
  } else if (section.kind == "run") {
    RunNumbers numbers{m_world.lastInstanceId, m_world.lastTileId, m_world.epsilon};
    VisitFields(read, numbers);
  } else {
    constexpr std::string_view kStructures[] = {"map", "list", "stack", "queue", "grid", "priority"};
    if (std::find(std::begin(kStructures), std::end(kStructures), section.kind) == std::end(kStructures))
      m_problem = "a section [" + section.kind + "] is not known";
    else
      TakeStructure(section);
  }
}

// ---- taking the place of the running game ----

template <class T> void Replace(DsTable<T>& table, std::map<int32_t, std::unique_ptr<T>>& saved) {
  std::vector<std::unique_ptr<T>> slots(saved.empty() ? 0 : static_cast<size_t>(saved.rbegin()->first) + 1);
  for (auto& [id, structure] : saved) slots[static_cast<size_t>(id)] = std::move(structure);
  table.Assign(std::move(slots));
}

void Enter(SavedWorld& world) {
  RoomState& rooms = Rooms();
  CRoom& room = *world.room;
  for (auto& owned : world.instances) {
    CInstance* it = owned.release();
    rooms.instances.Set(it->id) = it;
    rooms.nextInstanceId = std::max(rooms.nextInstanceId, it->id);
    if (it->deactivated)
      room.inactive.Append(it);
    else
      room.active.InsertSorted(it);
  }
  for (const int32_t id : world.order)
    if (CInstance* it = Instance_Find(id); it && !it->deactivated) it->object->AddInstance(it);
  for (CInstance* it = room.active.head; it; it = it->next)
    it->object->AddInstance(it); // what the order leaves out; nothing for the others
}

void Replace(SavedWorld& world) {
  RoomState& rooms = Rooms();
  rooms.carried.clear();
  rooms.instances.Clear();
  rooms.current = nullptr;
  rooms.running.clear(); // no event runs
  rooms.running.resize(rooms.templates.size());
  rooms.nextInstanceId = world.lastInstanceId;
  rooms.nextTileId = world.lastTileId;
  Enter(world);
  for (const Tile& tile : world.room->tiles) rooms.nextTileId = std::max(rooms.nextTileId, tile.id);
  const auto index = static_cast<size_t>(world.room->index);
  rooms.currentIndex = world.room->index;
  rooms.running[index] = std::move(world.room);
  rooms.current = rooms.running[index].get();

  GlobalObject_Create(GlobalObject()->slotCount);
  for (const auto& [slot, value] : world.globals) GlobalObject()->GetSlot(slot) = value;
  Game() = world.game;
  g_epsilon = world.epsilon;
  Input().keyMap = world.keys;
  Random() = world.random;
  DsState& ds = Ds();
  Replace(ds.maps, world.maps);
  Replace(ds.lists, world.lists);
  Replace(ds.stacks, world.stacks);
  Replace(ds.queues, world.queues);
  Replace(ds.grids, world.grids);
  Replace(ds.priorities, world.priorities);
}

} // namespace

void game_save(std::string_view file) {
  CRoom* room = CurrentRoom();
  const std::string path = Files_SavePath(std::string(file));
  if (!room || path.empty())
    return ReportError("game_save: \"%s\" is no place for a saved game", std::string(file).c_str());
  FieldWriter write;
  write.text = std::string(kHead) + std::to_string(Game().gameId) + "\n";
  WriteRoom(write, *room);
  WriteOrder(write);
  write.Section("global");
  VisitSlots(write, *GlobalObject());
  write.Section("game");
  VisitFields(write, Game());
  write.Section("keys");
  KeyMap keys{Input().keyMap};
  VisitFields(write, keys);
  write.Section("random");
  VisitFields(write, Random());
  write.Section("run");
  RunNumbers numbers = NumbersOfRun();
  VisitFields(write, numbers);
  WriteStructures(write);
  std::string why;
  if (!File_WriteAll(path, write.text, &why)) ReportError("game_save: %s", why.c_str());
}

void game_load(std::string_view file) {
  g_loadFile = file;
  Rooms().request = RoomRequestLoadGame;
}

void SavedGame_Load() {
  const std::string path = Files_FindForReading(g_loadFile);
  std::string text, why;
  if (path.empty() || !File_ReadAll(path, text, &why))
    return ReportError("game_load: \"%s\" can't be read%s%s", g_loadFile.c_str(), why.empty() ? "" : ": ",
                       why.c_str());
  WorldReader reader;
  why = reader.Read(text);
  if (why.empty())
    Replace(reader.World());
  else
    ReportError("game_load: \"%s\" can't be taken: %s", g_loadFile.c_str(), why.c_str());
}

void SavedGame_Reset() { g_loadFile.clear(); }

void Function_AddSavedGame() {
  static constexpr BuiltinRow kBuiltins[] = {
      Builtin<&game_save>("game_save"),
      Builtin<&game_load>("game_load"),
  };
  Function_Add(kBuiltins);
}

} // namespace vesk
