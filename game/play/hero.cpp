// obj_tovin: the hero while the player controls it. Movement only; what others do to it stands with them.
//
// The body's centre is x, the feet stand at y + 31: a floor at height T carries the hero at y = T - 32.
#include "game/Game.h"
#include "game/play/hero_damage.h"
#include "game/play/hero_sprites.h"

namespace vesk {

namespace {

// ---- words of the rules ----

enum State { kStanding, kWalking, kInAir, kClimbing, kClinging };
enum Jump { kMayJump, kRising, kJumpSpent };
enum Skid { kNoSkid, kSkidSound, kSliding };

constexpr int kLeft = 37, kUp = 38, kRight = 39, kDown = 40; // keys
constexpr int kJumpKey = 16, kActionKey = 17;

constexpr bool kPrecise = true, kBoxOnly = false;

constexpr double kRunSpeed = 2.8;   // above it: the long jump, the P-meter
constexpr double kTopSpeed = 3;     // where the keys stop accelerating
constexpr double kStepDrag = 0.06;  // acceleration of the keys
constexpr double kTurnDrag = 0.075; // more of it against the motion
constexpr int kLedgeGrace = 4;      // steps off a ledge that still count as ground
constexpr int kSkidSmokeSteps = 8;

bool key_down(int key) { return keyboard_check(key); }
bool only_key(int key, int opposite) { return keyboard_check(key) && !keyboard_check(opposite); }
bool has_controls(Self self) { return self[disablecontrols] == 0; }
bool jump_pressed(Self self) { return keyboard_check_pressed(kJumpKey) && has_controls(self); }
bool clings(int character) { return character == 1 || character == 2; }
bool jumps_twice(int character) { return character == 5 || character == 6; }

// ---- probes ----

int touching(Self self, double left, double top, double right, double bottom, int object, bool precise) {
  return collision_rectangle(self, static_cast<float>(left), static_cast<float>(top),
                             static_cast<float>(right), static_cast<float>(bottom), object, precise, false);
}
bool touches(Self self, double left, double top, double right, double bottom, int object, bool precise) {
  return touching(self, left, top, right, bottom, object, precise) != noone;
}
bool slope_between(Self self, double top, double bottom) {
  return touches(self, self[bbox_left], top, self[bbox_right], bottom, obj_slopeparent, kPrecise);
}
bool under_feet(Self self, int object, bool precise) {
  return touches(self, self[bbox_left], self[bbox_bottom] + 1, self[bbox_right], self[bbox_bottom] + 1,
                 object, precise);
}
bool feet_probe(Self self) {
  return under_feet(self, obj_solidtop, kBoxOnly) || under_feet(self, obj_slopeparent, kPrecise);
}
bool on_ground(Self self) { return self[gravity] == 0 && feet_probe(self); }

// The top four rows and the bottom row of the mask don't count for walls.
bool solid_beside(Self self, double left, double right) {
  return touches(self, left, self[bbox_top] + 4, right, self[bbox_bottom] - 1, obj_solid, kPrecise);
}
bool right_wall(Self self) { return solid_beside(self, self[bbox_right], self[bbox_right] + 1); }
bool left_wall(Self self) { return solid_beside(self, self[bbox_left] - 1, self[bbox_left]); }
bool ceiling_at(Self self, double row) {
  return touches(self, self[bbox_left], row, self[bbox_right], row, obj_solid, kPrecise);
}

// ---- helpers of more than one event ----

void apply_friction(Self self, double amount) {
  if (self[hspeed] > 0)
    self[hspeed] -= amount;
  else if (self[hspeed] < 0)
    self[hspeed] += amount;
  if (abs(self[hspeed]) < amount) self[hspeed] = 0;
}

void land(Self self) {
  self[vspeed] = 0;
  self[gravity] = 0;
  if (self[jumpnow] == kJumpSpent) self[jumpnow] = kMayJump;
  self[hitpoint] = 0;
  self[walljump] = 0;
  self[doublejump] = 0;
}

void start_jump(Self self, double impulse) {
  self[vspeed] = impulse;
  audio_play_sound(snd_jump, 0, false);
  self[jumpnow] = kRising;
}

void puff_under_feet(Self self) {
  audio_play_sound(snd_stomp, 0, false);
  make(self[x], self[y] + 32, obj_spinthump);
}

void splash(Self self) {
  const Self drops = make(self[x] - 8, self[y] + 17, obj_smoke);
  drops[sprite_index] = spr_splash;
  drops[depth] = -6;
}

// ---- create, destroy ----

void Create(Self self) {
  self[state] = kStanding;
  self[direct] = 1;
  self[holding] = 0;
  if (global[shallihold] > 0) {
    self[holding] = global[shallihold];
    global[shallihold] = 0;
  }
  self[jumpnow] = kMayJump;
  self[skidnow] = kNoSkid;
  self[isswim] = 0;
  self[isduck] = 0;
  self[invincible] = 0;
  self[netsmack] = 0;
  self[iamkicking] = 0;
  self[isslip] = 0;
  self[disablecontrols] = 0;
  self[walljump] = 0;
  self[doublejump] = 0;
  self[isflashing] = 0;
  self[hitpoint] = 0;
  self[statedelay] = 0;
  self[stompstyle] = 0;
  self[damage] = 1;
  self[alarm][5] = kSkidSmokeSteps;
  self[alarm][7] = 24 + random(96);
}

void Destroy(Self self) {
  if (self[skidnow] == kSkidSound) audio_stop_sound(snd_skid);
}

void RoomEnd(Self self) { instance_destroy(self); }

// ---- the step ----

void land_on_tops(Self self) {
  if (!(self[vspeed] > 0)) return;
  const Self top = first(touching(self, self[bbox_left], self[bbox_bottom], self[bbox_right],
                                  self[bbox_bottom] + self[vspeed], obj_solidtop, kBoxOnly));
  if (!top || !(self[bbox_bottom] < top[yprevious] + 5)) return;
  if (touches(self, self[bbox_left], self[bbox_top] + 4, self[bbox_right], top[y] - 1, obj_solid, kPrecise))
    return;
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

void move_by_state(Self self) {
  if (self[isswim] != 0)
    event_user(self, 3);
  else if (self[state] == kClimbing)
    event_user(self, 4);
  else if (self[state] == kClinging)
    event_user(self, 5);
  else
    event_user(self, 2);
}

bool centre_is_free(Self self) {
  return collision_point(self, self[x], self[bbox_top] + 4, obj_solid, kBoxOnly, false) == noone;
}

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

void meet_ceiling(Self self) {
  if (!(self[vspeed] < 0) || !ceiling_at(self, self[bbox_top])) return;
  if (self[state] > kWalking)
    while (ceiling_at(self, self[bbox_top] + 1)) self[y] += 1;
  self[vspeed] = 0;
  if (self[state] < kClimbing) {
    audio_play_sound(snd_bump, 0, false);
    self[jumpnow] = kJumpSpent;
  }
}

void duck(Self self) {
  if (self[state] == kClimbing || self[state] == kClinging) {
    self[isduck] = 0;
  } else if (self[state] != kInAir && has_controls(self)) {
    if (key_down(kDown) && self[holding] == 0) {
      self[isduck] = 1;
    } else if (!key_down(kDown) && !touches(self, self[bbox_left], self[bbox_top] - 16, self[bbox_right],
                                            self[bbox_top], obj_solid, kPrecise)) {
      self[isduck] = 0;
    }
  }
}

void enter_water(Self self) {
  if (self[isswim] != 0 || !place_meeting(self, self[x], self[y], obj_swim)) return;
  self[isswim] = 1;
  const bool below = collision_point(self, self[x], self[y] + 33, obj_swim, kBoxOnly, false) != noone;
  const bool above = collision_point(self, self[x], self[y], obj_swim, kBoxOnly, false) != noone;
  if (below && !above) { // in at the surface
    self[vspeed] = 0;
    splash(self);
  }
  if (self[state] > kInAir) self[state] = kInAir;
}

void keep_in_room(Self self) {
  if (self[y] + 96 < 0) {
    self[y] = -96;
  } else if (self[bbox_top] > room_height) {
    self[y] = room_height - 16;
    self[vspeed] = -4;
    self[damage] = kFatalDamage;
    self[invincible] = 0;
    event_user(self, 0);
  }
}

void Step(Self self) {
  land_on_tops(self);
  stick_to_descending_slope(self);
  stand_on_slope(self);
  move_by_state(self);
  meet_walls(self);
  meet_ceiling(self);
  duck(self);
  enter_water(self);
  keep_in_room(self);
}

// ---- user event 2: land and air ----

void test_ground(Self self) {
  if (on_ground(self)) {
    self[state] = self[hspeed] != 0 ? kWalking : kStanding;
    self[statedelay] = 0;
  } else if (self[statedelay] > kLedgeGrace) {
    self[state] = kInAir;
  } else {
    self[statedelay] += 1;
  }
}

double jump_impulse(Self self) {
  if (abs(self[hspeed]) > kRunSpeed) return -4.5;
  return round(self[hspeed] / 2) == 0 ? -3.85 : -4.05;
}

void jump_from_ground(Self self) {
  if (jump_pressed(self) && self[jumpnow] == kMayJump && self[state] < kInAir) {
    start_jump(self, jump_impulse(self));
    self[state] = kInAir;
  }
  if (keyboard_check_released(kJumpKey) && self[jumpnow] == kRising) self[jumpnow] = kJumpSpent;
}

// `side` is 1 or -1. Turning against the motion is quicker than building speed.
void accelerate(Self self, int side) {
  if (self[hspeed] * side < kTopSpeed) {
    if (self[isslip] == 1) {
      self[hspeed] += 0.04 * side;
    } else {
      if (self[hspeed] * side < 0) self[hspeed] += kTurnDrag * side;
      self[hspeed] += kStepDrag * side;
    }
  }
  if (self[walljump] == 0) self[direct] = side;
}

void slow_down(Self self) {
  if (self[state] == kInAir && self[disablecontrols] != 1) return; // no friction in the air
  if (self[disablecontrols] == 1)
    apply_friction(self, 0.135);
  else
    apply_friction(self, self[isslip] == 0 ? 0.05 : 0.025);
}

void run(Self self) {
  if (self[isduck] == 1 && self[state] != kInAir) {
    apply_friction(self, 0.05);
    return;
  }
  if (only_key(kRight, kLeft) && has_controls(self))
    accelerate(self, 1);
  else if (only_key(kLeft, kRight) && has_controls(self))
    accelerate(self, -1);
  else
    slow_down(self);
  if (self[state] != kInAir && abs(self[hspeed]) > kTopSpeed) apply_friction(self, 0.025);
}

// Holding jump keeps gravity low until the rise has slowed to a pixel a step.
void fall(Self self) {
  if (self[state] != kInAir && !(self[statedelay] > 0)) return;
  if (self[vspeed] <= -1 && self[jumpnow] == kRising) {
    self[gravity] = 0.1;
  } else {
    self[gravity] = 0.3;
    if (self[jumpnow] == kRising) self[jumpnow] = kJumpSpent;
  }
}

void grab_climbable(Self self) {
  const bool wants = key_down(kUp) || (key_down(kDown) && self[state] == kInAir);
  if (!wants || self[holding] != 0 || !has_controls(self) ||
      !place_meeting(self, self[x], self[y], obj_climb))
    return;
  self[state] = kClimbing;
  self[gravity] = 0;
  self[speed] = 0;
  self[walljump] = 0;
  self[doublejump] = 0;
}

void start_slide(Self self) {
  if (!keyboard_check_pressed(kDown) || !has_controls(self) || self[holding] != 0) return;
  const auto slope_under = [&](double column) {
    return collision_point(self, column, self[bbox_bottom] + 1, obj_slopeparent, kPrecise, false) != noone;
  };
  if (slope_under(self[bbox_right]) != slope_under(self[bbox_left])) make(self[x], self[y], obj_slider);
}

void jump_again(Self self) {
  if (self[state] != kInAir || self[jumpnow] == kRising || self[doublejump] != 0 || !jump_pressed(self) ||
      !jumps_twice(global[powerup]))
    return;
  self[doublejump] = 1;
  start_jump(self, -3.85);
  puff_under_feet(self);
}

void cling_to_wall(Self self) {
  if (self[state] != kInAir || self[isduck] != 0 || self[stompstyle] != 0 || !has_controls(self) ||
      global[velmo] != 0 || !clings(global[powerup]) || !(self[vspeed] > 0) || self[holding] != 0)
    return;
  const bool right = key_down(kRight) && self[direct] == 1 && right_wall(self);
  const bool left = key_down(kLeft) && self[direct] == -1 && left_wall(self);
  if (!right && !left) return;
  self[state] = kClinging;
  self[vspeed] = 0;
  self[gravity] = 0;
  self[direct] = -self[direct];
  self[walljump] = 1;
}

void MoveOnLand(Self self) {
  test_ground(self);
  self[isslip] = touches(self, self[bbox_left], self[bbox_bottom], self[bbox_right], self[bbox_bottom] + 1,
                         obj_slippery, kBoxOnly);
  if (self[vspeed] > 4) self[vspeed] = 4;
  jump_from_ground(self);
  run(self);
  fall(self);
  grab_climbable(self);
  start_slide(self);
  if (global[velmo] == 2)
    self[stompstyle] = 1;
  else if (self[stompstyle] == 1)
    self[stompstyle] = 0;
  jump_again(self);
  cling_to_wall(self);
}

// ---- user event 3: water ----

void stroke(Self self) {
  if (!jump_pressed(self)) return;
  self[vspeed] = key_down(kUp) ? -3.5 : key_down(kDown) && self[isduck] == 0 ? -1 : -2.5;
  audio_play_sound(snd_swim, 0, false);
  self[state] = kInAir;
}

void paddle(Self self, int side) {
  if (self[hspeed] * side < 0) self[hspeed] += kTurnDrag * side;
  self[hspeed] += kStepDrag * side;
  self[direct] = side;
}

void leave_water(Self self) {
  if (place_meeting(self, self[x], self[y], obj_swim)) return;
  self[isswim] = 0;
  self[jumpnow] = kMayJump;
  self[walljump] = 0;
  self[doublejump] = 0;
  if (place_meeting(self, self[x], self[y] + 2, obj_swim)) splash(self);
}

void MoveInWater(Self self) {
  test_ground(self);
  self[gravity] = 0.125;
  if (self[vspeed] > 1.5) self[vspeed] = 1.5;
  stroke(self);

  const bool may_paddle = has_controls(self) && (self[isduck] == 0 || self[state] == kInAir);
  if (only_key(kRight, kLeft) && may_paddle)
    paddle(self, 1);
  else if (only_key(kLeft, kRight) && may_paddle)
    paddle(self, -1);
  else
    apply_friction(self, 0.05);

  const double limit = self[state] == kInAir ? 1.5 : 0.5;
  if (self[hspeed] > limit) self[hspeed] = limit;
  if (self[hspeed] < -limit) self[hspeed] = -limit;

  leave_water(self);
  if (global[velmo] != 2) self[stompstyle] = 0;
}

// ---- user event 4: climbing ----

void Climb(Self self) {
  if (!has_controls(self)) {
    self[speed] = 0;
  } else {
    const int sideways = only_key(kRight, kLeft) - only_key(kLeft, kRight);
    self[hspeed] = sideways;
    if (sideways != 0) self[direct] = sideways;
    self[vspeed] = only_key(kDown, kUp) - only_key(kUp, kDown);
    if (keyboard_check_pressed(kJumpKey)) {
      start_jump(self, -3.75);
      self[state] = kInAir;
    }
  }
  if (!place_meeting(self, self[x], self[y], obj_climb) || feet_probe(self)) {
    self[state] = kStanding;
    self[jumpnow] = kMayJump;
  }
  if (keyboard_check_pressed(kActionKey) && place_meeting(self, self[x], self[y], obj_climb_net)) {
    self[netsmack] = 1;
    self[alarm][4] = 2;
    audio_play_sound(snd_bump, 0, false);
  }
}

// ---- user event 5: clinging; `direct` looks away from the wall ----

bool cling_ends(Self self) {
  if (self[direct] == -1 && (key_down(kLeft) || !right_wall(self))) return true;
  if (self[direct] == 1 && (key_down(kRight) || !left_wall(self))) return true;
  return feet_probe(self);
}

void Cling(Self self) {
  if (cling_ends(self)) {
    self[state] = kInAir;
    self[jumpnow] = kMayJump;
    return;
  }
  self[vspeed] = 1;
  if (jump_pressed(self)) {
    start_jump(self, -3.75);
    self[state] = kInAir;
    puff_under_feet(self);
    self[hspeed] = 3 * self[direct];
  }
}

// ---- user event 1: off something stomped ----

void Bounce(Self self) {
  self[jumpnow] = key_down(kJumpKey) ? kRising : kJumpSpent;
  self[state] = kInAir;
  self[vspeed] = -4;
  if (!ceiling_at(self, self[bbox_top])) self[y] -= 1; // else the next feet probe calls it ground
}

void Kick(Self self) {
  self[iamkicking] = 1;
  self[alarm][6] = 10;
}

// ---- end step: mask and sprite ----

void start_skid_sound(Self self) {
  if (self[skidnow] != kNoSkid) return;
  self[skidnow] = kSkidSound;
  audio_play_sound(snd_skid, 1, true);
}

void show_skid(Self self) {
  self[sprite_index] = scr_tovinskid();
  start_skid_sound(self);
}

bool meter_full() { return first(obj_levelmanager)[pmeter] >= 6; }

bool slides_backwards(Self self) {
  return (self[direct] == 1 && self[hspeed] < -0.001) || (self[direct] == -1 && self[hspeed] > 0.001);
}

void stand_still(Self self) {
  self[image_speed] = 0;
  self[image_index] = 0.99;
}

void show_empty_handed(Self self) {
  if (self[state] == kStanding) {
    stand_still(self);
    self[sprite_index] = scr_tovinwalk();
  } else if (self[state] == kWalking) {
    self[image_speed] = abs(self[hspeed]) / 10;
    if (slides_backwards(self))
      show_skid(self);
    else
      self[sprite_index] = meter_full() ? scr_tovinrun() : scr_tovinwalk();
  } else if (self[state] == kInAir && self[isswim] != 0) {
    self[sprite_index] = scr_tovinswim();
    self[image_speed] = 0;
    self[image_index] = self[vspeed] < 0 ? 1 : 0;
  } else if (self[state] == kInAir) {
    self[sprite_index] = meter_full() ? scr_tovinrunjump() : scr_tovinjump();
  }
}

void show_carrying(Self self) {
  if (self[state] == kStanding) {
    stand_still(self);
  } else if (self[state] == kWalking) {
    self[image_speed] = abs(self[hspeed]) / 10;
  } else if (self[state] == kInAir) {
    self[image_speed] = 0;
    self[image_index] = 2;
  }
  self[sprite_index] = scr_tovinhold();
}

void show_upright(Self self) {
  self[mask_index] = spr_bigmask;
  if (self[holding] == 0)
    show_empty_handed(self);
  else
    show_carrying(self);
  if (self[state] == kClimbing) {
    self[image_speed] = self[speed] != 0 ? 0.15 : 0;
    self[sprite_index] = scr_tovinclimb();
  } else if (self[state] == kClinging) {
    show_skid(self);
  }
  if (self[iamkicking] == 1) self[sprite_index] = scr_tovinkick();
}

void EndStep(Self self) {
  if (self[isduck] == 1) {
    self[mask_index] = spr_smallmask;
    self[sprite_index] = scr_tovinduck();
  } else {
    show_upright(self);
  }
  if (self[sprite_index] != scr_tovinskid() && self[skidnow] == kSkidSound) {
    audio_stop_sound(snd_skid);
    self[skidnow] = kNoSkid;
  }
}

void Draw(Self self) {
  if (self[isflashing] == 1) shader_set(sha_invert);
  draw_sprite_ext(self, self[sprite_index], self[image_index], round(self[x]), self[y], self[direct], 1, 0,
                  c_white, self[image_alpha]);
  if (self[isflashing] == 1) shader_reset();
}

// ---- alarms ----

void Alarm_EmptyHands(Self self) { self[holding] = 0; }
void Alarm_EndNetSmack(Self self) { self[netsmack] = 0; }
void Alarm_EndKick(Self self) { self[iamkicking] = 0; }

void Alarm_SkidSmoke(Self self) {
  if (self[skidnow] == kSkidSound) {
    const bool ahead = self[state] == kClinging ? self[direct] == -1 : self[direct] == 1;
    const Self dust = make(self[x] + (ahead ? 1 : -8), self[y] + 24, obj_smoke);
    dust[sprite_index] = spr_skidsmoke;
    dust[depth] = -6;
  }
  self[alarm][5] = kSkidSmokeSteps;
}

void Alarm_Bubble(Self self) {
  if (self[isswim] == 1) make(self[x] - 2 + 6 * self[direct], self[bbox_top] + 7, obj_bubble);
  self[alarm][7] = 24 + random(96);
}

} // namespace

const EventTable obj_tovin_events = {
    {ev_create, 0, Create},
    {ev_destroy, 0, Destroy},
    {ev_alarm, 0, Alarm_EmptyHands},
    {ev_alarm, 1, hero_blink_off},
    {ev_alarm, 2, hero_blink_on},
    {ev_alarm, 3, hero_end_invincibility},
    {ev_alarm, 4, Alarm_EndNetSmack},
    {ev_alarm, 5, Alarm_SkidSmoke},
    {ev_alarm, 6, Alarm_EndKick},
    {ev_alarm, 7, Alarm_Bubble},
    {ev_step, ev_step_normal, Step},
    {ev_step, ev_step_end, EndStep},
    {ev_other, ev_room_end, RoomEnd},
    {ev_other, ev_user(0), hero_take_damage},
    {ev_other, ev_user(1), Bounce},
    {ev_other, ev_user(2), MoveOnLand},
    {ev_other, ev_user(3), MoveInWater},
    {ev_other, ev_user(4), Climb},
    {ev_other, ev_user(5), Cling},
    {ev_other, ev_user(6), hero_start_invincibility},
    {ev_other, ev_user(7), Kick},
    {ev_draw, ev_draw_normal, Draw},
};

} // namespace vesk
