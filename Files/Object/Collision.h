#pragma once
// Does this shape touch that one? The layered tests that all collision queries share: boxes, then turned
// boxes, then pixel masks. Total: an instance without a sprite or without frames is simply no hit where a
// shape is asked for. `precise` allows the pixel test; it happens only where a sprite has precise masks.
// Coordinates are room pixels; the only side effect is that stale boxes are recomputed and masks expanded.
#include "Files/Object/Instance.h"

namespace vesk {

// To nearest, ties to even. Beyond 2^29 the result is clamped; not a number gives 0.
int32_t RoundToEven(double value);

// Two instances. Boxes must overlap; mere touching is no collision.
bool Collide(CInstance& a, CInstance& b, bool precise);

// A point. Left and top edge of the box belong to it, right + 1 and bottom + 1 don't.
bool PointHit(CInstance& instance, float x, float y, bool precise);

// A closed rectangle; its corners may come in any order.
bool RectHit(CInstance& instance, float x1, float y1, float x2, float y2, bool precise);

// The ellipse inside a rectangle; its corners may come in any order.
bool EllipseHit(CInstance& instance, float x1, float y1, float x2, float y2, bool precise);

// A line from one end to the other; the order of the ends doesn't matter.
bool LineHit(CInstance& instance, float x1, float y1, float x2, float y2, bool precise);

} // namespace vesk
