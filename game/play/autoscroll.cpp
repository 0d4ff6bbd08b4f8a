// obj_autoscroll: leads the camera along path markers and crushes a hero that can't keep up.
#include "game/Game.h"
#include "game/play/hero.h"

namespace vesk {

namespace {

void Create(Self self) {
  self[follow_y] = 0;
  self[speed] = 0.5;
}

bool solid_in_column(Self hero, double column) {
  return collision_rectangle(hero, column, hero[bbox_top] + 2, column, hero[y] + 30, obj_solid, true,
                             false) != noone;
}

void kill(Self hero) {
  hero[damage] = hero::kFatalDamage;
  event_user(hero, hero::kTakeDamage);
}

void crush(Self hero) {
  const double left = view_xview[0], right = left + view_wview[0].Get();
  const double bottom = view_yview[0].Get() + view_hview[0].Get();
  const bool squeezed = (hero[x] < left + 6 && solid_in_column(hero, hero[x] + 5)) ||
                        (hero[x] > right - 6 && solid_in_column(hero, hero[x] - 5));
  if (squeezed) {
    kill(hero);
  } else if (hero[bbox_top] > bottom) {
    hero[y] = bottom - 16;
    hero[vspeed] = -4;
    kill(hero);
  }
}

void Step(Self self) {
  const Self hero = first(obj_tovin);
  if (!hero) {
    if (instance_exists(obj_deadtovin)) self[speed] = 0;
    return;
  }
  if (self[follow_y] == 1)
    self[y] = hero[y];
  else if (hero[y] < view_yview[0] - 48)
    hero[y] = view_yview[0] - 48;
  if (first(obj_levelmanager)[barrier] == 0) crush(hero);
}

template <int kDegrees> void Turn(Self self) { self[direction] = kDegrees; }
template <int kDegrees> void TurnUnlessFollowing(Self self) {
  if (self[follow_y] != 1) self[direction] = kDegrees;
}
void Halt(Self self) { self[speed] = 0; }
void TakeSpeed(Self self, Other marker) { self[speed] = marker[setspeed]; }

} // namespace

const EventTable obj_autoscroll_events = {
    {ev_create, 0, Create},
    {ev_step, ev_step_normal, Step},
    {ev_collision, obj_left, Turn<180>},
    {ev_collision, obj_right, Turn<0>},
    {ev_collision, obj_up, TurnUnlessFollowing<90>},
    {ev_collision, obj_down, TurnUnlessFollowing<270>},
    {ev_collision, obj_endmarker, Halt},
    {ev_collision, obj_speedmarker, TakeSpeed},
    {ev_collision, obj_clockwise, TurnUnlessFollowing<45>},
    {ev_collision, obj_cclockwise, TurnUnlessFollowing<135>},
    {ev_collision, obj_clockwiseb, TurnUnlessFollowing<225>},
    {ev_collision, obj_cclockwiseb, TurnUnlessFollowing<315>},
};

} // namespace vesk
