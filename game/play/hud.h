#pragma once
// What a running level draws over the picture: blood, bars, score, coins, P-meter.
#include "Files/Code/Self.h"

namespace vesk {

void DrawHud(Self manager);

} // namespace vesk
