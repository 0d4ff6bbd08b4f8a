// Checkpoints and the goal: posts with a flag that the hero takes, and the end of a level.
#include "Files/Font/Font.h"
#include "game/Game.h"
#include "game/play/enter_leave.h"
#include "game/text.h"

namespace vesk {

namespace {

// ---- posts ----

void PostCreate(Self self) {
  self[flag] = spr_flag_drommel;
  self[image_speed] = 0.15;
  self[frame] = 0;
}

// The post is a picture of one frame, so the flag has a frame of its own.
void PostStep(Self self) { self[frame] += self[image_speed]; }

bool is_free(Self post) { return post[flag] == spr_flag_drommel; }

void take(Self post) {
  audio_play_sound(snd_whistle, 0, false);
  make(post[x] + 18, post[y] + 24, obj_spinthump);
}

void PostDraw(Self self) {
  draw_sprite(self, self[sprite_index], 0, self[x], self[y]);
  draw_sprite(self, self[flag], floor(self[frame]), self[x] + 10, self[y] + 16);
}

void CheckpointMeetsHero(Self self) {
  if (!is_free(self) || instance_exists(obj_spinthump)) return;
  with(obj_checkpoint, [](Self post) { post[flag] = spr_flag_drommel; });
  self[flag] = spr_flag_tovin;
  global[checkpoint_x] = self[x] + 8;
  global[checkpoint_y] = self[y] + 16;
  global[checkpoint_section] = global[section];
  global[onoffblockprev] = global[onoffblock];
  with(obj_watershader, [](Self water) { global[waterlevelprev] = water[target]; });
  health = 25;
  take(self);
}

void CheckpointRoomStart(Self self) {
  if (global[checkpoint_section].value().Text() != global[section].value().Text()) return;
  if (instance_position(global[checkpoint_x], global[checkpoint_y], self.number()) != noone)
    self[flag] = spr_flag_tovin;
}

void GoalMeetsHero(Self self) {
  if (!is_free(self)) return;
  with(obj_goalpost, [](Self post) { post[flag] = spr_flag_tovin; });
  make(0, 0, obj_levelender);
  take(self);
}

// ---- the end of a level ----

constexpr double kNameRoom = 360; // pixels of the level's name
constexpr int kGold = 248 + 192 * 256 + 40 * 65536;

// Coins turn into score in strokes; the largest that still leaves the lower steps something to count.
struct Stroke {
  int above, coins, points;
};
constexpr Stroke kStrokes[] = {{200, 100, 10000}, {10, 10, 1000}, {0, 1, 100}};

void EnderCreate(Self self) {
  self[ready] = 0;
  with(obj_levelmanager, [](Self manager) { event_user(manager, 3); });
  with(obj_tovin, [](Self hero) {
    hero[invincible] = 1;
    hero[disablecontrols] = 1;
  });
  audio_play_sound(snd_flagsong, 1, false);
  self[alarm][0] = 540;
  global[clear] = 1;
}

void Alarm_CountCoins(Self self) {
  for (const Stroke& stroke : kStrokes) {
    if (!(global[coins] > stroke.above)) continue;
    audio_stop_sound(snd_coin);
    audio_play_sound(snd_coin, 0, false);
    self[alarm][0] = 4;
    global[coins] -= stroke.coins;
    score += stroke.points;
    return;
  }
  audio_play_sound(snd_powershot, 0, false);
  self[ready] = 1;
}

void EnderDrawGui(Self self) {
  draw_set_halign(fa_center);
  draw_set_colour(kGold);
  draw_text_transformed(192, 36, "Level Cleared!", 2, 2, 0);
  draw_set_colour(c_white);
  draw_text(192, 60, drawable_name(global[levelname].text(), kNameRoom));
  if (self[ready] == 1) draw_text(192, 184, "Press any button to continue.");
  draw_set_halign(fa_left);
}

void EnderAnyKey(Self self) {
  if (self[ready] == 1) scr_return();
}

} // namespace

const EventTable obj_checkpoint_events = {
    {ev_create, 0, PostCreate},
    {ev_step, ev_step_normal, PostStep},
    {ev_collision, obj_tovin, CheckpointMeetsHero},
    {ev_other, ev_room_start, CheckpointRoomStart},
    {ev_draw, ev_draw_normal, PostDraw},
};

const EventTable obj_goalpost_events = {
    {ev_create, 0, PostCreate},
    {ev_step, ev_step_normal, PostStep},
    {ev_collision, obj_tovin, GoalMeetsHero},
    {ev_draw, ev_draw_normal, PostDraw},
};

const EventTable obj_levelender_events = {
    {ev_create, 0, EnderCreate},
    {ev_alarm, 0, Alarm_CountCoins},
    {ev_draw, ev_gui, EnderDrawGui},
    {ev_keypress, 1, EnderAnyKey},
};

} // namespace vesk
