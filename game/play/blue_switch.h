#pragma once
// The blue switch: while it runs, bricks and coins change places and hidden things are there. Alarm 10, armed
// by who pressed it, ends it.
#include "Files/Code/Self.h"

namespace vesk {

void BlueSwitchOn(Self manager);
void Alarm_BlueSwitchOff(Self manager);
void SwapBricksAndCoins(Self manager);

} // namespace vesk
