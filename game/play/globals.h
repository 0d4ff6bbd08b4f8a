#pragma once
// What outlives a room.
#include <string>

namespace vesk {

class CInstance;
struct Self;

// Sets the game globals to their start values; at start and again by the restart command.
void scr_init_globals();

// The caller's box lies wholly outside view 0.
bool outside_view(Self self);
// Turns the caller's direction nearer to `target` by at most `step` degrees, the short way.
void turn_towards_direction(Self self, double target, double step);
// The first obj_cc_dest whose text equals the name; -4 if none.
double scr_find_marker(std::string name);

} // namespace vesk
