// obj_pausemenu: the frozen picture, blurred, and three entries over it.
#include "game/Game.h"
#include "game/Keys.h"
#include "game/play/enter_leave.h"

namespace vesk {

namespace {

constexpr int kGold = make_colour_rgb(248, 192, 40);
enum Entry { kContinue, kRestart, kLeave, kEntries };

void Create(Self self) {
  self[back] = background_create_from_surface(application_surface(), 0, 0, 640, 480, false, false);
  instance_deactivate_all(self, true);
  instance_activate_object(obj_persistent);
  audio_play_sound(snd_pause, 0, false);
  self[menu_choice] = kContinue;
  self[menu][kContinue] = "Continue";
  self[menu][kRestart] = "Restart Level";
  self[menu][kLeave] = global[gamemode] != 0 ? "Return to Main Menu" : "Return to Editor";
}

void delete_picture(Self self) {
  if (background_exists(self[back])) background_delete(self[back]);
  self[back] = -1;
}

void Resume(Self self) {
  instance_activate_all();
  delete_picture(self);
  audio_play_sound(snd_pause, 0, false);
  instance_destroy(self);
}

void choose_by(Self self, int step) {
  const int choice = static_cast<int>(self[menu_choice]) + step;
  if (choice < 0 || choice >= kEntries) return;
  self[menu_choice] = choice;
  audio_play_sound(snd_reload, 0, false);
}
void PressUp(Self self) { choose_by(self, -1); }
void PressDown(Self self) { choose_by(self, 1); }

void PressEnter(Self self) {
  if (!keyboard_check(kAltKey)) event_user(self, 0);
}

void leave_level(Self self) {
  // Awake, so that their room ends free what they hold.
  instance_activate_object(obj_levelmanager);
  instance_activate_object(obj_lightmanager);
  with(obj_levelmanager, [](Self manager) { event_perform(manager, ev_alarm, 1); });
  delete_picture(self);
  audio_stop_all();
  audio_play_sound(snd_pistolplus, 0, false);
}

void Confirm(Self self) {
  if (self[menu_choice] == kContinue) {
    event_user(self, 0);
    keyboard_clear(kJumpKey);
    return;
  }
  leave_level(self);
  if (self[menu_choice] == kRestart) {
    global[section] = "Main";
    scr_clearvars();
    room_restart();
  } else {
    scr_return();
  }
}

void Draw(Self self) {
  if (!background_exists(self[back])) return;
  draw_enable_alphablend(false);
  shader_set(sha_blur);
  draw_background(self[back], view_xview[0], view_yview[0]);
  shader_reset();
  draw_enable_alphablend(true);
}

void DrawGui(Self self) {
  draw_set_halign(fa_center);
  draw_sprite_ext(self, spr_pause, 0, 192, 108, 1, 1, 0, c_white, 0.7f);
  draw_set_alpha(0.8f);
  for (int entry = 0; entry < kEntries; ++entry) {
    draw_set_colour(self[menu_choice] == entry ? kGold : c_white);
    draw_text(192, static_cast<float>(88 + 16 * entry), self[menu][entry].text());
  }
  draw_set_colour(c_white);
  draw_set_halign(fa_left);
  draw_set_alpha(1);
}

} // namespace

const EventTable obj_pausemenu_events = {
    {ev_create, 0, Create},
    {ev_other, ev_user(0), Resume},
    {ev_keypress, kUpKey, PressUp},
    {ev_keypress, kDownKey, PressDown},
    {ev_keypress, kEnterKey, PressEnter},
    {ev_keypress, kJumpKey, Confirm},
    {ev_other, ev_room_end, delete_picture},
    {ev_draw, ev_draw_normal, Draw},
    {ev_draw, ev_gui, DrawGui},
};

} // namespace vesk
