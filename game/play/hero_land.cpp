// The hero on land and in the air: run, turn, jump, fall, duck.
#include "game/Game.h"
#include "game/Keys.h"
#include "game/play/hero.h"

namespace vesk::hero {

namespace {

constexpr double kTopSpeed = 3; // where the keys stop accelerating
constexpr double kAcceleration = 0.06;
constexpr double kTurnAcceleration = 0.075; // more of it against the motion
constexpr double kIceAcceleration = 0.04;
constexpr double kIceFriction = 0.025;
constexpr double kOverspeedFriction = 0.025;
constexpr double kStopFriction = 0.135; // of a hero whose controls were taken away

constexpr double kStandingJump = -3.85;
constexpr double kWalkingJump = -4.05;
constexpr double kRunningJump = -4.5;

constexpr double kRiseGravity = 0.1; // while the jump key is held
constexpr double kGravity = 0.3;
constexpr double kFastestFall = 4;

bool jumps_twice(int character) { return character == 5 || character == 6; }

} // namespace

// ---- what the player asks ----

int axis(int negative_key, int positive_key) {
  return keyboard_check(positive_key) - keyboard_check(negative_key);
}
bool has_controls(Self self) { return self[disablecontrols] == 0; }
bool jump_pressed(Self self) { return keyboard_check_pressed(kJumpKey) && has_controls(self); }
int steering(Self self) { return has_controls(self) ? axis(kLeftKey, kRightKey) : 0; }

// ---- speed ----

bool runs(Self self) { return abs(self[hspeed]) > kRunSpeed; }

void apply_friction(Self self, double amount) {
  if (self[hspeed] > 0)
    self[hspeed] -= amount;
  else if (self[hspeed] < 0)
    self[hspeed] += amount;
  if (abs(self[hspeed]) < amount) self[hspeed] = 0;
}

// Turning against the motion is quicker than building speed.
void gain_speed(Self self, int side) {
  if (self[hspeed] * side < 0) self[hspeed] += kTurnAcceleration * side;
  self[hspeed] += kAcceleration * side;
}

// ---- jumping and ducking ----

void start_jump(Self self, double impulse) {
  self[vspeed] = impulse;
  audio_play_sound(snd_jump, 0, false);
  self[jumpnow] = kRising;
  self[state] = kInAir;
}

void puff_under_feet(Self self) {
  audio_play_sound(snd_stomp, 0, false);
  make(self[x], self[y] + 32, obj_spinthump);
}

void Bounce(Self self) {
  self[jumpnow] = keyboard_check(kJumpKey) ? kRising : kJumpSpent;
  self[state] = kInAir;
  self[vspeed] = -4;
  if (!under_ceiling(self)) self[y] -= 1; // else the next feet probe calls it ground
}

// A ducking hero under a low ceiling stays down; one in the air stays as it is.
void duck(Self self) {
  if (self[state] == kClimbing || self[state] == kClinging) {
    self[isduck] = 0;
  } else if (self[state] != kInAir && has_controls(self)) {
    if (keyboard_check(kDownKey)) {
      if (self[holding] == 0) self[isduck] = 1;
    } else if (may_stand_up(self)) {
      self[isduck] = 0;
    }
  }
}

// ---- the event, its steps in order ----

namespace {

double jump_impulse(Self self) {
  if (runs(self)) return kRunningJump;
  return round(self[hspeed] / 2) == 0 ? kStandingJump : kWalkingJump;
}

void jump_from_ground(Self self) {
  if (jump_pressed(self) && self[jumpnow] == kMayJump && self[state] < kInAir)
    start_jump(self, jump_impulse(self));
  if (keyboard_check_released(kJumpKey) && self[jumpnow] == kRising) self[jumpnow] = kJumpSpent;
}

void accelerate(Self self, int side) {
  if (self[hspeed] * side < kTopSpeed) {
    if (self[isslip] == 1)
      self[hspeed] += kIceAcceleration * side;
    else
      gain_speed(self, side);
  }
  if (self[walljump] == 0) self[direct] = side;
}

void slow_down(Self self) {
  if (self[disablecontrols] == 1)
    apply_friction(self, kStopFriction); // also in the air
  else if (self[state] != kInAir)
    apply_friction(self, self[isslip] == 0 ? kFriction : kIceFriction);
}

// Only a push takes the hero beyond the top speed; on the ground that wears off.
void run(Self self) {
  if (self[isduck] == 1 && self[state] != kInAir) {
    apply_friction(self, kFriction);
    return;
  }
  if (const int side = steering(self))
    accelerate(self, side);
  else
    slow_down(self);
  if (self[state] != kInAir && abs(self[hspeed]) > kTopSpeed) apply_friction(self, kOverspeedFriction);
}

// Holding jump keeps gravity low until the rise has slowed to a pixel a step.
void fall(Self self) {
  if (self[state] != kInAir && !(self[statedelay] > 0)) return;
  if (self[vspeed] <= -1 && self[jumpnow] == kRising) {
    self[gravity] = kRiseGravity;
  } else {
    self[gravity] = kGravity;
    if (self[jumpnow] == kRising) self[jumpnow] = kJumpSpent;
  }
}

// Only with exactly one foot on the slope.
void start_slide(Self self) {
  if (!keyboard_check_pressed(kDownKey) || !has_controls(self) || self[holding] != 0) return;
  const auto slope_under = [&](double column) {
    return collision_point(self, column, self[bbox_bottom] + 1, obj_slopeparent, true, false) != noone;
  };
  if (slope_under(self[bbox_right]) != slope_under(self[bbox_left])) make(self[x], self[y], obj_slider);
}

void follow_shoe(Self self) {
  if (global[velmo] == 2)
    self[stompstyle] = 1;
  else if (self[stompstyle] == 1)
    self[stompstyle] = 0;
}

void jump_again(Self self) {
  if (self[state] != kInAir || self[jumpnow] == kRising || self[doublejump] != 0 || !jump_pressed(self) ||
      !jumps_twice(global[powerup]))
    return;
  self[doublejump] = 1;
  start_jump(self, kStandingJump);
  puff_under_feet(self);
}

} // namespace

void MoveOnLand(Self self) {
  test_ground(self);
  self[isslip] = ice_under_feet(self);
  if (self[vspeed] > kFastestFall) self[vspeed] = kFastestFall;
  jump_from_ground(self);
  run(self);
  fall(self);
  grab_climbable(self);
  start_slide(self);
  follow_shoe(self);
  jump_again(self);
  cling_to_wall(self);
}

} // namespace vesk::hero
