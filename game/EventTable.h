#pragma once
// What an object does: one row an event, in a table named after the object at the end of its family's file.
//
//     const EventTable obj_star_events = {
//         {ev_step, ev_step_normal, star_step},
//         {ev_collision, obj_tovin, star_meets_hero},
//     };
#include "Files/Code/Code.h"
#include "Files/Object/EventTypes.h"
#include "game/ObjectNames.h"

#include <initializer_list>

namespace vesk {

struct EventRow {
  int type;
  int subtype; // of a collision: the other object's index
  EventFunction function;
};
using EventTable = std::initializer_list<EventRow>;

// Every object of the table has one; a missing one is a link error.
#define OBJECT(symbol, ...) extern const EventTable symbol##_events;
#include "game/Objects.inc"
#undef OBJECT

} // namespace vesk
