// obj_mainmenu and its rows: the list of levels, its filter, and naming a new level.
#include "Files/Base/Console.h"
#include "Files/Function/Function_Data_Structures.h"
#include "game/Game.h"
#include "game/Music.h"
#include "game/editor/interface.h"
#include "game/level/files.h"
#include "game/level/level_file.h"
#include "game/text.h"

namespace vesk {

namespace {

enum Mode { kBrowsing, kNaming };
constexpr int kFirstRowTop = 36, kRowStep = 32; // room pixels
constexpr int kBarBottom = 34, kEdge = 8;       // view pixels
constexpr const char* kGone = "The level is gone!";
constexpr const char* kDamaged = "This level is damaged!";
constexpr double kNameRoom = 240; // pixels of a row's name

std::string typed(Self menu) { return first(menu[readkeys])[words].text(); }
void clear_typed(Self menu) { first(menu[readkeys])[words] = ""; }

// ---- the menu ----

void Create(Self self) {
  self[mode] = kBrowsing;
  self[error] = "";
  self[note] = "";
  self[text] = "";
  self[mvmnt] = 0;
  if (!audio_is_playing(Beat)) self[alarm][0] = 2;
  if (ds_exists(global[leveldata], ds_type_map)) ds_map_destroy(global[leveldata]);
  global[leveldata] = noone;
  if (ds_exists(global[level_list], ds_type_list)) ds_list_destroy(global[level_list]);
  global[level_list] = scr_level_get_levels();
  make_button(self, 13, 7, "NEW", "", {spr_button_l}, obj_button_fixed);
  make_button(self, 288, 7, "RANDOM", "", {spr_button_l}, obj_button_fixed);
  self[readkeys] = make_key_reader(self, kNames).number();
  event_user(self, 1);
  global[section] = kMainSection;
  global[challenge] = 0;
  global[rememberview][0] = 0;
  global[rememberview][1] = 0;
  global[powerup] = 1;
  self[image_speed] = 0.15;
}

void Alarm_Music(Self) { audio_play_sound(Beat, kMusicPriority, true); }

bool matches(const std::string& name, const std::string& filter) {
  return filter.empty() || string_pos(string_lower(filter), string_lower(name)) > 0;
}

void RebuildList(Self self) {
  if (self[mode] == kNaming) return;
  with(obj_mainmenu_level, [](Self row) { instance_destroy(row); });
  const std::string filter = typed(self);
  const int list = global[level_list];
  int shown = 0;
  for (int at = 0; at < ds_list_size(list); ++at) {
    const std::string level = ValueAsText(ds_list_find_value(list, at));
    if (!matches(level, filter)) continue;
    make(10, kFirstRowTop + shown * kRowStep, obj_mainmenu_level)[name] = level;
    ++shown;
  }
}

void Typed(Self self) {
  self[error] = "";
  view_yview[0] = 0;
  event_user(self, 1);
}

void start_naming(Self self) {
  audio_play_sound(snd_pistolplus, 0, false);
  if (!typed(self).empty()) {
    clear_typed(self);
    event_user(self, 1);
  }
  self[mode] = kNaming;
}

void stop_naming(Self self) {
  audio_play_sound(snd_pistolplus, 0, false);
  self[mode] = kBrowsing;
  clear_typed(self);
}

void shuffle(Self self) {
  ds_list_shuffle(global[level_list]);
  view_yview[0] = 0;
  event_user(self, 1);
  audio_play_sound(snd_magic, 0, false);
}

void create_level(Self self) {
  const std::string level = typed(self);
  if (level.empty()) return refuse(self, "Level must have a name!");
  if (FS_file_exists("Level/" + level + ".json")) {
    refuse(self, "Level already exists!");
    clear_typed(self);
    return;
  }
  audio_stop_sound(Beat);
  audio_play_sound(snd_pistolplus, 0, false);
  global[levelname] = level;
  scr_level_new();
  room_goto(rm_editor);
}

void Notified(Self self) {
  const bool naming = self[mode] == kNaming;
  if (self[note] == "NEW")
    naming ? stop_naming(self) : start_naming(self);
  else
    naming ? create_level(self) : shuffle(self);
}

// ---- scrolling ----

bool more_below() {
  const double bottom = view_yview[0] + view_hview[0];
  return collision_line(nullptr, 192, view_yview[0] + 192, 192, static_cast<float>(bottom),
                        obj_mainmenu_level, false, false) != noone;
}

void EndStep(Self self) {
  const double in_view = mouse_y - view_yview[0];
  const bool up_asked = keyboard_check(kUpKey) || mouse_wheel_up();
  const bool down_asked = keyboard_check(kDownKey) || mouse_wheel_down();
  // A mouse that was left at an edge doesn't work against the keys.
  const bool at_top = in_view > -kEdge && in_view < kEdge && !down_asked;
  const bool at_bottom = in_view > view_hview[0] - kEdge && in_view < view_hview[0] + kEdge && !up_asked;
  const bool up = up_asked || at_top, down = down_asked || at_bottom;
  self[mvmnt] = keyboard_check(kControlKey) ? 15 : 5;
  if (up) view_yview[0] -= self[mvmnt] + (mouse_wheel_up() ? 10 : 0);
  if (down && more_below()) view_yview[0] += self[mvmnt] + (mouse_wheel_down() ? 10 : 0);
  if (view_yview[0] < 0) view_yview[0] = 0;
  background_y[0] = view_yview[0].Get();
  self[x] = mouse_x;
  self[y] = view_yview[0] + in_view; // the view has moved under the mouse
}

// ---- drawing ----

void Draw(Self) { draw_background(bg_bonus, 0, view_yview[0]); }

void draw_bar(Self self) {
  draw_sprite_ext(self, spr_editor_top, 0, 10, 4, 1, 1, 0, c_white, 0.7f);
  draw_sprite_ext(self, spr_box_level_filter, 0, 98, 7, 1, 1, 0, c_white, 0.7f);
}

void DrawGui(Self self) { draw_bar(self); }

// Rows that have been scrolled under the bar must neither shine through its labels nor take clicks there.
bool bar_covers_rows() { return view_yview[0] > 0; }

void cover_rows(Self self) {
  if (!bar_covers_rows()) return;
  draw_set_colour(c_black);
  draw_rectangle(0, 0, view_wview[0], kBarBottom, false);
  draw_set_colour(c_white);
  draw_bar(self);
}

// A level that can't be opened is told even while a filter is typed.
std::string refused_level(Self self) {
  const bool refused = self[error] == kGone || self[error] == kDamaged;
  return refused && audio_is_playing(snd_wrong) ? self[error].text() : "";
}

void DrawGuiEnd(Self self) {
  const bool naming = self[mode] == kNaming;
  cover_rows(self);
  draw_set_font(global[font]);
  draw_text(naming ? 38 : 25, 14, naming ? "Cancel" : "New Level");
  draw_text(naming ? 312 : 302, 14, naming ? "Create" : "Randomize");
  draw_set_halign(fa_center);
  draw_text(192, 14,
            prompt(refused_level(self).empty() ? typed(self) : "", self[error].text(),
                   naming ? "Type a level name!" : "Type to search!"));
  draw_set_halign(fa_left);
  draw_set_colour(c_white);
  draw_sprite(self, spr_target, -1, self[x] - view_xview[0], self[y] - view_yview[0]);
}

// ---- a row ----

void RowCreate(Self self) {
  self[name] = "SET THIS TO LEVEL NAME";
  self[note] = "";
  make_button(self, 285, self[y] + 3, "PLAY", "", {spr_button_m}, obj_button_fixed);
  make_button(self, 329, self[y] + 3, "EDIT", "", {spr_button_m}, obj_button_fixed);
}

void RowDestroy(Self self) { destroy_buttons_of(self); }

// "" or a refusal short enough for the menu's line; the console gets the whole story.
std::string load_level(const std::string& level) {
  if (!FS_file_exists("Level/" + level + ".json")) return kGone;
  scr_level_load(level);
  const std::string problem = scr_level_problem();
  if (problem.empty()) return "";
  ReleaseConsole().Output("Level \"%s\": %s\n", level.c_str(), problem.c_str());
  return kDamaged;
}

// A damaged level is refused in the menu's own line; the menu stands.
void RowNotified(Self self) {
  if (bar_covers_rows() && mouse_y - view_yview[0] <= kBarBottom) return;
  if (const std::string refusal = load_level(self[name].text()); !refusal.empty()) {
    with(obj_mainmenu, [&](Self menu) { refuse(menu, refusal); });
    return;
  }
  audio_stop_sound(Beat);
  audio_play_sound(snd_pistolplus, 0, false);
  global[levelname] = self[name];
  if (self[note] == "PLAY") {
    scr_level_play(kMainSection);
  } else {
    room_goto(rm_editor);
  }
}

void RowDrawGui(Self self) {
  const Real top = self[y] - view_yview[0];
  draw_sprite_ext(self, spr_editor_top, 0, self[x], top, 1, 1, 0, c_white, 0.7f);
  draw_sprite(self, spr_box_level_name, 0, self[x] + 13, top + 3);
  draw_set_font(global[font]);
  draw_text(self[x] + 20, top + 10, drawable_name(self[name].text(), kNameRoom));
}

void RowDrawGuiEnd(Self self) {
  const Real top = self[y] - view_yview[0] + 10;
  draw_set_font(global[font]);
  draw_text(294, top, "Play");
  draw_text(339, top, "Edit");
}

} // namespace

const EventTable obj_mainmenu_events = {
    {ev_create, 0, Create},           {ev_alarm, 0, Alarm_Music},          {ev_step, ev_step_end, EndStep},
    {ev_other, ev_user(0), Notified}, {ev_other, ev_user(1), RebuildList}, {ev_other, ev_user(8), Typed},
    {ev_draw, ev_draw_normal, Draw},  {ev_draw, ev_gui, DrawGui},          {ev_draw, ev_gui_end, DrawGuiEnd},
};

const EventTable obj_mainmenu_level_events = {
    {ev_create, 0, RowCreate},     {ev_destroy, 0, RowDestroy},          {ev_other, ev_user(0), RowNotified},
    {ev_draw, ev_gui, RowDrawGui}, {ev_draw, ev_gui_end, RowDrawGuiEnd},
};

} // namespace vesk
