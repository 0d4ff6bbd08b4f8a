// obj_score: points that rise and fade. Its maker runs the user event of the amount at once.
#include "game/Game.h"

namespace vesk {

namespace {

void Create(Self self) {
  self[vspeed] = -3;
  self[friction] = 0.05;
}

void Step(Self self) {
  if (self[vspeed] == 0) instance_destroy(self);
}

template <int kPoints, int kSprite> void Award(Self self) {
  score += kPoints;
  self[sprite_index] = kSprite;
}

} // namespace

const EventTable obj_score_events = {
    {ev_create, 0, Create},
    {ev_step, ev_step_normal, Step},
    {ev_other, ev_user(0), Award<100, spr_100pts>},
    {ev_other, ev_user(1), Award<200, spr_200pts>},
    {ev_other, ev_user(2), Award<400, spr_400pts>},
    {ev_other, ev_user(3), Award<800, spr_800pts>},
    {ev_other, ev_user(4), Award<1000, spr_1000pts>},
    {ev_other, ev_user(5), Award<2000, spr_2000pts>},
    {ev_other, ev_user(6), Award<4000, spr_4000pts>},
};

} // namespace vesk
