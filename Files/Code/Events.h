#pragma once
// Running events from inside events, as rules write it.
#include "Files/Code/Self.h"
#include "Files/Run/Run_Events.h"

namespace vesk {

// The running event as the parent of the object that has the running handler knows it; nothing without one.
inline void event_inherited(Self self, Self other) { event_inherited(self.instance, other.instance); }
inline void event_inherited(Self self) { event_inherited(self, self); }
// User event `number`, 0 to 15, of self's own object.
inline void event_user(Self self, int32_t number, Self other) {
  event_user(self.instance, other.instance, number);
}
inline void event_user(Self self, int32_t number) { event_user(self, number, self); }
inline void event_perform(Self self, int32_t type, int32_t number, Self other) {
  event_perform(self.instance, other.instance, type, number);
}
inline void event_perform(Self self, int32_t type, int32_t number) {
  event_perform(self, type, number, self);
}
// The search starts at `object`.
inline void event_perform_object(Self self, int32_t object, int32_t type, int32_t number, Self other) {
  event_perform_object(self.instance, other.instance, object, type, number);
}
inline void event_perform_object(Self self, int32_t object, int32_t type, int32_t number) {
  event_perform_object(self, object, type, number, self);
}

} // namespace vesk
