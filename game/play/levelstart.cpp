// How a level opens, and how it opens again after a death.
#include "Files/Font/Font.h"
#include "game/Game.h"

#include <array>
#include <tuple>

namespace vesk {

namespace {

constexpr std::array kAfterDeath = {
    "Better luck next time!", "You can do it!",     "Whoops...", "That looked painful!", "Ouch!", "Dang it!",
    "What the heck?",         "Was that a glitch?", "Git gud.",  "What happened?",       "Oops.",
};
// Whistling in the dark, for sections with the horror music.
constexpr std::array kAfterHorror = {
    "I'm fine! Really!", "That was nothing!", "Who's scared? Not me!", "Boo yourself!",
    "One more time!",    "Ha! Missed me!",    "Lights on, here I go!",
};

template <class Phrases> const char* any_of(const Phrases& phrases) {
  return std::apply([](auto... phrase) { return choose(phrase...); }, phrases);
}

// ---- obj_tovinstart: a black screen with a text ----

void StartCreate(Self self) {
  self[alarm][0] = 15;
  global[coins] = 0;
  score = 0;
  self[mode] = 0;
  self[text] = "Level Start!";
  if (global[died] != 1) return;
  if (global[levelmusic] == snd_horror) {
    self[mode] = 1;
    self[text] = any_of(kAfterHorror);
  } else {
    self[text] = any_of(kAfterDeath);
  }
}

void StartAlarm_Show(Self self) {
  self[visible] = 1;
  self[alarm][1] = 60;
}

void StartAlarm_Go(Self self) {
  instance_activate_all();
  with(obj_persistent, [](Self controller) { controller[done] = 0; });
  instance_destroy(self);
}

void StartDraw(Self) { draw_clear(c_black); }

void StartDrawGui(Self self) {
  draw_set_halign(fa_center);
  draw_set_font(global[font]);
  draw_set_colour(self[mode] == 1 ? c_red : c_white);
  draw_text_transformed(192, 100, self[text].text(), 2, 2, 0);
  draw_set_colour(c_white);
  draw_set_halign(fa_left);
}

// ---- obj_deadtovin ----

void DeadCreate(Self self) {
  global[died] = 1;
  health = 0;
  self[alarm][0] = 1;
  self[alarm][1] = 200;
  audio_play_sound(snd_die, 0, false);
  self[i] = 8;
}

void DeadAlarm_Bleed(Self self) {
  make(self[x], self[y] + 16, obj_gore);
  self[i] -= 1;
  if (self[i] > 0) self[alarm][0] = 7;
}

void DeadAlarm_Restart(Self) {
  global[tovinstart] = 0;
  global[carrieditem] = noone;
  global[carriedsprite] = noone;
  global[shallihold] = 0;
  global[pswitch] = 0;
  global[star] = 0;
  global[ammo] = 0;
  global[onoffblock] = global[onoffblockprev];
  global[velmo] = 0;
  global[postchange] = -1;
  health = 25;
  global[clear] = 0;
  global[section] = global[checkpoint_section];
  room_restart();
}

} // namespace

const EventTable obj_tovinstart_events = {
    {ev_create, 0, StartCreate},          {ev_alarm, 0, StartAlarm_Show},  {ev_alarm, 1, StartAlarm_Go},
    {ev_draw, ev_draw_normal, StartDraw}, {ev_draw, ev_gui, StartDrawGui},
};

const EventTable obj_deadtovin_events = {
    {ev_create, 0, DeadCreate},
    {ev_alarm, 0, DeadAlarm_Bleed},
    {ev_alarm, 1, DeadAlarm_Restart},
};

} // namespace vesk
