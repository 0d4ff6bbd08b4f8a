#pragma once
// The camera of a running section, and what hangs on the view that it leads. In the order of the end step.
#include "Files/Code/Self.h"

namespace vesk {

// To the scroller, else to the hero, else nowhere. View 0 follows the manager within its borders.
void lead_camera(Self manager);
// The background goes half as far sideways, and downwards so that both bottoms are reached together.
void scroll_background();
// Two families of objects are awake only within 32 pixels of the view.
void sleep_far_things();
// While `barrier` is 0 the hero can't leave the view sideways.
void keep_hero_in_view(Self manager);

void Alarm_CloseView(Self manager); // `barrier` becomes 0

} // namespace vesk
