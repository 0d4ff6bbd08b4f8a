#pragma once
// Built-ins that ask what touches what. Positions are room pixels; results are instance ids or `noone`.
// `object`: an object with its descendants, an instance id, or `all`. `precise` allows pixel tests, `notMe`
// leaves the caller out.
#include "Files/Object/Instance.h"

#include <cstdint>

namespace vesk {

void Function_AddCollision();
void Function_AddCollisionLists(); // part of the former

// ---- the caller's shape at another place; null callers meet nothing ----

bool place_meeting(CInstance* self, float x, float y, int32_t object);
int32_t instance_place(CInstance* self, float x, float y, int32_t object);
bool place_free(CInstance* self, float x, float y);  // of solid instances
bool place_empty(CInstance* self, float x, float y); // of all instances
// Whether the caller stands on a grid of that spacing, within 0.001; a spacing of 0 is not looked at.
bool place_snapped(CInstance* self, float hsnap, float vsnap);

// ---- points and figures ----

int32_t collision_point(CInstance* self, float x, float y, int32_t object, bool precise, bool notMe);
int32_t collision_rectangle(CInstance* self, float x1, float y1, float x2, float y2, int32_t object,
                            bool precise, bool notMe);
int32_t collision_circle(CInstance* self, float x, float y, float radius, int32_t object, bool precise,
                         bool notMe);
int32_t collision_ellipse(CInstance* self, float x1, float y1, float x2, float y2, int32_t object,
                          bool precise, bool notMe);
int32_t collision_line(CInstance* self, float x1, float y1, float x2, float y2, int32_t object, bool precise,
                       bool notMe);
int32_t instance_position(float x, float y, int32_t object); // precise
bool position_meeting(CInstance* self, float x, float y, int32_t object);
bool position_empty(float x, float y);

// ---- the same, all hits appended to a list; the result is their number. `ordered`: nearest first ----

int32_t collision_point_list(CInstance* self, float x, float y, int32_t object, bool precise, bool notMe,
                             int32_t list, bool ordered);
int32_t collision_rectangle_list(CInstance* self, float x1, float y1, float x2, float y2, int32_t object,
                                 bool precise, bool notMe, int32_t list, bool ordered);
int32_t collision_circle_list(CInstance* self, float x, float y, float radius, int32_t object, bool precise,
                              bool notMe, int32_t list, bool ordered);
int32_t collision_ellipse_list(CInstance* self, float x1, float y1, float x2, float y2, int32_t object,
                               bool precise, bool notMe, int32_t list, bool ordered);
int32_t collision_line_list(CInstance* self, float x1, float y1, float x2, float y2, int32_t object,
                            bool precise, bool notMe, int32_t list, bool ordered);
int32_t instance_position_list(float x, float y, int32_t object, int32_t list, bool ordered);
int32_t instance_place_list(CInstance* self, float x, float y, int32_t object, int32_t list, bool ordered);

// ---- distances ----

int32_t instance_nearest(float x, float y, int32_t object); // `all` or an object
int32_t instance_furthest(float x, float y, int32_t object);
// From the caller's box: 0 inside, else the length of what lies between.
float distance_to_point(CInstance* self, float x, float y);
// To the nearest box of another instance that `object` names; 1000000 when there is none.
float distance_to_object(CInstance* self, CInstance* other, int32_t object);

} // namespace vesk
