#pragma once
// obj_tovin: the hero while the player controls it. Its rules stand in rooms, a file each; hero.cpp has the
// order of the step and the table of events. Events begin with a capital, their steps with a small letter.
//
// Speeds are pixels a step. The body's centre is x, the feet stand at y + 31: a floor at height T carries
// the hero at y = T - 32.
#include "Files/Code/Self.h"

namespace vesk::hero {

// ---- words of the rules ----

enum State { kStanding, kWalking, kInAir, kClimbing, kClinging };
enum Jump { kMayJump, kRising, kJumpSpent };
enum Skid { kNoSkid, kSkidSound, kSliding };

// What hits the hero sets `damage` and runs kTakeDamage; what is stomped runs kBounce, what is kicked kKick.
enum UserEvent {
  kTakeDamage,
  kBounce,
  kMoveOnLand,
  kMoveInWater,
  kClimb,
  kCling,
  kStartInvincibility,
  kKick
};
enum Alarm {
  kEmptyHands,
  kBlinkOff,
  kBlinkOn,
  kEndInvincibility,
  kEndNetSmack,
  kSkidSmoke,
  kEndKick,
  kBubble
};

// ---- hero_terrain: what the hero stands on and meets ----

// Probes.
bool ground_under_feet(Self self);
bool ice_under_feet(Self self);
bool right_wall(Self self);
bool left_wall(Self self);
bool under_ceiling(Self self); // solid in the top row of the mask
bool may_stand_up(Self self);

void land_on_tops(Self self);
void stick_to_descending_slope(Self self);
void stand_on_slope(Self self);
void meet_walls(Self self);
void meet_ceiling(Self self);
void keep_in_room(Self self);
void test_ground(Self self); // standing, walking or in the air

// ---- hero_land: the keys; run, jump, fall and duck ----

inline constexpr double kRunSpeed = 2.8; // above it: the long jump, the P-meter
inline constexpr double kFriction = 0.05;

// 1 with the one key held, -1 with the other; 0 with both or none.
int axis(int negative_key, int positive_key);
bool has_controls(Self self);
bool jump_pressed(Self self); // in this step; the controls are the hero's
int steering(Self self);      // 1 right, -1 left; 0 also without controls

void apply_friction(Self self, double amount);
void gain_speed(Self self, int side); // to the right (1) or to the left (-1)
void start_jump(Self self, double impulse);
void puff_under_feet(Self self);
bool runs(Self self);

void duck(Self self);
void MoveOnLand(Self self);
void Bounce(Self self); // off something stomped

// ---- hero_water ----

void enter_water(Self self);
double steps_to_bubble();
void MoveInWater(Self self);
void Alarm_Bubble(Self self);

// ---- hero_climb: climbables, nets and clinging to walls ----

void grab_climbable(Self self);
void cling_to_wall(Self self);
void Climb(Self self);
void Cling(Self self);
void Alarm_EndNetSmack(Self self);

// ---- hero_look: mask, sprite, frame; skidding as it sounds and smokes ----

inline constexpr int kSkidSmokeSteps = 8;

void ChooseLook(Self self);
void Draw(Self self);
void Kick(Self self);
void Alarm_EndKick(Self self);
void Alarm_SkidSmoke(Self self);

// ---- hero_damage: hits and what follows them ----

inline constexpr int kFatalDamage = 25; // the whole health bar

void TakeDamage(Self self);
void StartInvincibility(Self self);
void Alarm_BlinkOff(Self self);
void Alarm_BlinkOn(Self self);
void Alarm_EndInvincibility(Self self);

} // namespace vesk::hero
