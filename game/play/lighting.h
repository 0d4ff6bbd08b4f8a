#pragma once
// Darkness and the lights that lift it.
#include "Files/Code/Self.h"

namespace vesk {

// Draws the light sprite at the centre of the instance's box, in view coordinates, tinted.
void scr_emit_light(Self instance, int sprite, int colour);

} // namespace vesk
