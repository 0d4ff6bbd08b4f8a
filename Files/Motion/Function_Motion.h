#pragma once
// Built-ins that move the caller: direction and speed, snapping and wrapping, and moves that feel their way
// with the collision tests. Distances are room pixels, speeds pixels a step, angles degrees
// counter-clockwise. A null caller does nothing.
#include "Files/Object/Instance.h"

namespace vesk {

void Function_AddMotion();

void motion_set(CInstance* self, float direction, float speed);
void motion_add(CInstance* self, float direction, float speed);
void move_towards_point(CInstance* self, float x, float y, float speed);
void move_snap(CInstance* self, float hsnap,
               float vsnap); // to the nearest grid point; 0 leaves an axis alone
// From one side of the room to the other once it is more than `margin` outside.
void move_wrap(CInstance* self, bool horizontal, bool vertical, float margin);
// To a free random place in the room, on the grid; stays when 100 tries find none.
void move_random(CInstance* self, float hsnap, float vsnap);

// Pixel by pixel as long as the next place is free; a distance of 0 or less means up to 1000.
void move_contact_solid(CInstance* self, float direction, float distance);
void move_contact_all(CInstance* self, float direction, float distance);
void move_contact(CInstance* self, float direction); // out of solids when in one, else up to them
// Pixel by pixel until the place is free.
void move_outside_solid(CInstance* self, float direction, float distance);
void move_outside_all(CInstance* self, float direction, float distance);
// Turns the motion where the next place is not free; `advanced` also reckons with slanted walls.
void move_bounce_solid(CInstance* self, bool advanced);
void move_bounce_all(CInstance* self, bool advanced);

} // namespace vesk
