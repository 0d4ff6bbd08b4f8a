// obj_slider: drives the hero down a slope while the down key is held.
#include "game/Game.h"
#include "game/Keys.h"
#include "game/play/effects.h"
#include "game/play/hero.h"
#include "game/play/hero_sprites.h"

namespace vesk {

namespace {

constexpr int kDustSteps = 8;
constexpr double kTopSpeed = 3;

bool slope_in(Self self, double left, double top, double right, double bottom) {
  return collision_rectangle(self, left, top, right, bottom, obj_slopeparent, true, false) != noone;
}
// `column` is the foot's column of the hero.
bool slope_under(Self hero, double column) {
  return slope_in(hero, column, hero[bbox_bottom], column, hero[bbox_bottom] + 2);
}

void Create(Self self) {
  with(obj_tovin, [&](Self hero) {
    hero[invincible] = 1;
    hero[disablecontrols] = 1;
    hero[skidnow] = hero::kSliding;
    hero[hitpoint] = 0;
    self[hspeed] = hero[hspeed];
    self[direct] = hero[direct];
  });
  audio_stop_sound(snd_skid);
  self[sprite_index] = scr_tovinslide();
  self[mask_index] = spr_bigmask;
  self[alarm][0] = kDustSteps;
}

void Destroy(Self) {
  with(obj_tovin, [](Self hero) {
    hero[invincible] = 0;
    hero[disablecontrols] = 0;
    hero[skidnow] = hero::kNoSkid;
  });
}

void take_along(Self self, Self hero) {
  hero[hspeed] = self[hspeed];
  hero[direct] = self[direct];
  hero[x] = self[x];
  hero[invincible] = 1;
  self[y] = hero[y];
}

void change_speed(Self self, Self hero) {
  const bool right = slope_under(hero, hero[bbox_right]);
  const bool left = slope_under(hero, hero[bbox_left]);
  if (right) self[hspeed] -= 0.1;
  if (left) self[hspeed] += 0.1;
  if (self[hspeed] > kTopSpeed) self[hspeed] = kTopSpeed;
  if (self[hspeed] < -kTopSpeed) self[hspeed] = -kTopSpeed;
  self[friction] = hero[state] < hero::kInAir && !right && !left ? 0.1 : 0;
}

bool has_run_out(Self self) { return self[friction] != 0 && abs(self[hspeed]) < 0.05; }

bool solid_ahead(Self self, Self hero) {
  const double from = self[hspeed] > 0 ? hero[bbox_right].Get() : hero[bbox_left].Get();
  const double to = from + self[hspeed].Get() + (self[hspeed] > 0 ? 1 : -1);
  return collision_rectangle(hero, from, hero[bbox_top] + 4, to, hero[bbox_bottom] - 1, obj_solid, true,
                             false) != noone;
}

void Step(Self self) {
  const Self hero = first(obj_tovin);
  if (!hero || !keyboard_check(kDownKey)) {
    instance_destroy(self);
    return;
  }
  take_along(self, hero);
  change_speed(self, hero);
  if (has_run_out(self) || (self[hspeed] != 0 && solid_ahead(self, hero))) instance_destroy(self);
}

// Behind the hero's own end step, which chose another picture.
void EndStep(Self self) {
  with(obj_tovin, [&](Self hero) {
    hero[sprite_index] = self[sprite_index];
    hero[image_index] = self[image_index];
  });
}

void Alarm_Dust(Self self) {
  const Real foot = self[bbox_bottom] + 0;
  const auto puff = [&](double at) { make_smoke(at, self[y] + 24, spr_skidsmoke); };
  if (slope_in(self, self[bbox_left] - 3, foot, self[bbox_left], foot + 2)) puff(self[x] - 8);
  if (slope_in(self, self[bbox_right], foot, self[bbox_right] + 3, foot + 2)) puff(self[x] + 1);
  self[alarm][0] = kDustSteps;
}

void MeetsEnemy(Self, Other enemy) {
  if (enemy[hardness] < 99) event_user(enemy, 0);
}

} // namespace

const EventTable obj_slider_events = {
    {ev_create, 0, Create},          {ev_destroy, 0, Destroy},
    {ev_alarm, 0, Alarm_Dust},       {ev_step, ev_step_normal, Step},
    {ev_step, ev_step_end, EndStep}, {ev_collision, obj_enemyparent, MeetsEnemy},
};

} // namespace vesk
