#pragma once
// The pad as the game knows it: it only presses and releases keys.
#include "Files/Code/Self.h"

namespace vesk {

// The controller's step: turns left stick and buttons of pad 0 into key events while `gamepad` is on.
void translate_gamepad(Self controller);
// At a room start: a frame that asks for another room runs no step, and a release in it would leave its key
// held.
void catch_up_with_gamepad(Self controller);

} // namespace vesk
