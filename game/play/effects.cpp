// Short effects: puffs that play once, stars, bubbles, blood.
#include "game/play/effects.h"

#include "Files/Path/Function_Path.h"
#include "Files/Path/Path.h"
#include "game/Game.h"

namespace vesk {

namespace {

void AnimateFast(Self self) { self[image_speed] = 0.3; }
void AnimateSlowly(Self self) { self[image_speed] = 0.2; }
void End(Self self) { instance_destroy(self); }

// ---- obj_spinsmoke: four stars fly out of the middle of its cell ----

void StarsCreate(Self self) {
  audio_play_sound(snd_spinstomp, 0, false);
  self[image_speed] = 0.3;
  self[starx] = 0;
  self[stary] = 0;
  self[alarm][0] = 16;
}

void StarsStep(Self self) {
  self[starx] += 2;
  self[stary] += 1;
}

void StarsDraw(Self self) {
  for (const int right : {-1, 1})
    for (const int down : {-1, 1})
      draw_sprite(self, spr_spinstar, -1, self[x] + 8 + right * self[starx],
                  self[y] + 8 + down * self[stary]);
}

// ---- obj_bubble ----

void BubbleCreate(Self self) {
  self[image_alpha] = 0.8;
  path_start(self, pth_bubbles, 0.5, path_action_continue, false);
}

void BubbleStep(Self self) {
  if (!place_meeting(self, self[x], self[y], obj_swim)) instance_destroy(self);
}

// ---- obj_gore and the stain it leaves ----

void GoreCreate(Self self) {
  self[gravity] = 0.4;
  self[speed] = 2 + random(2);
  self[friction] = 0.05;
  self[direction] = random(180);
  self[image_angle] = random(360);
  self[alarm][0] = 6;
}

void GoreAlarm_Stain(Self self) { make(self[x], self[y], obj_bloodstain); }

void StainCreate(Self self) {
  self[image_speed] = 0;
  self[image_index] = irandom(7);
  self[image_alpha] = 0.2;
  self[gravity] = 0.05;
}

} // namespace

void make_smoke(double left, double top, int sprite) {
  const Self smoke = make(left, top, obj_smoke);
  smoke[sprite_index] = sprite;
  smoke[depth] = -6;
}

const EventTable obj_smoke_events = {{ev_create, 0, AnimateFast}, {ev_other, ev_animation_end, End}};
const EventTable obj_spinthump_events = {{ev_create, 0, AnimateFast}, {ev_other, ev_animation_end, End}};
const EventTable obj_statuesmoke_events = {{ev_create, 0, AnimateSlowly}, {ev_other, ev_animation_end, End}};
const EventTable obj_sparkletrail_events = {{ev_create, 0, AnimateSlowly}, {ev_other, ev_animation_end, End}};

const EventTable obj_spinsmoke_events = {
    {ev_create, 0, StarsCreate},
    {ev_alarm, 0, End},
    {ev_step, ev_step_normal, StarsStep},
    {ev_draw, ev_draw_normal, StarsDraw},
};

const EventTable obj_bubble_events = {
    {ev_create, 0, BubbleCreate},
    {ev_step, ev_step_normal, BubbleStep},
    {ev_collision, obj_solid, End},
};

const EventTable obj_gore_events = {
    {ev_create, 0, GoreCreate},
    {ev_alarm, 0, GoreAlarm_Stain},
    {ev_other, ev_outside, End},
};

const EventTable obj_bloodstain_events = {
    {ev_create, 0, StainCreate},
    {ev_other, ev_outside, End},
};

} // namespace vesk
