// obj_ewindow_settings and obj_ewindow_quit. Each change of a setting is written to the section map at once.
#include "Files/Function/Function_Data_Structures.h"
#include "game/Game.h"
#include "game/editor/interface.h"
#include "game/editor/window.h"

namespace vesk {

namespace {

enum Option { kDarkness, kRain, kWaterLevel, kWaterColour };
constexpr int kRowsFrame = 3; // of spr_editor_window

struct Row {
  int top;
  const char* label;
  int icon;
  int frame; // of spr_editor_option
};
constexpr Row kRows[] = {
    {63, "Pitch Black Darkness", -1, 0},
    {87, "Rain Storm", spr_wfalltop, 0},
    {111, "Water Level", spr_watertop, 1},
    {135, "Water Color", spr_watertop_r, 1},
};

double number_of(const char* key) { return ValueAsReal(ds_map_find_value(edited_section(), key)); }

void make_toggle(Self self, Option of, const char* said) {
  make_button(self, 329, kRows[of].top, said, kRows[of].label, {spr_button_m}, obj_button_toggle)[toggle] =
      self[option][of];
}

void make_counter(Self self, Option of, const char* down, const char* up) {
  make_button(self, 281, kRows[of].top, down, kRows[of].label, {spr_button, spr_left}, obj_button);
  make_button(self, 349, kRows[of].top, up, kRows[of].label, {spr_button, spr_right}, obj_button);
}

void Create(Self self) {
  event_inherited(self);
  self[text] = "Settings";
  self[image_index] = kRowsFrame;
  self[option][kDarkness] = number_of("DARKNESS");
  self[option][kRain] = number_of("RAIN");
  self[option][kWaterLevel] = number_of("WATER_LEVEL");
  self[option][kWaterColour] = ds_map_find_value(edited_section(), "WATER_COLOR");
  make_toggle(self, kDarkness, "DARK");
  make_toggle(self, kRain, "RAIN");
  make_counter(self, kWaterLevel, "WATER_DEC", "WATER_INC");
  make_counter(self, kWaterColour, "COLOR_DEC", "COLOR_INC");
}

void rebuild_water() { event_user(first(obj_editor), 3); }

void flip(Self self, Option of, const char* key) {
  self[option][of] = self[option][of] == 0 ? 1 : 0;
  ds_map_replace(edited_section(), key, self[option][of].value());
}

void change_water_level(Self self, int by) {
  const Real level = self[option][kWaterLevel] + by;
  if (level < 0 || level > first(obj_editor)[height]) return;
  self[option][kWaterLevel] = level;
  ds_map_replace(edited_section(), "WATER_LEVEL", self[option][kWaterLevel].value());
  rebuild_water();
}

void set_water_colour(Self self, const char* colour) {
  self[option][kWaterColour] = RValue(colour);
  ds_map_replace(edited_section(), "WATER_COLOR", self[option][kWaterColour].value());
  rebuild_water();
}

void Notified(Self self) {
  event_inherited(self);
  const std::string colour = self[option][kWaterColour].text();
  if (self[note] == "DARK")
    flip(self, kDarkness, "DARKNESS");
  else if (self[note] == "RAIN")
    flip(self, kRain, "RAIN");
  else if (self[note] == "WATER_DEC")
    change_water_level(self, -1);
  else if (self[note] == "WATER_INC")
    change_water_level(self, 1);
  else if (self[note] == "COLOR_DEC")
    set_water_colour(self, colour == "Blue" ? "Red" : colour == "Red" ? "Green" : "Blue");
  else if (self[note] == "COLOR_INC")
    set_water_colour(self, colour == "Green" ? "Red" : colour == "Blue" ? "Green" : "Blue");
}

void draw_row(Self self, const Row& row) {
  draw_sprite(self, spr_button, 0, 13, row.top);
  if (row.icon == -1)
    draw_background_part(bg_crypt, 57, 93, 16, 16, 16, row.top + 3); // a candle in the dark
  else
    draw_sprite(self, row.icon, 0, 16, row.top + 3);
  draw_sprite(self, spr_editor_option, row.frame, 37, row.top);
  draw_text(45, row.top + 7, row.label);
}

void draw_value(Self self, Option of) {
  draw_sprite(self, spr_button_m, 0, 305, kRows[of].top);
  draw_set_halign(fa_center);
  draw_text(326, kRows[of].top + 7, self[option][of].text());
  draw_set_halign(fa_left);
}

void DrawGui(Self self) {
  event_inherited(self);
  for (const Row& row : kRows) draw_row(self, row);
  draw_value(self, kWaterLevel);
  draw_value(self, kWaterColour);
}

// ---- leaving ----

void QuitCreate(Self self) {
  self[num_options] = 0;
  self[note] = "";
  self[image_speed] = 0;
  self[text] = "Are you sure? All unsaved changes will be lost!";
  make_button(self, 349, 39, "QUIT", "Quit", {spr_button, spr_editor_top_icons, 14}, obj_button);
}

void QuitNotified(Self) {
  audio_play_sound(snd_pistolplus, 0, false);
  room_goto(rm_mainmenu);
}

} // namespace

const EventTable obj_ewindow_settings_events = {
    {ev_create, 0, Create},
    {ev_other, ev_user(0), Notified},
    {ev_draw, ev_gui, DrawGui},
};

const EventTable obj_ewindow_quit_events = {
    {ev_create, 0, QuitCreate},
    {ev_other, ev_user(0), QuitNotified},
};

} // namespace vesk
