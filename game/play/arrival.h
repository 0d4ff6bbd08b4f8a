#pragma once
// How the hero comes into a section that is built, and what comes along from the last one.
#include "Files/Code/Self.h"

namespace vesk {

// The hero or who stands for him on his way in; none between a death and the restart.
Self any_hero();
void RemoveHeroes(Self manager);

// ---- steps of the room start, in their order ----

// The first entry of a level, also after a death: at the checkpoint if one was taken, behind the opening.
void enter_level(Self manager);
// At the marker that the door, pipe, note block or vine led to.
void arrive_by_warp(Self manager);
// The shoe, or what was in the hero's hands.
void bring_carried_item(Self manager);
// The blue switch and the star run on for at least half a second.
void go_on_with_timers(Self manager);

} // namespace vesk
