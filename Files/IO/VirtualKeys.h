#pragma once
// Keys drawn on the screen: a rectangle that acts as a key or button while a pointer touches it.

namespace vesk {

void VirtualKeys_Init();
// Once a frame, behind the gamepads.
void VirtualKeys_Update();

// No key counts as touched before: a room ends.
void VirtualKeys_ForgetTouches();

} // namespace vesk
