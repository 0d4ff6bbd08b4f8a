// obj_ewindow_section: the sections of the level, to enter, make and delete.
#include "Files/Function/Function_Data_Structures.h"
#include "game/Game.h"
#include "game/editor/interface.h"
#include "game/editor/window.h"
#include "game/level/level_file.h"

namespace vesk {

namespace {

constexpr int kListTop = 87;
constexpr int kBelowControls = 80; // the list's buttons stand below this

// The sign that no section name can hold keeps the controls apart from sections.
constexpr const char* kClose = "?CLOSE";
constexpr const char* kDelete = "?DELETE SECTION";
constexpr const char* kCreate = "?CREATE SECTION";

std::string typed(Self self) { return first(self[readkeys])[words].text(); }
void clear_typed(Self self) { first(self[readkeys])[words] = ""; }

void refuse_name(Self self, const char* why) {
  refuse(self, why);
  clear_typed(self);
}

void Create(Self self) {
  event_inherited(self);
  destroy_buttons_of(self); // the inherited one would be taken for a section of its name
  make_button(self, 349, 39, kClose, "Close", {spr_button, spr_editor_top_icons, 14}, obj_button);
  make_button(self, 13, 63, kDelete, "Delete Section", {spr_button_l, spr_check_x, 1, "Delete"}, obj_button);
  make_button(self, 288, 63, kCreate, "Create Section", {spr_button_l, spr_check_x, 0, "Create"}, obj_button);
  self[readkeys] = make_key_reader(self, kNames).number();
  event_user(self, 1);
}

void Destroy(Self self) {
  event_inherited(self);
  with(self[readkeys], [](Self reader) { instance_destroy(reader); });
}

void ListSections(Self self) {
  int at = 0;
  const int root = global[leveldata];
  for (RValue name = ds_map_find_first(root); !name.IsUndefined(); name = ds_map_find_next(root, name)) {
    make_grid_button(self, at, kListTop, name.Text(), spr_editor_top_icons,
                     name.Text() == kMainSection ? 13 : 9);
    ++at;
  }
  self[image_index] = 1 + (at - 1) / 15;
}

void rebuild_list(Self self) {
  with(obj_button, [&](Self button) {
    if (button[notifyto] == self.number() && button[y] > kBelowControls) instance_destroy(button);
  });
  event_user(self, 1);
}

void create_section(Self self) {
  const std::string name = typed(self);
  if (name.empty()) return refuse(self, "Type something first!");
  if (ds_map_exists(global[leveldata], name)) return refuse_name(self, "Section already exists!");
  if (ds_map_size(global[leveldata]) >= kMaxSections) return refuse_name(self, "Too many sections!");
  audio_play_sound(snd_pistolplus, 0, false);
  scr_level_add_section(name);
  clear_typed(self);
  rebuild_list(self);
}

void delete_section(Self self) {
  const std::string name = typed(self);
  if (name.empty()) return refuse(self, "Type something first!");
  if (name == kMainSection) return refuse_name(self, "Cannot delete Main!");
  if (!ds_map_exists(global[leveldata], name)) return refuse_name(self, "Section does not exist!");
  audio_play_sound(snd_pistolplus, 0, false);
  ds_map_destroy(ValueAsInt32(ds_map_find_value(global[leveldata], name)));
  ds_map_delete(global[leveldata], name);
  clear_typed(self);
  if (global[section] == name) {
    global[section] = kMainSection;
    room_restart();
  }
  rebuild_list(self);
}

void enter_section(Self self) {
  if (global[section] == self[note].text()) return; // it is on screen already
  audio_play_sound(snd_pistolplus, 0, false);
  global[section] = self[note];
  room_restart();
}

void Notified(Self self) {
  if (self[note] == kClose) {
    audio_play_sound(snd_pistolplus, 0, false);
    instance_destroy(self);
  } else if (self[note] == kCreate) {
    create_section(self);
  } else if (self[note] == kDelete) {
    delete_section(self);
  } else {
    enter_section(self);
  }
}

void DrawGui(Self self) {
  event_inherited(self);
  draw_sprite_ext(self, spr_box_level_filter, 0, 98, 63, 1, 1, 0, c_white, 0.7f);
  draw_set_halign(fa_center);
  draw_text(192, 70, prompt(typed(self), self[error].text(), "Type a section name!"));
  draw_set_halign(fa_left);
  draw_set_colour(c_white);
}

} // namespace

const EventTable obj_ewindow_section_events = {
    {ev_create, 0, Create},           {ev_destroy, 0, Destroy},
    {ev_other, ev_user(0), Notified}, {ev_other, ev_user(1), ListSections},
    {ev_draw, ev_gui, DrawGui},
};

} // namespace vesk
