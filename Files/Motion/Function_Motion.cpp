#include "Files/Motion/Function_Motion.h"

#include "Files/Function/Function.h"
#include "Files/Object/CollisionQuery.h"
#include "Files/Room/Room.h"

#include <algorithm>
#include <cmath>

namespace vesk {

namespace {

constexpr double kPi = 3.1415927410125732; // the float, as all angles here use it
constexpr int32_t kFarthest = 1000;        // steps of a move without a distance
constexpr int kScans = 35;                 // directions that a bounce tries on one side
constexpr int kRandomTries = 100;

struct Heading {
  float c, s;
  explicit Heading(float degrees) {
    const double r = static_cast<double>(static_cast<float>(static_cast<double>(degrees) * kPi / 180.0));
    c = static_cast<float>(std::cos(r));
    s = static_cast<float>(std::sin(r));
  }
};

enum class Obstacles { kSolid, kAll };

bool Free(CInstance& self, float x, float y, Obstacles obstacles) {
  return PlaceIsFree(self, x, y, obstacles == Obstacles::kSolid);
}
bool FreeHere(CInstance& self, Obstacles obstacles) { return Free(self, self.x, self.y, obstacles); }

int32_t StepsFor(float distance) {
  return distance > 0 ? RoundToEven(static_cast<double>(distance)) : kFarthest;
}

void MoveContact(CInstance* self, float direction, float distance, Obstacles obstacles) {
  if (!self) return;
  const int32_t steps = StepsFor(distance);
  const Heading heading(direction);
  if (steps < 1 || !FreeHere(*self, obstacles)) return;
  for (int32_t i = 0; i < steps; ++i) {
    const float x = self->x + heading.c, y = self->y - heading.s;
    if (!Free(*self, x, y, obstacles)) return;
    self->SetPosition(x, y);
  }
}

void MoveOutside(CInstance* self, float direction, float distance, Obstacles obstacles) {
  if (!self) return;
  const int32_t steps = StepsFor(distance);
  const Heading heading(direction);
  if (steps < 1 || FreeHere(*self, obstacles)) return;
  for (int32_t i = 0; i < steps; ++i) {
    self->SetPosition(self->x + heading.c, self->y - heading.s);
    if (FreeHere(*self, obstacles)) return;
  }
}

void BounceOffSides(CInstance& self, Obstacles obstacles) {
  const bool freeX = Free(self, self.x + self.hspeed, self.y, obstacles);
  const bool freeY = Free(self, self.x, self.y + self.vspeed, obstacles);
  const bool freeBoth = Free(self, self.x + self.hspeed, self.y + self.vspeed, obstacles);
  if (!freeX) {
    self.SetHspeed(-self.hspeed);
  } else if (freeY) {
    if (freeBoth) return;
    self.SetHspeed(-self.hspeed); // a corner
    self.SetVspeed(-self.vspeed);
    return;
  }
  if (!freeY) self.SetVspeed(-self.vspeed);
}

// Turns from `from` in tens of degrees until a place at the distance of the speed is free. False: none is.
bool ScanFree(CInstance& self, int32_t from, int32_t turn, Obstacles obstacles, int32_t& angle,
              bool& bounced) {
  angle = from;
  for (int i = 0; i < kScans; ++i) {
    angle += turn;
    const Heading heading(static_cast<float>(angle));
    if (Free(self, self.x + heading.c * self.speed, self.y - heading.s * self.speed, obstacles)) return true;
    bounced = true;
  }
  return false;
}

void BounceOffWalls(CInstance& self, bool bounced, Obstacles obstacles) {
  const int32_t d = RoundToEven(static_cast<double>(self.direction) / 10) * 10;
  int32_t lower, upper;
  ScanFree(self, d, -10, obstacles, lower, bounced);
  const bool found = ScanFree(self, d, 10, obstacles, upper, bounced);
  if (!found || bounced) self.SetDirection(static_cast<float>(upper + lower + 180 - d));
}

void MoveBounce(CInstance* self, bool advanced, Obstacles obstacles) {
  if (!self) return;
  bool bounced = false;
  if (!FreeHere(*self, obstacles)) {
    self->SetPosition(self->xPrevious, self->yPrevious);
    bounced = true;
  }
  if (advanced)
    BounceOffWalls(*self, bounced, obstacles);
  else
    BounceOffSides(*self, obstacles);
}

float Snapped(float at, float snap) {
  if (!(snap > 0)) return at;
  const double s = static_cast<double>(snap);
  return static_cast<float>(RoundToEven(static_cast<double>(at) / s) * s);
}

float Wrapped(float at, float size, float margin) {
  if (at < -margin) at = size + at + 2 * margin;
  if (at > size + margin) at = at - size - 2 * margin;
  return at;
}

// A place between the margins that the shape needs; the near one where the room is too small.
float RandomBetween(float nearMargin, float size, float farMargin) {
  const double chance = Random_Next() / 4294967296.0;
  const double room = std::max(0.0, static_cast<double>(size - nearMargin - farMargin));
  return static_cast<float>(static_cast<double>(nearMargin) + chance * room);
}

constexpr BuiltinRow kBuiltins[] = {
    Builtin<&motion_set>("motion_set"),
    Builtin<&motion_add>("motion_add"),
    Builtin<&move_towards_point>("move_towards_point"),
    Builtin<&move_snap>("move_snap"),
    Builtin<&move_wrap>("move_wrap"),
    Builtin<&move_random>("move_random"),
    Builtin<&move_contact_solid>("move_contact_solid"),
    Builtin<&move_contact_all>("move_contact_all"),
    Builtin<&move_contact>("move_contact"),
    Builtin<&move_outside_solid>("move_outside_solid"),
    Builtin<&move_outside_all>("move_outside_all"),
    Builtin<&move_bounce_solid>("move_bounce_solid"),
    Builtin<&move_bounce_all>("move_bounce_all"),
    Builtin<&move_bounce_solid>("move_bounce"),
};

} // namespace

void Function_AddMotion() { Function_Add(kBuiltins); }

void motion_set(CInstance* self, float direction, float speed) {
  if (!self) return;
  self->SetDirection(direction);
  self->SetSpeed(speed);
}

void motion_add(CInstance* self, float direction, float speed) {
  if (self) self->MotionAdd(direction, speed);
}

void move_towards_point(CInstance* self, float x, float y, float speed) {
  if (!self) return;
  self->SetHspeed(x - self->x);
  self->SetVspeed(y - self->y);
  self->SetSpeed(speed);
}

void move_snap(CInstance* self, float hsnap, float vsnap) {
  if (self) self->SetPosition(Snapped(self->x, hsnap), Snapped(self->y, vsnap));
}

void move_wrap(CInstance* self, bool horizontal, bool vertical, float margin) {
  const CRoom* room = CurrentRoom();
  if (!self || !room) return;
  if (horizontal) self->SetPosition(Wrapped(self->x, static_cast<float>(room->width), margin), self->y);
  if (vertical) self->SetPosition(self->x, Wrapped(self->y, static_cast<float>(room->height), margin));
}

void move_random(CInstance* self, float hsnap, float vsnap) {
  const CRoom* room = CurrentRoom();
  if (!self || !room) return;
  const BoundingBox box = self->Bounds();
  const float left = self->x - static_cast<float>(box.left), top = self->y - static_cast<float>(box.top);
  const float right = static_cast<float>(box.right) + 1 - self->x;
  const float bottom = static_cast<float>(box.bottom) + 1 - self->y;
  for (int i = 0; i < kRandomTries; ++i) {
    const float x = Snapped(RandomBetween(left, static_cast<float>(room->width), right), hsnap);
    const float y = Snapped(RandomBetween(top, static_cast<float>(room->height), bottom), vsnap);
    if (!PlaceIsFree(*self, x, y, true)) continue;
    self->SetPosition(x, y);
    return;
  }
}

void move_contact_solid(CInstance* self, float direction, float distance) {
  MoveContact(self, direction, distance, Obstacles::kSolid);
}
void move_contact_all(CInstance* self, float direction, float distance) {
  MoveContact(self, direction, distance, Obstacles::kAll);
}
void move_contact(CInstance* self, float direction) {
  if (self && FreeHere(*self, Obstacles::kSolid))
    MoveContact(self, direction, -1, Obstacles::kSolid);
  else
    MoveOutside(self, direction, -1, Obstacles::kSolid);
}

void move_outside_solid(CInstance* self, float direction, float distance) {
  MoveOutside(self, direction, distance, Obstacles::kSolid);
}
void move_outside_all(CInstance* self, float direction, float distance) {
  MoveOutside(self, direction, distance, Obstacles::kAll);
}

void move_bounce_solid(CInstance* self, bool advanced) { MoveBounce(self, advanced, Obstacles::kSolid); }
void move_bounce_all(CInstance* self, bool advanced) { MoveBounce(self, advanced, Obstacles::kAll); }

} // namespace vesk
