#pragma once
// The passes of a step that do more than walk one list. Called by RunFrameBody in its order.
#include "Files/Object/Instance.h"

namespace vesk {

// Fetches what the loops over all instances read of the one that comes next.
inline void Prefetch(const CInstance* next) {
  if (!next) return;
  const auto* bytes = reinterpret_cast<const char*>(next);
  __builtin_prefetch(bytes);
  __builtin_prefetch(bytes + 64);
}

void AlarmPass();
void KeyboardPass();
void MousePass();
void MotionPass();
void OutsidePass();
void CollisionPass();
void AsyncPass();

} // namespace vesk
