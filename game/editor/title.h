#pragma once
// What instances of the title room run after their Create.
#include "Files/Code/Self.h"

namespace vesk {

// The torch over the tall candlestick burns as a candle.
void become_candle(Self torch);

} // namespace vesk
