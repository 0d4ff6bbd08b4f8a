#pragma once
// Built-ins about rooms: requests for another one, and rooms as assets. Sizes are pixels.
#include <cstdint>
#include <string>

namespace vesk {

void Function_AddRoom();

// Requests: the running event goes on, the frame body ends at its next test. A later request replaces an
// earlier one. What can't be gone to is a fatal report.
void room_goto(int32_t room);
void room_goto_next();
void room_goto_previous();
void room_restart();
void game_end();
void game_restart();

bool room_exists(int32_t room);
std::string room_get_name(int32_t room); // "<undefined>" for an unknown one
// Neighbours in the room order; -1 at its ends and for an unknown room.
int32_t room_next(int32_t room);
int32_t room_previous(int32_t room);

// Written to the template: a running room keeps what it has until it is entered again. Unknown rooms are
// ignored.
void room_set_width(int32_t room, int32_t width);
void room_set_height(int32_t room, int32_t height);
void room_set_persistent(int32_t room, bool persistent);
void room_set_background_colour(int32_t room, uint32_t colour, bool show);
void room_set_view_enabled(int32_t room, bool enabled);
void room_set_view(int32_t room, int32_t view, bool visible, float xview, float yview, float wview,
                   float hview, int32_t xport, int32_t yport, int32_t wport, int32_t hport, int32_t hborder,
                   int32_t vborder, int32_t hspeed, int32_t vspeed, int32_t object);

// Rooms made at run time; a change shows when the room is next entered. -1, or noone, for an unknown room.
int32_t room_add(); // empty, with the values of a fresh room
int32_t room_duplicate(int32_t room);
bool room_assign(int32_t room, int32_t from); // everything but the name; false for an unknown room
int32_t room_instance_add(int32_t room, int32_t x, int32_t y, int32_t object); // the id it will have
int32_t room_tile_add(int32_t room, int32_t background, int32_t left, int32_t top, int32_t width,
                      int32_t height, float x, float y, float depth);

} // namespace vesk
