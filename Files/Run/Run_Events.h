#pragma once
// Events: the gate that all of them pass, the passes that dispatch them, and the bookkeeping between passes.
// Game thread only.
#include "Files/Code/Code.h"
#include "Files/Object/EventTypes.h"
#include "Files/Object/Instance.h"
#include "Files/Object/Object.h"

#include <cstdint>
#include <vector>

namespace vesk {

// What event_type, event_number and event_object read; -1 while no event runs.
struct EventContext {
  int32_t type = -1, number = -1, object = -1;
};

struct RunState {
  EventContext event;
  int32_t performDepth = 0;
  std::vector<CInstance*> resortList;       // their place in the active list is stale
  std::vector<CInstance*> changeList;       // instance_change not yet applied to the object lists
  std::vector<CInstance*> deactivationList; // their deactivated flag changed
  std::vector<CInstance*> markedList;       // destroyed since the last removal
  std::vector<CInstance*> waking, sleeping; // scratch of the clean-up
  std::vector<int32_t> movedObjects;        // got another parent; their lists are stale
  bool automaticDrawing = true;             // draw_enable_drawevent
  bool resizePending = false;               // set by the window, consumed by the next frame body
};
RunState& Run();
void Run_ResetEvents();

// ---- performing ----

// The gate, then the nearest handler from `object` up the parents. Nothing when there is none, or when a room
// request is pending and the gate keeps the event back.
void PerformEvent(CInstance* self, CInstance* other, int32_t object, int32_t type, int32_t subtype);
// The search starts at self's own object. Nothing for a null self.
void PerformOwnEvent(CInstance* self, CInstance* other, int32_t type, int32_t subtype);
// On every live active instance, lowest depth first. Nothing while a room request is pending.
void BroadcastEvent(int32_t type, int32_t subtype);

// As rules call them; the forms without `other` hand on self.
void event_perform(CInstance* self, CInstance* other, int32_t type, int32_t number);
inline void event_perform(CInstance* self, int32_t type, int32_t number) {
  event_perform(self, self, type, number);
}
void event_perform_object(CInstance* self, CInstance* other, int32_t object, int32_t type, int32_t number);
void event_user(CInstance* self, CInstance* other, int32_t number);
inline void event_user(CInstance* self, int32_t number) { event_user(self, self, number); }
// The running event, as the parent of the object that owns the running handler has it.
void event_inherited(CInstance* self, CInstance* other);
inline void event_inherited(CInstance* self) { event_inherited(self, self); }
void Function_AddEvent();

// ---- passes ----

// Takes the next pass number; instances with a later stamp are not part of the pass.
uint64_t BeginPass();

// Visits the instances of every object that handles the event, in object order, then oldest first, without
// the ones that are destroyed, deactivated or newer than `limit`.
template <class Visit> void ForEachHandling(int32_t type, int32_t subtype, uint64_t limit, Visit visit) {
  for (const int32_t object : Objects().eventObjects[type][subtype]) {
    for (InstanceList::Node *node = Object_Find(object)->instances.head, *next; node; node = next) {
      next = node->next;
      if (node->instance->Live() && node->instance->creationStamp <= limit) visit(node->instance);
    }
  }
}
void EventPass(int32_t type, int32_t subtype);

// ---- bookkeeping ----

void NoteResort(CInstance* instance);
void NoteDeactivation(CInstance* instance);
void NoteChange(CInstance* instance);
void MarkInstance(CInstance* instance);
// Takes an instance that is about to go out of all pending lists.
void ForgetPending(CInstance* instance);

// Applies what the three lists hold. Between passes only.
void CleanUpInstances();
// Deletes all marked instances of the active list. Never inside a pass.
void RemoveMarked();
// Destroy and clean-up events once, then marks. The instance stays in all lists until RemoveMarked.
void DestroyInstance(CInstance* instance, bool runDestroyEvent = true);

} // namespace vesk
