// The gate that all events pass, performing, broadcasts and passes.
#include "Files/Run/Run_Events.h"

#include "Files/Base/Error.h"
#include "Files/Function/Function.h"
#include "Files/Room/Room.h"
#include "Files/Run/Event_Name.h"

#include <string>

namespace vesk {

namespace {

constexpr int32_t kDeepestPerform = 32;

// Never destroyed: instances take themselves out of its lists when they go.
RunState& g_run = *new RunState;

bool GateIsOpen(const CInstance& self, int32_t type) {
  if (type == ev_cleanup) return !Error().inError;
  if (Rooms().request == kNoRoomRequest) return true;
  const CRoom* room = CurrentRoom();
  if (!self.persistent && !(room && room->persistent)) return false;
  return type == ev_create || type == ev_destroy || type == ev_alarm || type == ev_other ||
         type == ev_pre_create;
}

} // namespace

RunState& Run() { return g_run; }

void Run_ResetEvents() {
  RunState& run = g_run;
  for (auto* list : {&run.resortList, &run.changeList, &run.deactivationList, &run.markedList})
    while (!list->empty()) ForgetPending(list->back());
  run = RunState();
}

void PerformEvent(CInstance* self, CInstance* other, int32_t object, int32_t type, int32_t subtype) {
  if (!GateIsOpen(*self, type)) return;
  const Handler handler = FindHandler(object, type, subtype);
  if (!handler.event) return;
  if (g_run.performDepth >= kDeepestPerform) {
    ReportError(
        std::string_view("PerformEvent recursion depth failure - check for infinite loops, check objects "
                         "for parenting"),
        true);
    return;
  }
  ++g_run.performDepth;
  const EventContext outer = g_run.event;
  g_run.event = {type, subtype, handler.owner};
  if (vesk::Code().trace == CodeTrace::kExtended)
    Code_Trace(Event_Name(type, subtype) + " of " + Object_Name(self->objectIndex) + " " +
               std::to_string(self->id));
  RValue unused;
  Code_Execute(self, other, handler.event->code.get(), unused);
  g_run.event = outer;
  --g_run.performDepth;
}

void PerformOwnEvent(CInstance* self, CInstance* other, int32_t type, int32_t subtype) {
  if (self) PerformEvent(self, other, self->objectIndex, type, subtype);
}

void BroadcastEvent(int32_t type, int32_t subtype) {
  const CRoom* room = CurrentRoom();
  if (!room || Rooms().request != kNoRoomRequest) return;
  for (CInstance *it = room->active.head, *next; it; it = next) {
    next = it->next;
    if (it->Live()) PerformOwnEvent(it, it, type, subtype);
  }
}

void event_perform(CInstance* self, CInstance* other, int32_t type, int32_t number) {
  PerformOwnEvent(self, other, type, number);
}

void event_perform_object(CInstance* self, CInstance* other, int32_t object, int32_t type, int32_t number) {
  if (self) PerformEvent(self, other, object, type, number);
}

void event_user(CInstance* self, CInstance* other, int32_t number) {
  event_perform(self, other, ev_other, ev_user(number));
}

void event_inherited(CInstance* self, CInstance* other) {
  const CObjectFb* owner = Object_Find(g_run.event.object);
  if (self && owner && owner->parent)
    PerformEvent(self, other, owner->parent->objectIndex, g_run.event.type, g_run.event.number);
}

uint64_t BeginPass() { return Rooms().passCounter++; }

void EventPass(int32_t type, int32_t subtype) {
  ForEachHandling(type, subtype, BeginPass(), [=](CInstance* it) { PerformOwnEvent(it, it, type, subtype); });
}

void Function_AddEvent() {
  constexpr auto perform = static_cast<void (*)(CInstance*, CInstance*, int32_t, int32_t)>(&event_perform);
  constexpr auto user = static_cast<void (*)(CInstance*, CInstance*, int32_t)>(&event_user);
  constexpr auto inherited = static_cast<void (*)(CInstance*, CInstance*)>(&event_inherited);
  static constexpr BuiltinRow kBuiltins[] = {
      Builtin<perform>("event_perform"),
      Builtin<&event_perform_object>("event_perform_object"),
      Builtin<user>("event_user"),
      Builtin<inherited>("event_inherited"),
  };
  Function_Add(kBuiltins);
}

} // namespace vesk
