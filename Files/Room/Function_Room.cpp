#include "Files/Room/Function_Room.h"

#include "Files/Base/Error.h"
#include "Files/Function/Function.h"
#include "Files/Object/Instance.h"
#include "Files/Room/Room.h"

#include <algorithm>
#include <utility>

namespace vesk {

namespace {

void RefuseRequest(const std::string& text) {
  ReportError(std::string_view(text), true);
  Rooms().request = RoomRequestAbortGame;
}

// The room `steps` further in the order; -1 beyond its ends or for a room that isn't in it.
int32_t Neighbour(int32_t room, int32_t steps) {
  const auto& order = Rooms().order;
  const auto found = std::find(order.begin(), order.end(), room);
  if (found == order.end()) return -1;
  const auto at = found - order.begin() + steps;
  return at >= 0 && at < static_cast<std::ptrdiff_t>(order.size()) ? order[static_cast<size_t>(at)] : -1;
}

} // namespace

// ---- requests ----

void room_goto(int32_t room) {
  if (Room_Find(room))
    Rooms().request = room;
  else
    RefuseRequest("Unexisting room number: " + std::to_string(room));
}

void room_goto_next() {
  const int32_t next = Neighbour(Rooms().currentIndex, 1);
  if (next >= 0)
    Rooms().request = next;
  else
    RefuseRequest("Moving to next room after the last room.");
}

void room_goto_previous() {
  const int32_t previous = Neighbour(Rooms().currentIndex, -1);
  if (previous >= 0)
    Rooms().request = previous;
  else
    RefuseRequest("Moving to previous room before the first room.");
}

void room_restart() { Rooms().request = Rooms().currentIndex; }
void game_end() { Rooms().request = RoomRequestEndGame; }
void game_restart() { Rooms().request = RoomRequestRestartGame; }

// ---- rooms as assets ----

bool room_exists(int32_t room) { return Room_Find(room) != nullptr; }
std::string room_get_name(int32_t room) {
  const CRoom* found = Room_Find(room);
  return found ? found->name : "<undefined>";
}
int32_t room_next(int32_t room) { return Room_Find(room) ? Neighbour(room, 1) : -1; }
int32_t room_previous(int32_t room) { return Room_Find(room) ? Neighbour(room, -1) : -1; }

void room_set_width(int32_t room, int32_t width) {
  if (CRoom* found = Room_Find(room)) found->width = width;
}
void room_set_height(int32_t room, int32_t height) {
  if (CRoom* found = Room_Find(room)) found->height = height;
}
void room_set_persistent(int32_t room, bool persistent) {
  if (CRoom* found = Room_Find(room)) found->persistent = persistent;
}
void room_set_background_colour(int32_t room, uint32_t colour, bool show) {
  if (CRoom* found = Room_Find(room)) {
    found->colour = colour & 0xFFFFFF;
    found->showColour = show;
  }
}
void room_set_view_enabled(int32_t room, bool enabled) {
  if (CRoom* found = Room_Find(room)) found->viewsEnabled = enabled;
}
void room_set_view(int32_t room, int32_t index, bool visible, float xview, float yview, float wview,
                   float hview, int32_t xport, int32_t yport, int32_t wport, int32_t hport, int32_t hborder,
                   int32_t vborder, int32_t hspeed, int32_t vspeed, int32_t object) {
  CRoom* found = Room_Find(room);
  if (!found || index < 0 || index >= kRoomSlots) return;
  ViewSlot view;
  view.visible = visible;
  view.xview = xview;
  view.yview = yview;
  view.wview = wview;
  view.hview = hview;
  view.xport = xport;
  view.yport = yport;
  view.wport = wport;
  view.hport = hport;
  view.hborder = hborder;
  view.vborder = vborder;
  view.hspeed = hspeed;
  view.vspeed = vspeed;
  view.object = object;
  found->views[static_cast<size_t>(index)] = view;
}

// ---- rooms made at run time ----

namespace {

// A template with everything of the other but its name and place.
std::unique_ptr<CRoom> CopyTemplate(const CRoom& from, int32_t index, std::string name) {
  std::unique_ptr<CRoom> room = Room_CopyWithoutContents(from);
  room->index = index;
  room->name = std::move(name);
  room->instanceTemplates = from.instanceTemplates;
  room->tileTemplates = from.tileTemplates;
  return room;
}

int32_t AddTemplate(const CRoom& from) {
  auto& templates = Rooms().templates;
  const auto index = static_cast<int32_t>(templates.size());
  templates.push_back(CopyTemplate(from, index, "__newroom" + std::to_string(index)));
  return index;
}

} // namespace

int32_t room_add() { return AddTemplate(CRoom()); }

int32_t room_duplicate(int32_t room) {
  const CRoom* source = Room_Find(room);
  return source ? AddTemplate(*source) : -1;
}

bool room_assign(int32_t room, int32_t from) {
  const CRoom *target = Room_Find(room), *source = Room_Find(from);
  if (!target || !source) return false;
  Rooms().templates[static_cast<size_t>(room)] = CopyTemplate(*source, room, target->name);
  return true;
}

int32_t room_instance_add(int32_t room, int32_t x, int32_t y, int32_t object) {
  CRoom* found = Room_Find(room);
  if (!found) return noone;
  InstanceTemplate instance;
  instance.x = x;
  instance.y = y;
  instance.object = object;
  instance.id = ++Rooms().nextInstanceId;
  found->instanceTemplates.push_back(std::move(instance));
  return found->instanceTemplates.back().id;
}

int32_t room_tile_add(int32_t room, int32_t background, int32_t left, int32_t top, int32_t width,
                      int32_t height, float x, float y, float depth) {
  CRoom* found = Room_Find(room);
  if (!found) return -1;
  Tile tile;
  tile.background = background;
  tile.left = left;
  tile.top = top;
  tile.width = width;
  tile.height = height;
  tile.x = x;
  tile.y = y;
  tile.depth = depth;
  tile.id = ++Rooms().nextTileId;
  found->tileTemplates.push_back(tile);
  return tile.id;
}

void Function_AddRoom() {
  static constexpr BuiltinRow kBuiltins[] = {
      Builtin<&room_goto>("room_goto"),
      Builtin<&room_goto_next>("room_goto_next"),
      Builtin<&room_goto_previous>("room_goto_previous"),
      Builtin<&room_restart>("room_restart"),
      Builtin<&game_end>("game_end"),
      Builtin<&game_restart>("game_restart"),
      Builtin<&room_exists>("room_exists"),
      Builtin<&room_get_name>("room_get_name"),
      Builtin<&room_next>("room_next"),
      Builtin<&room_previous>("room_previous"),
      Builtin<&room_set_width>("room_set_width"),
      Builtin<&room_set_height>("room_set_height"),
      Builtin<&room_set_persistent>("room_set_persistent"),
      Builtin<&room_set_background_colour>("room_set_background_colour"),
      Builtin<&room_set_background_colour>("room_set_background_color"),
      Builtin<&room_set_view_enabled>("room_set_view_enabled"),
      Builtin<&room_set_view>("room_set_view"),
      Builtin<&room_add>("room_add"),
      Builtin<&room_duplicate>("room_duplicate"),
      Builtin<&room_assign>("room_assign"),
      Builtin<&room_instance_add>("room_instance_add"),
      Builtin<&room_tile_add>("room_tile_add"),
  };
  Function_Add(kBuiltins);
}

} // namespace vesk
