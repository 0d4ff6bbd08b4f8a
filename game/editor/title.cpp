// obj_titlescreen: one of four scenes, chosen at random, and the prompt.
#include "game/editor/title.h"

#include "game/Game.h"
#include "game/Music.h"
#include "game/editor/interface.h"
#include "game/play/lighting.h"

#include <iterator>

namespace vesk {

namespace {

struct Scene {
  int view_x;
  int background; // -1: as the room has it
  int background_y;
  int light;
};
constexpr int kAsTheRoomHasIt = -272;
constexpr Scene kScenes[] = {
    {0, -1, kAsTheRoomHasIt, make_colour_rgb(32, 32, 64)},
    {768, bg_snow, -192, make_colour_rgb(40, 48, 128)},
    {1536, bg_desert, -400, make_colour_rgb(32, 32, 64)},
    {2304, bg_castlewall, kAsTheRoomHasIt, make_colour_rgb(111, 0, 15)},
};
constexpr int kHotScene = 3;

void Create(Self self) {
  self[blink] = 0;
  self[alarm][0] = 7;
  self[alarm][1] = 2;
  keyboard_unset_map();
}

void RoomStart(Self) {
  const int chosen = irandom(static_cast<int>(std::size(kScenes)) - 1);
  const Scene& scene = kScenes[chosen];
  view_xview[0] = scene.view_x;
  if (scene.background != -1) background_index[0] = scene.background;
  background_y[0] = scene.background_y;
  with(obj_lightmanager, [&](Self light) { light[ambientlight] = scene.light; });
  if (chosen == kHotScene) make(2608, 128, obj_spitbloom_green);
}

void Alarm_Blink(Self self) {
  self[blink] = self[blink] == 0 ? 1 : 0;
  self[alarm][0] = 7;
}

void Alarm_Music(Self) {
  audio_play_sound(Beat, kMusicPriority, true);
  with(obj_persistent, [](Self controller) { controller[activeshader] = sha_bloom; });
}

void PressEnter(Self) {
  if (keyboard_check(kAltKey)) return;
  audio_play_sound(snd_pistolplus, 0, false);
  room_goto(rm_mainmenu);
}

void DrawGui(Self self) {
  if (self[blink] == 0) return;
  draw_set_font(global[font]);
  draw_set_halign(fa_center);
  draw_text(192, 148, "Press Start/Enter");
  draw_set_halign(fa_left);
}

void Shine(Self self) {
  draw_sprite_ext(self, spr_titlevignette, 0, 78, 16, 1, 1, 0, make_colour_rgb(128, 116, 78), 1);
}

} // namespace

void become_candle(Self torch) { torch[sprite_index] = spr_candlefire; }

const EventTable obj_titlescreen_events = {
    {ev_create, 0, Create},
    {ev_alarm, 0, Alarm_Blink},
    {ev_alarm, 1, Alarm_Music},
    {ev_other, ev_room_start, RoomStart},
    {ev_other, ev_user(kGivesLight), Shine},
    {ev_draw, ev_gui, DrawGui},
    {ev_keypress, kEnterKey, PressEnter},
};

} // namespace vesk
