#include "game/GameTables.h"

#include "game/AssetNames.h"
#include "game/NotBuilt.h"
#include "game/ScriptTable.h"
#include "game/Variables.h"
#include "game/editor/title.h"

#include <deque>
#include <string>
#include <vector>

namespace vesk {

namespace {

// How Objects.inc writes an absent parent, sprite or mask.
constexpr int none = -1;
constexpr int kNoParent = -100;

const char* EventName(int type) {
  switch (type) {
  case ev_create: return "Create";
  case ev_destroy: return "Destroy";
  case ev_alarm: return "Alarm";
  case ev_step: return "Step";
  case ev_collision: return "Collision";
  case ev_keyboard: return "Keyboard";
  case ev_mouse: return "Mouse";
  case ev_other: return "Other";
  case ev_draw: return "Draw";
  case ev_keypress: return "KeyPress";
  case ev_keyrelease: return "KeyRelease";
  default: return "CleanUp";
  }
}

// Functions of single instances in rooms; a room's source names them.
struct RoomFunction {
  const char* room;
  const char* name;
  EventFunction function;
};
constexpr RoomFunction kRoomFunctions[] = {{"rm_title", "become_candle", become_candle}};

std::span<const EventRow> Rows(const EventTable& table) { return {table.begin(), table.size()}; }

struct Tables {
  std::vector<ObjectRow> objects;
  std::vector<ScriptRow> scripts;
  std::vector<RoomCodeRow> roomCodes;
  std::vector<CodeEntry> code;
  std::deque<std::string> names; // a deque keeps the addresses that `code` holds

  Tables() {
    objects = {
#define OBJECT(symbol, name, parent, sprite, mask, depth, visible, persistent)                               \
  {#symbol,                                                                                                  \
   name,                                                                                                     \
   (parent) == none ? kNoParent : (parent),                                                                  \
   sprite,                                                                                                   \
   mask,                                                                                                     \
   depth,                                                                                                    \
   (visible) != 0,                                                                                           \
   (persistent) != 0,                                                                                        \
   Rows(symbol##_events),                                                                                    \
   0},
#include "game/Objects.inc"
#undef OBJECT
    };
    for (const ScriptEntry& script : ScriptTable()) {
      scripts.push_back({script.name, static_cast<int>(code.size())});
      code.push_back({Name(std::string("fbl_Script_") + script.name), {}, script.function});
    }
    for (ObjectRow& object : objects) {
      object.firstCode = static_cast<int>(code.size());
      for (const EventRow& row : object.events)
        code.push_back({Name(std::string("fbl_Object_") + object.symbol + "_" + EventName(row.type) + "_" +
                             std::to_string(row.subtype)),
                        row.function});
    }
    for (const RoomFunction& row : kRoomFunctions) {
      const int at = static_cast<int>(code.size());
      roomCodes.push_back({row.name, at});
      code.push_back(
          {Name(std::string("fbl_RoomCC_") + row.room + "_" + std::to_string(at) + "_Create"), row.function});
    }
  }
  const char* Name(std::string text) { return names.emplace_back(std::move(text)).c_str(); }
};

const Tables& GameTables() {
  static const Tables tables; // never changes
  return tables;
}

} // namespace

std::span<const ObjectRow> GameObjects() { return GameTables().objects; }
std::span<const ScriptRow> GameScripts() { return GameTables().scripts; }
std::span<const RoomCodeRow> GameRoomCodes() { return GameTables().roomCodes; }
std::span<const CodeEntry> GameCodeTable() { return GameTables().code; }

bool IsBuilt(int object) {
  const auto events = GameObjects()[static_cast<size_t>(object)].events;
  return events.size() != 1 || events[0].function != EventFunction(SayNotBuilt);
}

GameDescriptor MakeGameDescriptor(uint8_t* container, uint32_t size) {
  static std::vector<VariableEntry> variables; // ids are filled in by each load
  static std::vector<FunctionEntry> functions;
  variables = {
#define VARIABLE(name) {#name, detail::name},
#include "game/Variables.inc"
#undef VARIABLE
  };
  functions.clear();

  GameDescriptor game;
  game.container = container;
  game.containerSize = size;
  game.globalSlotCount = kVariableCount;
  game.instanceSlotCount = kVariableCount;
  game.codeTable = GameCodeTable();
  game.variableTable = variables;
  game.functionTable = functions;
  return game;
}

} // namespace vesk
