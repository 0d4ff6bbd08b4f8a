// obj_persistent: the one instance that lives through the whole run. Set-up, settings, fades between rooms,
// the final picture, Alt commands. The translation of the gamepad stands in gamepad.cpp.
#include "Files/IO/Gamepad.h"
#include "Files/Runner/Function_Runner.h"
#include "game/Game.h"
#include "game/Keys.h"
#include "game/editor/interface.h"
#include "game/level/files.h"
#include "game/play/gamepad.h"
#include "game/play/globals.h"

namespace vesk {

namespace {

constexpr int kViewWidth = 384, kViewHeight = 216; // pixels
constexpr int kNoSettings = -1;                    // depth after a failed start: nothing is saved at the end
constexpr const char* kSettingsFile = "Settings.dat";
constexpr double kFadeStep = 0.0666666667;
constexpr int kMessageSteps = 60;

std::string characters(char from, char to) {
  std::string text;
  for (char c = from; c <= to; ++c) text += c;
  return text;
}

// ---- start ----

void Create(Self self) {
  self[mode] = 0;
  self[done] = 0;
  self[back] = -1;
  self[message] = "";
  self[showfps] = 0;
  self[activeshader] = -1;
  scr_init_globals();
  global[carrieditem] = noone;
  global[carriedsprite] = noone;
  global[shallihold] = 0;
  global[levelmusic] = 0;
  global[font] = font_add_sprite_ext(spr_spritefont, characters('!', '~'), true, -1);
  global[wdigits] = font_add_sprite_ext(spr_numbers, characters('0', '9'), false, -1);
  randomize();
  for (int digit = 0; digit < 10; ++digit) global[rand][digit] = digit;
  self[gamepad] = gamepad_is_connected(0);
  for (int latch = 0; latch < 4; ++latch) self[leftstick][latch] = 0;
  math_set_epsilon(1e-05);
  application_surface_draw_enable(false);
  display_set_gui_size(kViewWidth, kViewHeight);
  global[overlaysurf] = -1;
  audio_channel_num(16);
}

// The largest whole scale that leaves room on the display.
int default_scale() {
  for (int scale = 4; scale > 2; --scale)
    if (display_get_width() >= kViewWidth * scale && display_get_height() >= kViewHeight * scale)
      return scale;
  return 2;
}

void read_settings(Self self) {
  if (!FS_file_exists(kSettingsFile)) {
    self[fullscreen] = 0;
    self[filter] = default_scale();
    self[vsync] = 0;
    return;
  }
  const double file = FS_file_text_open_read(kSettingsFile);
  for (const Slot setting : {fullscreen, filter, vsync})
    self[setting] = real(RValue(FS_file_text_read_string(file)));
  FS_file_text_close(file);
  // A damaged file gives anything.
  for (const Slot flag : {fullscreen, vsync}) self[flag] = self[flag].Get() >= 0.5 ? 1 : 0;
  self[filter] = floor(self[filter]);
  if (!(self[filter] >= 1 && self[filter] <= 4)) self[filter] = default_scale();
}

void GameStart(Self self) {
  if (!FS_init()) {
    self[alarm][8] = 1;
    return;
  }
  read_settings(self);
  self[alarm][5] = 1;
  audio_play_sound(snd_drommelfall, 0, false);
  self[alarm][7] = 1;
  self[alarm][4] = 200;
}

void GameEnd(Self self) {
  if (self[depth] == kNoSettings) return;
  const double file = FS_file_text_open_write(kSettingsFile);
  for (const Slot setting : {fullscreen, filter, vsync})
    FS_file_text_write_string(file, self[setting].text());
  FS_file_text_close(file);
}

void Alarm_NoLibrary(Self self) {
  show_message("The file library can't be used: levels and settings can't be read or written.");
  self[depth] = kNoSettings;
  game_end();
}

// ---- display ----

void Alarm_Display(Self self) {
  window_set_fullscreen(self[fullscreen]);
  event_user(self, 1);
}

void ApplyDisplay(Self self) {
  display_reset(0, self[vsync]);
  window_set_size(view_wview[0] * self[filter], view_hview[0] * self[filter]);
  self[alarm][2] = 1;
}

void Alarm_Centre(Self) { window_center(); }
void Alarm_ClearMessage(Self self) { self[message] = ""; }

// ---- logos: two side by side in one room ----

bool on_second_logo() { return view_xview[0] == kViewWidth; }

void Alarm_NextLogo(Self self) {
  if (on_second_logo()) {
    room_goto(rm_title);
  } else {
    event_user(self, 0);
    self[alarm][6] = 15;
  }
}

void Alarm_SecondLogo(Self self) {
  view_xview[0] = kViewWidth;
  audio_play_sound(snd_powershot, 0, false);
  self[alarm][4] = 150;
}

void Alarm_SkipLogo(Self self) {
  if (room != rm_logo) return;
  if (self[alarm][4] > 1 && keyboard_check_pressed(kEnterKey) && !keyboard_check(kAltKey)) {
    self[alarm][4] = 1;
    audio_stop_all();
  }
  self[alarm][7] = 1;
}

// ---- room changes: the last frame stands in while everything else sleeps ----

void take_snapshot(Self self) {
  if (background_exists(self[back])) background_delete(self[back]);
  self[back] =
      background_create_from_surface(application_surface(), 0, 0, view_wview[0], view_hview[0], false, false);
}

void RoomEnd(Self self) {
  self[mode] = 1;
  take_snapshot(self);
  self[alarm][1] = 1;
  if (surface_exists(global[overlaysurf])) {
    surface_free(global[overlaysurf]);
    global[overlaysurf] = -1;
  }
}

void RoomStart(Self self) {
  catch_up_with_gamepad(self);
  if (self[mode] == 1) event_user(self, 0);
}

void Cover(Self self) {
  if (self[mode] == 0) {
    take_snapshot(self);
    instance_deactivate_all(self, true);
  }
  self[done] = 0;
  self[mode] = 1;
  self[alarm][0] = 15;
}

void Alarm_Sleep(Self self) {
  instance_deactivate_all(self, true);
  instance_activate_object(obj_tovinstart);
}

void Alarm_Uncover(Self self) {
  self[mode] = 0;
  if (!instance_exists(obj_tovinstart)) {
    self[done] = 0;
    instance_activate_all();
  }
  if (background_exists(self[back])) {
    background_delete(self[back]);
    self[back] = -1;
  }
}

// ---- drawing ----

void Draw(Self self) {
  if (background_exists(self[back])) {
    draw_enable_alphablend(false);
    draw_background(self[back], view_xview[0], view_yview[0]);
    draw_enable_alphablend(true);
  }
  if (surface_exists(global[overlaysurf])) {
    surface_set_target(global[overlaysurf]);
    draw_clear_alpha(c_white, 0);
    surface_reset_target();
  }
}

void draw_fade(Self self) {
  if (!(self[done] < 1)) return;
  self[done] += kFadeStep;
  draw_set_alpha(self[mode] != 0 ? self[done] + 0 : 1 - self[done]);
  draw_set_colour(c_black);
  draw_rectangle(0, 0, 5000, 5000, false);
  draw_set_alpha(1);
  draw_set_colour(c_white);
}

void DrawGui(Self self) {
  draw_fade(self);
  draw_set_font(global[font]);
  if (!(self[message] == "")) draw_backed_text(2, 2, self[message].text(), c_white);
  if (self[showfps] > 0.5)
    draw_backed_text(
        2, 206, "FPS: " + string(RValue(fps.Get())) + " Max FPS: " + string(RValue(fps_real.Get())), c_white);
}

void DrawOverlay(Self) {
  if (surface_exists(global[overlaysurf])) draw_surface(global[overlaysurf], view_xview[0], view_yview[0]);
}

void DrawFinalPicture(Self self) {
  draw_enable_alphablend(false);
  if (self[activeshader] != -1) shader_set(self[activeshader]);
  draw_surface(application_surface(), 0, 0);
  shader_reset();
  draw_enable_alphablend(true);
}

// ---- Alt commands ----

void restart_game(Self self) {
  instance_activate_all(); // out of a pause or a fade: room ends free what the sleepers hold
  audio_stop_all();
  scr_init_globals();
  keyboard_unset_map();
  room_goto(rm_title);
  self[message] = "Restart Game";
}

void flip(Self self, Slot flag, const char* on, const char* off) {
  self[flag] = self[flag] != 0 ? 0 : 1;
  if (*on) self[message] = self[flag] != 0 ? on : off;
}

struct Command {
  int key;
  void (*run)(Self);
};
constexpr Command kCommands[] = {
    {kF4Key, [](Self) { game_end(); }},
    {'R', restart_game},
    {kEnterKey,
     [](Self self) {
       flip(self, fullscreen, "Fullscreen", "Windowed");
       window_set_fullscreen(self[fullscreen]);
       event_user(self, 1);
     }},
    {'V',
     [](Self self) {
       flip(self, vsync, "VSync On", "VSync Off");
       event_user(self, 1);
     }},
    {'G', [](Self self) { flip(self, gamepad, "Gamepad On", "Gamepad Off"); }},
    {'F', [](Self self) { flip(self, showfps, "", ""); }},
};

void KeepAlt(Self self) {
  for (const Command& command : kCommands) {
    if (!keyboard_check_pressed(command.key)) continue;
    command.run(self);
    self[alarm][3] = kMessageSteps;
    return;
  }
  for (int scale = 1; scale <= 4; ++scale) {
    if (!keyboard_check_pressed('0' + scale)) continue;
    self[filter] = scale;
    self[message] = std::to_string(scale) + "X Scale";
    event_user(self, 1);
    self[alarm][3] = kMessageSteps;
    return;
  }
}

} // namespace

const EventTable obj_persistent_events = {
    {ev_create, 0, Create},
    {ev_alarm, 0, Alarm_Uncover},
    {ev_alarm, 1, Alarm_Sleep},
    {ev_alarm, 2, Alarm_Centre},
    {ev_alarm, 3, Alarm_ClearMessage},
    {ev_alarm, 4, Alarm_NextLogo},
    {ev_alarm, 5, Alarm_Display},
    {ev_alarm, 6, Alarm_SecondLogo},
    {ev_alarm, 7, Alarm_SkipLogo},
    {ev_alarm, 8, Alarm_NoLibrary},
    {ev_step, ev_step_normal, translate_gamepad},
    {ev_keyboard, kAltKey, KeepAlt},
    {ev_other, ev_game_start, GameStart},
    {ev_other, ev_game_end, GameEnd},
    {ev_other, ev_room_start, RoomStart},
    {ev_other, ev_room_end, RoomEnd},
    {ev_other, ev_user(0), Cover},
    {ev_other, ev_user(1), ApplyDisplay},
    {ev_draw, ev_draw_normal, Draw},
    {ev_draw, ev_gui, DrawGui},
    {ev_draw, ev_draw_end, DrawOverlay},
    {ev_draw, ev_gui_begin, DrawFinalPicture},
};

} // namespace vesk
