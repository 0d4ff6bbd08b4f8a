// How the hero looks: mask, sprite and frame after the motion of the step; the sound and smoke of skidding.
#include "game/Game.h"
#include "game/play/effects.h"
#include "game/play/hero.h"
#include "game/play/hero_sprites.h"
#include "game/play/pmeter.h"

namespace vesk::hero {

namespace {

constexpr int kKickSteps = 10;

// ---- skidding ----

void show_skid(Self self) {
  self[sprite_index] = scr_tovinskid();
  if (self[skidnow] != kNoSkid) return;
  self[skidnow] = kSkidSound;
  audio_play_sound(snd_skid, 1, true);
}

void end_skid_sound(Self self) {
  if (self[sprite_index] == scr_tovinskid() || self[skidnow] != kSkidSound) return;
  audio_stop_sound(snd_skid);
  self[skidnow] = kNoSkid;
}

bool slides_backwards(Self self) {
  return (self[direct] == 1 && self[hspeed] < -0.001) || (self[direct] == -1 && self[hspeed] > 0.001);
}

// ---- poses ----

void pose_standing(Self self) {
  self[image_speed] = 0;
  self[image_index] = 0.99;
}

void pose_walking(Self self) { self[image_speed] = abs(self[hspeed]) / 10; }

void show_empty_handed(Self self) {
  if (self[state] == kStanding) {
    pose_standing(self);
    self[sprite_index] = scr_tovinwalk();
  } else if (self[state] == kWalking) {
    pose_walking(self);
    if (slides_backwards(self))
      show_skid(self);
    else
      self[sprite_index] = meter_is_full() ? scr_tovinrun() : scr_tovinwalk();
  } else if (self[state] == kInAir && self[isswim] != 0) {
    self[sprite_index] = scr_tovinswim();
    self[image_speed] = 0;
    self[image_index] = self[vspeed] < 0 ? 1 : 0;
  } else if (self[state] == kInAir) {
    self[sprite_index] = meter_is_full() ? scr_tovinrunjump() : scr_tovinjump();
  }
}

void show_carrying(Self self) {
  if (self[state] == kStanding) {
    pose_standing(self);
  } else if (self[state] == kWalking) {
    pose_walking(self);
  } else if (self[state] == kInAir) {
    self[image_speed] = 0;
    self[image_index] = 2;
  }
  self[sprite_index] = scr_tovinhold();
}

void show_upright(Self self) {
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

} // namespace

// ---- events ----

void ChooseLook(Self self) {
  if (self[isduck] == 1) {
    self[mask_index] = spr_smallmask;
    self[sprite_index] = scr_tovinduck();
  } else {
    self[mask_index] = spr_bigmask;
    show_upright(self);
  }
  end_skid_sound(self);
}

void Draw(Self self) {
  if (self[isflashing] == 1) shader_set(sha_invert);
  draw_sprite_ext(self, self[sprite_index], self[image_index], round(self[x]), self[y], self[direct], 1, 0,
                  c_white, self[image_alpha]);
  if (self[isflashing] == 1) shader_reset();
}

void Kick(Self self) {
  self[iamkicking] = 1;
  self[alarm][kEndKick] = kKickSteps;
}

void Alarm_EndKick(Self self) { self[iamkicking] = 0; }

void Alarm_SkidSmoke(Self self) {
  if (self[skidnow] == kSkidSound) {
    const bool ahead = self[state] == kClinging ? self[direct] == -1 : self[direct] == 1;
    make_smoke(self[x] + (ahead ? 1 : -8), self[y] + 24, spr_skidsmoke);
  }
  self[alarm][kSkidSmoke] = kSkidSmokeSteps;
}

} // namespace vesk::hero
