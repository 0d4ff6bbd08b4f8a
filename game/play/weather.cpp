// The storm of a section: rain, thunder, lightning that lifts the darkness.
#include "game/Game.h"
#include "game/play/lighting.h"

namespace vesk {

namespace {

// ---- obj_stormmaker ----

constexpr int kDropsAStep = 2;
constexpr int kBandBeyondView = 480; // pixels to the right of the view, from where drops fall into it

void StormCreate(Self self) {
  self[alarm][0] = 100 + random(60);
  self[alarm][1] = 2;
}

void StormAlarm_Lightning(Self self) {
  make(0, 0, obj_lightningsheet);
  audio_play_sound(snd_thunder, 0, false);
  self[alarm][0] = 130 + random(120);
}

void StormAlarm_Sound(Self) { audio_play_sound(snd_rain, 1, true); }

void StormStep(Self) {
  for (int drop = 0; drop < kDropsAStep; ++drop)
    make(view_xview[0] + random(view_wview[0] + kBandBeyondView), view_yview[0] - 8, obj_rain);
}

void StormRoomEnd(Self) { audio_stop_sound(snd_rain); }

// ---- obj_rain ----

void DropCreate(Self self) {
  self[image_alpha] = 0.7;
  self[direction] = 225;
  self[speed] = 3 + random(1);
}

void DropStep(Self self) {
  if (self[y] > room_height) instance_destroy(self);
}

// ---- obj_lightningsheet: four steps up to full brightness, four back ----

constexpr int kFadeStep = 64;
constexpr int kFull = 255;

void SheetCreate(Self self) {
  self[fade] = 0;
  self[ready] = 0;
}

void SheetStep(Self self) {
  if (self[fade] > kFull) self[ready] = 1;
  self[fade] += self[ready] == 0 ? kFadeStep : -kFadeStep;
  if (self[fade] < 1) instance_destroy(self);
}

void SheetShine(Self self) {
  const int grey = min(self[fade], kFull);
  draw_set_colour(make_colour_rgb(grey, grey, grey));
  draw_rectangle(0, 0, view_wview[0], view_hview[0], false);
  draw_set_colour(c_white);
}

} // namespace

const EventTable obj_stormmaker_events = {
    {ev_create, 0, StormCreate},           {ev_alarm, 0, StormAlarm_Lightning},
    {ev_alarm, 1, StormAlarm_Sound},       {ev_step, ev_step_normal, StormStep},
    {ev_other, ev_room_end, StormRoomEnd},
};

const EventTable obj_rain_events = {
    {ev_create, 0, DropCreate},
    {ev_step, ev_step_normal, DropStep},
};

const EventTable obj_lightningsheet_events = {
    {ev_create, 0, SheetCreate},
    {ev_step, ev_step_normal, SheetStep},
    {ev_other, ev_user(kGivesLight), SheetShine},
};

} // namespace vesk
