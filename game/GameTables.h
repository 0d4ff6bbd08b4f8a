#pragma once
// The game as the runner meets it: objects, scripts, code table, variables, built-ins called by name.
#include "Files/Code/Code.h"
#include "game/EventTable.h"

#include <cstdint>
#include <span>
#include <string_view>

namespace vesk {

struct ObjectRow {
  const char* symbol; // in rules; equals the name but for the second obj_burrowkin
  const char* name;   // in the container
  int parent;         // -100 none
  int sprite, mask;   // -1 none
  int depth;
  bool visible, persistent;
  std::span<const EventRow> events;
  int firstCode; // code-table index of the first row; the others follow
};
// In index order.
std::span<const ObjectRow> GameObjects();
// False for an object that has its record but no rules yet.
bool IsBuilt(int object);

struct ScriptRow {
  const char* name;
  int code; // code-table index
};
std::span<const ScriptRow> GameScripts();

// Functions of single instances in rooms, by the names that the rooms' sources use.
struct RoomCodeRow {
  const char* name;
  int code; // code-table index
};
std::span<const RoomCodeRow> GameRoomCodes();

// Scripts first, then every object's events in index order, then the rooms' functions.
std::span<const CodeEntry> GameCodeTable();

// The game over container bytes, which must be writable and outlive the run; null bytes for a game read from
// a file. The tables behind it are made anew, so each start gets its own.
GameDescriptor MakeGameDescriptor(uint8_t* container, uint32_t size);

} // namespace vesk
