// What a section's settings bring: the animated background and the music of suspense.
#include "game/Game.h"

#include <iterator>

namespace vesk {

namespace {

// ---- obj_bganimator ----

struct Animation {
  int firstFrame, frames;
};
constexpr Animation kAnimations[] = {{bg_ice_0, 6}, {bg_leaves_0, 3}, {bg_leaves_red_0, 3}};

void AnimatorCreate(Self self) {
  self[numb] = 0;
  self[alarm][0] = 1;
}

void AnimatorAlarm_Choose(Self self) {
  for (const Animation& row : kAnimations) {
    if (background_index[0] != row.firstFrame) continue;
    for (int frame = 0; frame < row.frames; ++frame) self[anibg][frame] = row.firstFrame + frame;
    self[alarm][1] = 1;
  }
}

void AnimatorAlarm_Next(Self self) {
  background_index[0] = self[anibg][self[numb]];
  self[numb] += 1;
  if (self[numb] >= ArrayLength1d(self[anibg].value())) self[numb] = 0;
  self[alarm][1] = 7;
}

// ---- obj_suspense ----

void SuspenseCreate(Self self) {
  self[suspense] = -1;
  self[obj] = obj_ghost;
  self[alarm][0] = 4;
}

// Ends the wait at the start only: what is heard by then stays known as heard.
void SuspenseAlarm_Ready(Self self) {
  if (self[suspense] == -1) self[suspense] = 0;
}

void SuspenseEndStep(Self self) {
  const double left = view_xview[0], top = view_yview[0];
  const bool in_view = collision_rectangle(self, left, top, left + view_wview[0].Get(),
                                           top + view_hview[0].Get(), self[obj], false, false) != noone;
  if (self[suspense] == 0 && in_view) {
    audio_play_sound(snd_horror2, 1, true);
    self[suspense] = 1;
  } else if (self[suspense] != 0 && !in_view) {
    audio_stop_sound(snd_horror2);
    self[suspense] = 0;
  }
}

void SuspenseRoomEnd(Self self) {
  if (self[suspense] == 1) audio_stop_sound(snd_horror2);
}

} // namespace

const EventTable obj_bganimator_events = {
    {ev_create, 0, AnimatorCreate},
    {ev_alarm, 0, AnimatorAlarm_Choose},
    {ev_alarm, 1, AnimatorAlarm_Next},
};

const EventTable obj_suspense_events = {
    {ev_create, 0, SuspenseCreate},
    {ev_alarm, 0, SuspenseAlarm_Ready},
    {ev_step, ev_step_end, SuspenseEndStep},
    {ev_other, ev_room_end, SuspenseRoomEnd},
};

} // namespace vesk
