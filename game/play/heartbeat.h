#pragma once
// The heartbeat of low health: its sound, and the pulse of the blood that the HUD draws.
#include "Files/Code/Self.h"

namespace vesk {

inline constexpr double kPulseStep = 0.1; // opacity of the blood, a tick

// At end step: starts and ends with the health.
void mind_heartbeat(Self manager);
void Alarm_Pulse(Self manager);

} // namespace vesk
