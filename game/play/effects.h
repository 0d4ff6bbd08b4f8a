#pragma once
// Short effects that other families start.

namespace vesk {

// A puff at (left, top) that plays the sprite once, in front of the hero.
void make_smoke(double left, double top, int sprite);

} // namespace vesk
