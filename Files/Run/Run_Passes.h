#pragma once
// The passes of a step that do more than walk one list. Called by RunFrameBody in its order.

namespace vesk {

void AlarmPass();
void KeyboardPass();
void MousePass();
void MotionPass();
void OutsidePass();
void CollisionPass();
void AsyncPass();

} // namespace vesk
