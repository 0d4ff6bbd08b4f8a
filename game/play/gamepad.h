#pragma once
// The pad as the game knows it: it only presses and releases keys.
#include "Files/Code/Self.h"

namespace vesk {

// The controller's step: turns left stick and buttons of pad 0 into key events while `gamepad` is on.
void translate_gamepad(Self controller);

} // namespace vesk
