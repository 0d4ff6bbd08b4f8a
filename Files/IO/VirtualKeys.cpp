#include "Files/IO/VirtualKeys.h"

#include "Files/IO/IO.h"
#include "Files/IO/IO_Functions.h"
#include "Files/IO/IO_Mouse.h"

namespace vesk {

namespace {

enum class Touch { Begins, Stays, Ends };

void ActAsKey(int32_t key, Touch touch) {
  if (key < 0 || key >= kKeys) return;
  const auto at = static_cast<size_t>(key);
  KeyTables& keys = Input().keys;
  if (touch == Touch::Begins) keys.pressed[at] = 1;
  if (touch == Touch::Ends) keys.released[at] = 1;
  keys.down[at] = touch != Touch::Ends;
}

void ActAsButton(int32_t button, Touch touch) {
  if (button < mb_left || button > mb_middle) return;
  const auto at = static_cast<size_t>(button - 1);
  MouseTables& mouse = Input().mice[0];
  if (touch == Touch::Begins) mouse.pressed[at] = 1;
  if (touch == Touch::Ends) mouse.released[at] = 1;
  mouse.down[at] = touch != Touch::Ends;
}

void Act(const VirtualKey& slot, Touch touch) {
  if (slot.button != 0)
    ActAsButton(slot.button, touch);
  else
    ActAsKey(slot.key, touch);
}

} // namespace

void VirtualKeys_Init() {
  InputState& input = Input();
  input.virtualKeys.assign(kVirtualKeys, VirtualKey{});
  for (size_t slot = 0; slot < input.virtualKeys.size(); ++slot)
    input.virtualKeys[slot].slot = static_cast<uint16_t>(slot);
  input.touchedKeys.fill(false);
}

void VirtualKeys_Update() {
  InputState& input = Input();
  std::array<bool, kVirtualKeys> touched{};
  for (Pointer& pointer : input.previousPointers) {
    if ((pointer.state & kPointerTouches) == 0) continue;
    const DisplayPoint point = IO_WindowToDisplay(pointer.x, pointer.y);
    for (const VirtualKey& slot : input.virtualKeys) {
      if (!slot.inUse || point.x < slot.left || point.x > slot.right || point.y < slot.top ||
          point.y > slot.bottom)
        continue;
      touched[slot.slot] = true;
    }
    pointer.state = 0;
  }
  for (const VirtualKey& slot : input.virtualKeys) {
    const bool before = input.touchedKeys[slot.slot];
    const bool now = touched[slot.slot];
    if (now) Act(slot, before ? Touch::Stays : Touch::Begins);
    if (before && !now) Act(slot, Touch::Ends);
  }
  input.touchedKeys = touched;
}

void VirtualKeys_ForgetTouches() { Input().touchedKeys.fill(false); }

int32_t virtual_key_add(int32_t x, int32_t y, int32_t width, int32_t height, int32_t key) {
  for (VirtualKey& slot : Input().virtualKeys) {
    if (slot.inUse) continue;
    const uint16_t number = slot.slot;
    slot = VirtualKey{};
    slot.slot = number;
    slot.inUse = 1;
    slot.left = x;
    slot.top = y;
    slot.right = x + width;
    slot.bottom = y + height;
    slot.key = key;
    return number;
  }
  return -1;
}

namespace {
VirtualKey* FindSlot(int32_t slot) {
  auto& slots = Input().virtualKeys;
  const bool known =
      slot >= 0 && slot < static_cast<int32_t>(slots.size()) && slots[static_cast<size_t>(slot)].inUse;
  return known ? &slots[static_cast<size_t>(slot)] : nullptr;
}
} // namespace

void virtual_key_delete(int32_t slot) {
  if (VirtualKey* found = FindSlot(slot)) found->inUse = 0;
}
void virtual_key_show(int32_t slot) {
  if (VirtualKey* found = FindSlot(slot)) found->shown = true;
}
void virtual_key_hide(int32_t slot) {
  if (VirtualKey* found = FindSlot(slot)) found->shown = false;
}

} // namespace vesk
