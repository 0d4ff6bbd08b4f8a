#pragma once
// Small pictures of larger ones: what stands in a frame, brought down to a square of a few pixels.
#include "pack/studio/Canvas.h"
#include "pack/studio/Studio.h"

namespace vesk::studio {

struct IconRule {
  int size = 16;           // sides of the square, pixels
  Area part{0, 0, -1, -1}; // of the frame; empty for all
  bool cut = false;        // the upper middle of what is too large instead of a reduction: a head, a mouth
};

// What fits stays as it is, a frame of the icon's own size where it stands, anything else in the middle. What
// is larger loses its outline, shrinks by the vote of the pixels under each new one, eyes and glints first,
// and gets a new outline.
Canvas MakeIcon(const Palette& palette, const Picture& frame, const IconRule& rule);

} // namespace vesk::studio
