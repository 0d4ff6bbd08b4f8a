// The lists that make dispatch cheap: which objects handle an event, and which pairs of objects can meet.
#include "Files/Object/Object.h"

#include <algorithm>

namespace vesk {

namespace {

// How many subtypes of a type are ever dispatched through lists; 0 for types that use none.
constexpr int kListedSubtypes[kEventTypeCount] = {
    1,   // create
    1,   // destroy
    13,  // alarm
    17,  // step
    0,   // collision: pairs
    129, // keyboard
    129, // mouse
    129, // other
    78,  // draw
    129, // key press
    129, // key release
    0,   // trigger
    0,   // clean-up
    129, // gesture
    1,   // pre-create
};

void ResolveParents() {
  for (const auto& object : Objects().table)
    if (object) object->parent = Object_Find(object->parentIndex);
  // A chain that comes back to itself would never end: its last link is cut.
  for (const auto& object : Objects().table) {
    if (!object) continue;
    size_t steps = 0;
    for (CObjectFb* at = object.get(); at->parent; at = at->parent)
      if (++steps > Objects().table.size() || at->parent == object.get()) {
        at->parent = nullptr;
        break;
      }
  }
}

void ListHandlers(const CObjectFb& object) {
  ObjectState& state = Objects();
  for (const CObjectFb* from = &object; from; from = from->parent) {
    for (int type = 0; type < kEventTypeCount; ++type) {
      const auto& events = from->eventTable[static_cast<size_t>(type)];
      const size_t end = std::min<size_t>(events.size(), static_cast<size_t>(kListedSubtypes[type]));
      for (size_t subtype = 0; subtype < end; ++subtype) {
        auto& list = state.eventObjects[type][subtype];
        if (events[subtype] && (list.empty() || list.back() != object.objectIndex))
          list.push_back(object.objectIndex);
      }
    }
  }
}

// For each object, in index order, the subtypes of collision events that it or an ancestor handles.
void ListCollisionPairs() {
  ObjectState& state = Objects();
  const size_t count = state.table.size();
  std::vector<bool> listed(count * count), handled(count);
  for (const auto& a : state.table) {
    if (!a) continue;
    handled.assign(count, false);
    bool any = false;
    for (const CObjectFb* from = a.get(); from; from = from->parent) {
      const auto& events = from->eventTable[ev_collision];
      for (size_t subtype = 0; subtype < std::min(events.size(), count); ++subtype)
        if (events[subtype]) any = handled[subtype] = true;
    }
    if (!any) continue;
    for (const auto& b : state.table) {
      if (!b) continue;
      const CObjectFb* met = b.get();
      while (met && !handled[static_cast<size_t>(met->objectIndex)]) met = met->parent;
      if (!met) continue;
      const auto [low, high] = std::minmax(a->objectIndex, b->objectIndex);
      auto seen = listed[static_cast<size_t>(low) * count + static_cast<size_t>(high)];
      if (seen) continue;
      seen = true;
      a->flags |= CObjectFb::kHasCollisions;
      b->flags |= CObjectFb::kHasCollisions;
      state.collisionPairs.push_back({a->objectIndex, b->objectIndex, a.get(), b.get(), true});
    }
  }
}

} // namespace

void BuildEventLists() {
  ObjectState& state = Objects();
  ResolveParents();
  for (auto& lists : state.eventObjects)
    for (auto& list : lists) list.clear();
  state.collisionPairs.clear();
  for (const auto& object : state.table) {
    if (!object) continue;
    object->flags &= ~static_cast<uint32_t>(CObjectFb::kHasCollisions);
    ListHandlers(*object);
    object->handlesAnimationEnd = object->HasHandler(ev_other, ev_animation_end);
    object->handlesDraw = object->HasHandler(ev_draw, ev_draw_normal);
  }
  ListCollisionPairs();
}

} // namespace vesk
