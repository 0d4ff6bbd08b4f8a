#pragma once
// How water looks, in play and in the editor.
#include "Files/Code/Self.h"

namespace vesk {

// That many cells of the water's sprite from the room's left edge on, and its colour below them over a
// rectangle of room pixels.
void draw_water(Self water, double top, int columns, double width, double height);
// Draws the picture below row `top` of the view once more into the overlay surface, through the waves. Counts
// the water's `move`, the time of the waves; its `time` is the uniform.
void draw_waves(Self water, double top);

} // namespace vesk
