// The hero on climbables and nets, and clinging to a wall.
#include "game/Game.h"
#include "game/Keys.h"
#include "game/play/hero.h"

namespace vesk::hero {

namespace {

constexpr double kJumpOff = -3.75; // from a climbable or a wall
constexpr double kJumpOffSpeed = 3;
constexpr int kNetSmackSteps = 2;

bool clings(int character) { return character == 1 || character == 2; }

void climb_by_keys(Self self) {
  const int side = steering(self);
  self[hspeed] = side;
  if (side != 0) self[direct] = side;
  self[vspeed] = axis(kUpKey, kDownKey);
  if (jump_pressed(self)) start_jump(self, kJumpOff);
}

void smack_net(Self self) {
  if (!keyboard_check_pressed(kActionKey) || !place_meeting(self, self[x], self[y], obj_climb_net)) return;
  self[netsmack] = 1;
  self[alarm][kEndNetSmack] = kNetSmackSteps;
  audio_play_sound(snd_bump, 0, false);
}

} // namespace

// ---- climbing ----

void grab_climbable(Self self) {
  const bool wants = keyboard_check(kUpKey) || (keyboard_check(kDownKey) && self[state] == kInAir);
  if (!wants || self[holding] != 0 || !has_controls(self) ||
      !place_meeting(self, self[x], self[y], obj_climb))
    return;
  self[state] = kClimbing;
  self[gravity] = 0;
  self[speed] = 0;
  self[walljump] = 0;
  self[doublejump] = 0;
}

void Climb(Self self) {
  if (has_controls(self))
    climb_by_keys(self);
  else
    self[speed] = 0;
  if (!place_meeting(self, self[x], self[y], obj_climb) || ground_under_feet(self)) {
    self[state] = kStanding; // also when it jumps: the next ground test decides
    self[jumpnow] = kMayJump;
  }
  smack_net(self);
}

void Alarm_EndNetSmack(Self self) { self[netsmack] = 0; }

// ---- clinging; `direct` looks away from the wall meanwhile ----

void cling_to_wall(Self self) {
  if (self[state] != kInAir || self[isduck] != 0 || self[stompstyle] != 0 || !has_controls(self) ||
      global[velmo] != 0 || !clings(global[powerup]) || !(self[vspeed] > 0) || self[holding] != 0)
    return;
  const bool right = keyboard_check(kRightKey) && self[direct] == 1 && right_wall(self);
  const bool left = keyboard_check(kLeftKey) && self[direct] == -1 && left_wall(self);
  if (!right && !left) return;
  self[state] = kClinging;
  self[vspeed] = 0;
  self[gravity] = 0;
  self[direct] = -self[direct];
  self[walljump] = 1;
}

namespace {

bool cling_ends(Self self) {
  if (self[direct] == -1 && (keyboard_check(kLeftKey) || !right_wall(self))) return true;
  if (self[direct] == 1 && (keyboard_check(kRightKey) || !left_wall(self))) return true;
  return ground_under_feet(self);
}

} // namespace

void Cling(Self self) {
  if (cling_ends(self)) {
    self[state] = kInAir;
    self[jumpnow] = kMayJump;
    return;
  }
  self[vspeed] = 1;
  if (jump_pressed(self)) {
    start_jump(self, kJumpOff);
    puff_under_feet(self);
    self[hspeed] = kJumpOffSpeed * self[direct];
  }
}

} // namespace vesk::hero
