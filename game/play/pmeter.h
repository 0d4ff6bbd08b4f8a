#pragma once
// The P-meter of obj_levelmanager: 0 to 5 filling, 6 and 7 the two faces of the full, blinking one.
#include "Files/Code/Self.h"

namespace vesk {

inline constexpr int kMeterSteps = 15; // steps between two samples

bool meter_is_full();

void Alarm_SampleMeter(Self manager);
void Alarm_CheckFullMeter(Self manager);
void Alarm_BlinkMeter(Self manager);

} // namespace vesk
