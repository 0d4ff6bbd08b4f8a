// The hero in water: swim, enter, leave.
#include "game/Game.h"
#include "game/Keys.h"
#include "game/play/effects.h"
#include "game/play/hero.h"

namespace vesk::hero {

namespace {

constexpr double kWaterGravity = 0.125;
constexpr double kFastestSinking = 1.5;
constexpr double kSwimSpeed = 1.5;
constexpr double kWadeSpeed = 0.5; // with the feet on the ground

constexpr double kStroke = -2.5;
constexpr double kStrongStroke = -3.5; // with the up key
constexpr double kWeakStroke = -1;     // with the down key

bool water_at(Self self, double row) {
  return collision_point(self, self[x], row, obj_swim, false, false) != noone;
}

void splash(Self self) { make_smoke(self[x] - 8, self[y] + 17, spr_splash); }

double stroke_impulse(Self self) {
  if (keyboard_check(kUpKey)) return kStrongStroke;
  return keyboard_check(kDownKey) && self[isduck] == 0 ? kWeakStroke : kStroke;
}

void stroke(Self self) {
  if (!jump_pressed(self)) return;
  self[vspeed] = stroke_impulse(self);
  audio_play_sound(snd_swim, 0, false);
  self[state] = kInAir;
}

void paddle(Self self) {
  const bool ducks_on_ground = self[isduck] != 0 && self[state] != kInAir;
  const int side = ducks_on_ground ? 0 : steering(self);
  if (side != 0) {
    gain_speed(self, side);
    self[direct] = side;
  } else {
    apply_friction(self, kFriction);
  }
  const double limit = self[state] == kInAir ? kSwimSpeed : kWadeSpeed;
  if (self[hspeed] > limit) self[hspeed] = limit;
  if (self[hspeed] < -limit) self[hspeed] = -limit;
}

void leave_water(Self self) {
  if (place_meeting(self, self[x], self[y], obj_swim)) return;
  self[isswim] = 0;
  self[jumpnow] = kMayJump;
  self[walljump] = 0;
  self[doublejump] = 0;
  if (place_meeting(self, self[x], self[y] + 2, obj_swim)) splash(self); // out through the surface
}

} // namespace

void enter_water(Self self) {
  if (self[isswim] != 0 || !place_meeting(self, self[x], self[y], obj_swim)) return;
  self[isswim] = 1;
  if (water_at(self, self[y] + 33) && !water_at(self, self[y])) { // in at the surface
    self[vspeed] = 0;
    splash(self);
  }
  if (self[state] > kInAir) self[state] = kInAir;
}

void MoveInWater(Self self) {
  test_ground(self);
  self[gravity] = kWaterGravity;
  if (self[vspeed] > kFastestSinking) self[vspeed] = kFastestSinking;
  stroke(self);
  paddle(self);
  leave_water(self);
  if (global[velmo] != 2) self[stompstyle] = 0;
}

double steps_to_bubble() { return 24 + random(96); }

void Alarm_Bubble(Self self) {
  if (self[isswim] == 1) make(self[x] - 2 + 6 * self[direct], self[bbox_top] + 7, obj_bubble);
  self[alarm][kBubble] = steps_to_bubble();
}

} // namespace vesk::hero
