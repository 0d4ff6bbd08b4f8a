#include "Files/Object/Function_Collision.h"

#include "Files/Function/Function.h"
#include "Files/Object/CollisionQuery.h"

#include <algorithm>
#include <cmath>

namespace vesk {

namespace {

int32_t IdOf(const CInstance* instance) { return instance ? instance->id : noone; }

// `self` and `other` as ids; anything else stays.
int32_t Named(const CInstance* self, const CInstance* other, int32_t object) {
  return object == self_ ? IdOf(self) : object == other_ ? IdOf(other) : object;
}

int32_t First(const CInstance* self, const Figure& figure, int32_t object, bool notMe) {
  return IdOf(FirstHit(object, figure, notMe ? self : nullptr));
}

// How far two spans of whole pixels are apart; 0 when they share one.
int64_t Gap(int64_t low, int64_t high, int64_t otherLow, int64_t otherHigh) {
  if (otherLow > high) return otherLow - high;
  if (otherHigh < low) return low - otherHigh;
  return 0;
}

float BoxDistance(CInstance& a, CInstance& b) {
  const BoundingBox &boxA = a.Bounds(), &boxB = b.Bounds();
  const double dx = static_cast<double>(Gap(boxA.left, boxA.right, boxB.left, boxB.right));
  const double dy = static_cast<double>(Gap(boxA.top, boxA.bottom, boxB.top, boxB.bottom));
  return static_cast<float>(std::sqrt(dx * dx + dy * dy));
}

bool OnGrid(float at, float snap) {
  if (!(snap > 0)) return true;
  const double a = static_cast<double>(at), s = static_cast<double>(snap);
  return std::fabs(a - RoundToEven(a / s) * s) < 0.001;
}

// By name a script may say `self` and `other` here.
bool F_PlaceMeeting(CInstance* self, CInstance* other, float x, float y, int32_t object) {
  return place_meeting(self, x, y, Named(self, other, object));
}
bool F_PositionMeeting(CInstance* self, CInstance* other, float x, float y, int32_t object) {
  return position_meeting(self, x, y, Named(self, other, object));
}

constexpr BuiltinRow kBuiltins[] = {
    Builtin<&F_PlaceMeeting>("place_meeting"),
    Builtin<&instance_place>("instance_place"),
    Builtin<&place_free>("place_free"),
    Builtin<&place_empty>("place_empty"),
    Builtin<&place_snapped>("place_snapped"),
    Builtin<&collision_point>("collision_point"),
    Builtin<&collision_rectangle>("collision_rectangle"),
    Builtin<&collision_circle>("collision_circle"),
    Builtin<&collision_ellipse>("collision_ellipse"),
    Builtin<&collision_line>("collision_line"),
    Builtin<&instance_position>("instance_position"),
    Builtin<&F_PositionMeeting>("position_meeting"),
    Builtin<&position_empty>("position_empty"),
    Builtin<&instance_nearest>("instance_nearest"),
    Builtin<&instance_furthest>("instance_furthest"),
    Builtin<&distance_to_point>("distance_to_point"),
    Builtin<&distance_to_object>("distance_to_object"),
};

} // namespace

void Function_AddCollision() {
  Function_Add(kBuiltins);
  Function_AddCollisionLists();
}

bool place_meeting(CInstance* self, float x, float y, int32_t object) {
  return self && InstanceAt(*self, x, y, Named(self, nullptr, object));
}

int32_t instance_place(CInstance* self, float x, float y, int32_t object) {
  return self ? IdOf(InstanceAt(*self, x, y, object)) : noone;
}

bool place_free(CInstance* self, float x, float y) { return !self || PlaceIsFree(*self, x, y, true); }
bool place_empty(CInstance* self, float x, float y) { return !self || PlaceIsFree(*self, x, y, false); }

bool place_snapped(CInstance* self, float hsnap, float vsnap) {
  return !self || (OnGrid(self->x, hsnap) && OnGrid(self->y, vsnap));
}

int32_t collision_point(CInstance* self, float x, float y, int32_t object, bool precise, bool notMe) {
  return First(self, Figure::Point(x, y, precise), object, notMe);
}

int32_t collision_rectangle(CInstance* self, float x1, float y1, float x2, float y2, int32_t object,
                            bool precise, bool notMe) {
  return First(self, {Figure::kRectangle, x1, y1, x2, y2, precise}, object, notMe);
}

int32_t collision_circle(CInstance* self, float x, float y, float radius, int32_t object, bool precise,
                         bool notMe) {
  return First(self, Figure::Circle(x, y, radius, precise), object, notMe);
}

int32_t collision_ellipse(CInstance* self, float x1, float y1, float x2, float y2, int32_t object,
                          bool precise, bool notMe) {
  return First(self, {Figure::kEllipse, x1, y1, x2, y2, precise}, object, notMe);
}

int32_t collision_line(CInstance* self, float x1, float y1, float x2, float y2, int32_t object, bool precise,
                       bool notMe) {
  return First(self, {Figure::kLine, x1, y1, x2, y2, precise}, object, notMe);
}

int32_t instance_position(float x, float y, int32_t object) {
  return First(nullptr, Figure::Point(x, y, true), object, false);
}

bool position_meeting(CInstance* self, float x, float y, int32_t object) {
  return instance_position(x, y, Named(self, nullptr, object)) != noone;
}

bool position_empty(float x, float y) { return instance_position(x, y, all) == noone; }

int32_t instance_nearest(float x, float y, int32_t object) { return IdOf(NearestInstance(x, y, object)); }
int32_t instance_furthest(float x, float y, int32_t object) { return IdOf(FurthestInstance(x, y, object)); }

float distance_to_point(CInstance* self, float x, float y) {
  if (!self) return 0;
  const BoundingBox& box = self->Bounds();
  const auto beyond = [](double at, double low, double high) {
    return at > high ? at - high : at < low ? low - at : 0.0;
  };
  const double dx = beyond(static_cast<double>(x), box.left, box.right);
  const double dy = beyond(static_cast<double>(y), box.top, box.bottom);
  return static_cast<float>(std::sqrt(dx * dx + dy * dy));
}

float distance_to_object(CInstance* self, CInstance* other, int32_t object) {
  float nearest = 1000000;
  if (!self) return nearest;
  WithSnapshot targets(self, other, object);
  while (CInstance* instance = targets.Next())
    if (instance != self && instance->Live()) nearest = std::min(nearest, BoxDistance(*self, *instance));
  return nearest;
}

} // namespace vesk
