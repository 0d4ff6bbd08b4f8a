// What the hero stands on and meets: ground, one-way tops, slopes, walls, ceilings, the bounds of the room.
#include "game/Game.h"
#include "game/play/hero.h"

namespace vesk::hero {

namespace {

constexpr bool kPrecise = true, kBoxOnly = false;

constexpr int kLedgeGrace = 4; // steps off a ledge that still count as ground

int touching(Self self, double left, double top, double right, double bottom, int object, bool precise) {
  return collision_rectangle(self, static_cast<float>(left), static_cast<float>(top),
                             static_cast<float>(right), static_cast<float>(bottom), object, precise, false);
}
bool touches(Self self, double left, double top, double right, double bottom, int object, bool precise) {
  return touching(self, left, top, right, bottom, object, precise) != noone;
}

// Over the whole width of the mask.
bool slope_between(Self self, double top, double bottom) {
  return touches(self, self[bbox_left], top, self[bbox_right], bottom, obj_slopeparent, kPrecise);
}
bool solid_between(Self self, double top, double bottom) {
  return touches(self, self[bbox_left], top, self[bbox_right], bottom, obj_solid, kPrecise);
}
bool under_feet(Self self, int object, bool precise) {
  return touches(self, self[bbox_left], self[bbox_bottom] + 1, self[bbox_right], self[bbox_bottom] + 1,
                 object, precise);
}

// The top four rows and the bottom row of the mask don't count for walls.
bool solid_beside(Self self, double left, double right) {
  return touches(self, left, self[bbox_top] + 4, right, self[bbox_bottom] - 1, obj_solid, kPrecise);
}
bool centre_is_free(Self self) {
  return collision_point(self, self[x], self[bbox_top] + 4, obj_solid, kBoxOnly, false) == noone;
}

void land(Self self) {
  self[vspeed] = 0;
  self[gravity] = 0;
  if (self[jumpnow] == kJumpSpent) self[jumpnow] = kMayJump;
  self[hitpoint] = 0;
  self[walljump] = 0;
  self[doublejump] = 0;
}

} // namespace

// ---- probes ----

bool ground_under_feet(Self self) {
  return under_feet(self, obj_solidtop, kBoxOnly) || under_feet(self, obj_slopeparent, kPrecise);
}

bool ice_under_feet(Self self) {
  return touches(self, self[bbox_left], self[bbox_bottom], self[bbox_right], self[bbox_bottom] + 1,
                 obj_slippery, kBoxOnly);
}

bool right_wall(Self self) { return solid_beside(self, self[bbox_right], self[bbox_right] + 1); }
bool left_wall(Self self) { return solid_beside(self, self[bbox_left] - 1, self[bbox_left]); }
bool under_ceiling(Self self) { return solid_between(self, self[bbox_top], self[bbox_top]); }
bool may_stand_up(Self self) { return !solid_between(self, self[bbox_top] - 16, self[bbox_top]); }

// ---- ground ----

// A hero that rises never lands; one whose feet are too far past the top falls through.
void land_on_tops(Self self) {
  if (!(self[vspeed] > 0)) return;
  const Self top = first(touching(self, self[bbox_left], self[bbox_bottom], self[bbox_right],
                                  self[bbox_bottom] + self[vspeed], obj_solidtop, kBoxOnly));
  if (!top || !(self[bbox_bottom] < top[yprevious] + 5)) return;
  if (solid_between(self, self[bbox_top] + 4, top[y] - 1)) return;
  self[y] = top[y] - 32;
  land(self);
}

void stick_to_descending_slope(Self self) {
  if (self[state] == kWalking && slope_between(self, self[bbox_bottom], self[bbox_bottom] + 4) &&
      !slope_between(self, self[bbox_bottom] - 4, self[bbox_bottom] - 4))
    self[y] += 4;
}

// Lifts the hero out of the slope pixel by pixel; one that rises fast passes through.
void stand_on_slope(Self self) {
  if (!slope_between(self, self[bbox_bottom] - 4, self[bbox_bottom]) ||
      slope_between(self, self[bbox_bottom] - 8, self[bbox_bottom] - 8))
    return;
  if (self[vspeed] > 0) land(self);
  if (self[vspeed] + 0.85 > 0)
    while (slope_between(self, self[bbox_bottom] - 4, self[bbox_bottom])) self[y] -= 1;
}

void test_ground(Self self) {
  if (self[gravity] == 0 && ground_under_feet(self)) {
    self[state] = self[hspeed] != 0 ? kWalking : kStanding;
    self[statedelay] = 0;
  } else if (self[statedelay] > kLedgeGrace) {
    self[state] = kInAir;
  } else {
    self[statedelay] += 1;
  }
}

// ---- walls, ceilings, bounds ----

void meet_walls(Self self) {
  if (self[hspeed] > 0 && right_wall(self)) {
    self[hspeed] = 0;
    while (solid_beside(self, self[bbox_right], self[bbox_right]) && centre_is_free(self)) self[x] -= 1;
  }
  if (self[hspeed] < 0 && left_wall(self)) {
    self[hspeed] = 0;
    while (solid_beside(self, self[bbox_left], self[bbox_left]) && centre_is_free(self)) self[x] += 1;
  }
}

// A climbing hero meets it in silence; one on the ground isn't pushed down.
void meet_ceiling(Self self) {
  if (!(self[vspeed] < 0) || !under_ceiling(self)) return;
  if (self[state] > kWalking)
    while (solid_between(self, self[bbox_top] + 1, self[bbox_top] + 1)) self[y] += 1;
  self[vspeed] = 0;
  if (self[state] < kClimbing) {
    audio_play_sound(snd_bump, 0, false);
    self[jumpnow] = kJumpSpent;
  }
}

void keep_in_room(Self self) {
  if (self[y] + 96 < 0) {
    self[y] = -96;
  } else if (self[bbox_top] > room_height) {
    self[y] = room_height - 16;
    self[vspeed] = -4;
    self[damage] = kFatalDamage;
    self[invincible] = 0;
    event_user(self, kTakeDamage);
  }
}

} // namespace vesk::hero
