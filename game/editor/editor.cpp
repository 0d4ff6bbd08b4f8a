// obj_editor: shows one section, moves the view, resizes, serves the toolbar. Placing stands in placing.cpp.
#include "game/editor/editor.h"

#include "Files/Function/Function_Data_Structures.h"
#include "game/Game.h"
#include "game/Music.h"
#include "game/editor/interface.h"
#include "game/editor/window.h"
#include "game/level/catalogue.h"
#include "game/level/level_build.h"
#include "game/level/level_file.h"
#include "game/play/enter_leave.h"
#include "game/play/lighting.h"
#include "game/play/water.h"
#include "game/text.h"

#include <array>

namespace vesk {

namespace {

constexpr int kMinWidth = 24, kMinHeight = 14; // cells
constexpr int kMarginX = 160, kMarginY = 120;  // pixels that the view may go beyond the section
constexpr int kEdge = 8;                       // pixels on each side of the view's edge that scroll
constexpr int kMaxLight = 128;
enum Over { kMap, kToolbar, kWindow }; // what the mouse is over
enum Repeat { kNoRepeat, kWaiting, kRepeating };

struct Tool {
  const char* label;
  int window; // that it opens; -1 for an action
};
constexpr Tool kTools[] = {
    {"Control", obj_ewindow_control},
    {"Tiles", obj_ewindow_tile},
    {"Item", obj_ewindow_item},
    {"Block", obj_ewindow_block},
    {"Enemy", obj_ewindow_enemy},
    {"Warp", obj_ewindow_warp},
    {"Modifier", obj_ewindow_modifier},
    {"Music", obj_ewindow_music},
    {"Background", obj_ewindow_background},
    {"Sections", obj_ewindow_section},
    {"Settings", obj_ewindow_settings},
    {"Clear Selection", -1},
    {"Save", -1},
    {"Play", -1},
    {"Quit", obj_ewindow_quit},
};

// ---- start ----

void Create(Self self) {
  self[ready] = kMap;
  self[grid] = 1;
  self[delay] = kNoRepeat;
  self[music] = 0;
  self[xx] = 0;
  self[yy] = 0;
  self[t_x] = 0;
  self[t_y] = 0;
  self[text] = "";
  self[note] = "";
  self[flashlight] = kMaxLight;
  self[image_speed] = 0.15;
  view_xview[0] = global[rememberview][0].Get();
  view_yview[0] = global[rememberview][1].Get();
  global[rememberview][0] = 0;
  global[rememberview][1] = 0;
  int at = 0;
  for (const Tool& tool : kTools) {
    make_button(self, 13 + at * 24, 7, tool.label, tool.label, {spr_button, spr_editor_top_icons, at},
                obj_button);
    ++at;
  }
}

void RoomStart(Self self) {
  self[section_data] = ds_map_find_value(global[leveldata], global[section].value());
  event_user(self, 2);
}

template <class Visit> void for_each_cell(Self self, const char* layer, Visit visit) {
  const int cells = ValueAsInt32(ds_map_find_value(self[section_data], layer));
  for (RValue key = ds_map_find_first(cells); !key.IsUndefined(); key = ds_map_find_next(cells, key))
    visit(ValueAsText(key), ValueAsText(ds_map_find_value(cells, key)));
}

void show_codes(Self self, const char* layer, int placeholder, void (*dress)(double, std::string)) {
  for_each_cell(self, layer, [&](const std::string& key, const std::string& code) {
    const Cell cell = parse_cell(key);
    dress(make(cell.x * kCellSize, cell.y * kCellSize, placeholder).number(), code);
  });
}

void BuildSection(Self self) {
  const int map = self[section_data];
  audio_stop_sound(self[music]);
  with(obj_bganimator, [](Self animator) { instance_destroy(animator); });
  self[height] = ds_map_find_value(map, "HEIGHT");
  self[width] = ds_map_find_value(map, "WIDTH");
  self[music] = scr_gen_music(ValueAsText(ds_map_find_value(map, "MUSIC")));
  background_index[0] = scr_gen_background(ValueAsText(ds_map_find_value(map, "BACKGROUND")));
  event_user(self, 3);
  for_each_cell(self, "TILES",
                [](const std::string& key, const std::string& v) { scr_gen_tile(key, v, kTileDepth); });
  for_each_cell(self, "TILES_BG",
                [](const std::string& key, const std::string& v) { scr_gen_tile(key, v, kTileDepthBehind); });
  show_codes(self, "OBJECTS", obj_editor_object, scr_gen_object_editor);
  show_codes(self, "MARKERS", obj_editor_marker, scr_gen_marker_editor);
  show_codes(self, "MODIFIERS", obj_editor_modifier, scr_gen_modifier_editor);
  self[alarm][1] = 1;
}

void Alarm_Music(Self self) { audio_play_sound(self[music], kMusicPriority, true); }
void RoomEnd(Self self) { audio_stop_sound(self[music]); }

void RebuildWater(Self self) {
  with(obj_watershader_editor, [](Self water) { instance_destroy(water); });
  const double level = ValueAsReal(ds_map_find_value(self[section_data], "WATER_LEVEL"));
  if (!(level > 0)) return;
  const Self water = make(0, (self[height] - level) * kCellSize, obj_watershader_editor);
  water[height] = level - 1;
  const std::string colour = ValueAsText(ds_map_find_value(self[section_data], "WATER_COLOR"));
  water[sprite_index] = colour == "Red" ? spr_watertop_r : colour == "Green" ? spr_watertop_g : spr_watertop;
}

// ---- end step ----

void follow_mouse(Self self) {
  self[x] = mouse_x - view_xview[0];
  self[y] = mouse_y - view_yview[0];
  self[xx] = floor((view_xview[0] + self[x]) / kCellSize) * kCellSize;
  self[yy] = floor((view_yview[0] + self[y]) / kCellSize) * kCellSize;
}

void scroll_background(Self self) {
  background_x[0] = view_xview[0] / 2;
  const Real room_pixels = self[height] * kCellSize;
  if (background_height[0] < room_pixels && background_height[0] > view_hview[0])
    background_y[0] = view_yview[0] * (room_pixels - background_height[0]) / (room_pixels - view_hview[0]);
  else
    background_y[0] = 0;
}

void see_what_the_mouse_is_over(Self self) {
  if (instance_exists(obj_editor_window))
    self[ready] = kWindow;
  else if (collision_rectangle(self, 10, 4, 374, 32, self.number(), false, false) != noone)
    self[ready] = kToolbar;
  else
    self[ready] = kMap;
}

bool line_is_free(double x1, double y1, double x2, double y2) {
  return collision_rectangle(nullptr, static_cast<float>(x1), static_cast<float>(y1), static_cast<float>(x2),
                             static_cast<float>(y2), obj_editor_placeparent, false, false) == noone;
}

void narrow(Self self) {
  const double column = (self[width] - 1) * kCellSize;
  if (!(self[width] > kMinWidth) || !line_is_free(column, 0, column, self[height] * kCellSize) ||
      scr_check_tiles_right(self[width], self[height]))
    return;
  self[width] -= 1;
  event_user(self, 1);
}

void widen(Self self) {
  self[width] += 1;
  event_user(self, 1);
}

void lower(Self self) {
  const double row = (self[height] - 1) * kCellSize;
  if (!(self[height] > kMinHeight) || !line_is_free(0, row, self[width] * kCellSize, row) ||
      scr_check_tiles_down(self[width], self[height]))
    return;
  self[height] -= 1;
  if (ValueAsReal(ds_map_find_value(self[section_data], "WATER_LEVEL")) > self[height].Get())
    ds_map_replace(self[section_data], "WATER_LEVEL", self[height].value());
  event_user(self, 3);
  event_user(self, 1);
}

void heighten(Self self) {
  self[height] += 1;
  event_user(self, 3);
  event_user(self, 1);
}

struct ResizeKey {
  int key;
  void (*resize)(Self);
};
constexpr ResizeKey kResizeKeys[] = {
    {kLeftKey, narrow}, {kRightKey, widen}, {kUpKey, lower}, {kDownKey, heighten}};

void resize_by_keys(Self self) {
  for (const ResizeKey& row : kResizeKeys)
    if (keyboard_check_pressed(row.key) || (keyboard_check(row.key) && self[delay] == kRepeating))
      row.resize(self);
}

bool near_edge(double position, double edge) { return position > edge - kEdge && position < edge + kEdge; }

void scroll_by_keys_and_edges(Self self) {
  self[mvmnt] = keyboard_check(kControlKey) ? 15 : 5;
  const double step = self[mvmnt];
  if (keyboard_check(kLeftKey) || near_edge(self[x], 0)) view_xview[0] -= step;
  if (keyboard_check(kRightKey) || near_edge(self[x], view_wview[0])) view_xview[0] += step;
  if (keyboard_check(kUpKey) || near_edge(self[y], 0)) view_yview[0] -= step;
  if (keyboard_check(kDownKey) || near_edge(self[y], view_hview[0])) view_yview[0] += step;
}

void work_on_the_map(Self self) {
  if (keyboard_check_pressed(kSpaceKey)) {
    self[grid] = self[grid] == 0 ? 1 : 0;
    audio_play_sound(snd_chest, 0, false);
  }
  if (keyboard_check(kShiftKey)) {
    resize_by_keys(self);
  } else if (mouse_check_button(kMiddleButton)) {
    view_xview[0] += self[xprevious] - self[x];
    view_yview[0] += self[yprevious] - self[y];
  } else {
    scroll_by_keys_and_edges(self);
  }
}

void end_key_repeat(Self self) {
  for (const int key : {kLeftKey, kRightKey, kUpKey, kDownKey, kShiftKey}) {
    if (!keyboard_check_released(key)) continue;
    self[delay] = kNoRepeat;
    self[alarm][0] = 0;
  }
}

double clamp_to(double value, double low, double high) {
  return value > high ? high : value < low ? low : value;
}

void keep_view_near_section(Self self) {
  view_xview[0] = clamp_to(view_xview[0], -kMarginX, self[width] * kCellSize + kMarginX - view_wview[0]);
  view_yview[0] = clamp_to(view_yview[0], -kMarginY, self[height] * kCellSize + kMarginY - view_hview[0]);
}

void EndStep(Self self) {
  follow_mouse(self);
  scroll_background(self);
  see_what_the_mouse_is_over(self);
  if (self[ready] != kWindow) work_on_the_map(self);
  end_key_repeat(self);
  keep_view_near_section(self);
}

void Resized(Self self) {
  ds_map_replace(self[section_data], "HEIGHT", self[height].value());
  ds_map_replace(self[section_data], "WIDTH", self[width].value());
  audio_play_sound(snd_pickup, 0, false);
  if (self[delay] != kNoRepeat) return;
  self[delay] = kWaiting;
  self[alarm][0] = 30;
}

void Alarm_Repeat(Self self) {
  if (self[delay] == kWaiting && keyboard_check(kShiftKey)) self[delay] = kRepeating;
}

// ---- mouse ----

void RightButton(Self self) {
  if (self[ready] == kMap && !instance_exists(obj_editor_sticky)) erase_cell(self[xx], self[yy]);
}
void WheelUp(Self self) { self[flashlight] = min(self[flashlight] + 8, kMaxLight); }
void WheelDown(Self self) { self[flashlight] = max(self[flashlight] - 8, 0); }

void end_choice() {
  for (const int object : {obj_editor_window, obj_editor_sticky})
    with(object, [](Self it) { instance_destroy(it); });
}

void Escape(Self) {
  end_choice();
  audio_play_sound(snd_magic, 0, false);
}

// ---- toolbar ----

void test_play() {
  audio_play_sound(snd_pistolplus, 0, false);
  global[onoffblockprev] = 0; // another level's checkpoint must not set this one's switch
  scr_clearvars();
  global[gamemode] = 0;
  global[section] = kMainSection;
  room_goto(rm_template);
}

void save() {
  const bool saved = save_level(global[levelname].text());
  audio_play_sound(saved ? snd_whistle : snd_wrong, 0, false);
}

void open_window(const Tool& tool) {
  audio_play_sound(snd_pistol, 0, false);
  const Self window = make(0, 0, tool.window);
  if (tool.window != obj_ewindow_quit && window[num_options] == 0 && tool.window != obj_ewindow_section)
    window[text] = tool.label;
}

void Toolbar(Self self) {
  end_choice();
  for (const Tool& tool : kTools)
    if (self[note] == tool.label && tool.window != -1) return open_window(tool);
  if (self[note] == "Clear Selection")
    audio_play_sound(snd_magic, 0, false);
  else if (self[note] == "Save")
    save();
  else if (self[note] == "Play")
    test_play();
}

// ---- drawing ----

void draw_hover(Self self) {
  if (self[ready] != kMap) return;
  draw_set_colour(mouse_check_button(kRightButton) ? c_red : c_green);
  draw_set_alpha(0.4f);
  draw_rectangle(self[xx], self[yy], self[xx] + 15, self[yy] + 15, false);
  draw_set_alpha(1);
}

void draw_margins(Self self) {
  const double left = view_xview[0], top = view_yview[0];
  const double right = left + view_wview[0].Get(), bottom = top + view_hview[0].Get();
  const double section_right = self[width] * kCellSize, section_bottom = self[height] * kCellSize;
  draw_set_colour(make_colour_rgb(48, 48, 48));
  const auto fill = [](double x1, double y1, double x2, double y2) {
    if (x1 <= x2 && y1 <= y2)
      draw_rectangle(static_cast<float>(x1), static_cast<float>(y1), static_cast<float>(x2),
                     static_cast<float>(y2), false);
  };
  fill(left, top, -1, bottom);
  fill(section_right, top, right, bottom);
  fill(max(left, 0), top, min(right, section_right - 1), -1);
  fill(max(left, 0), section_bottom, min(right, section_right - 1), bottom);
  draw_set_colour(c_white);
  draw_rectangle(0, 0, static_cast<float>(section_right), static_cast<float>(section_bottom), true);
}

void Draw(Self self) {
  draw_hover(self);
  if (self[grid] == 1)
    draw_background(bg_grid, floor(view_xview[0] / kCellSize) * kCellSize,
                    floor(view_yview[0] / kCellSize) * kCellSize);
  draw_margins(self);
}

void DrawGui(Self self) { draw_sprite_ext(self, spr_editor_top, 0, 10, 4, 1, 1, 0, c_white, 0.7f); }

void DrawGuiEnd(Self self) {
  draw_sprite(self, spr_target, instance_exists(obj_editor_sticky) ? 1 : -1, self[x], self[y]);
  if (!place_meeting(self, self[x], self[y], obj_button)) return;
  draw_set_font(global[font]);
  const std::string tip = self[text].text();
  if (!tip.empty()) draw_backed_text(self[x] + 8, self[y] + 8, tip, c_white);
}

void Shine(Self self) {
  if (self[ready] != kMap) return;
  const int grey = self[flashlight];
  draw_sprite_ext(self, spr_megadark, 0, self[x], self[y], 1, 1, 0, make_colour_rgb(grey, grey, grey), 1);
}

// ---- the water preview ----

void WaterCreate(Self self) {
  self[image_speed] = 0.15;
  self[height] = 0;
  self[var::move] = 0;
  self[var::time] = shader_get_uniform(sha_water, "time");
}

void WaterDraw(Self self) {
  const int columns = first(obj_editor)[width];
  draw_water(self, self[y], columns, columns * kCellSize, self[height] * kCellSize);
}

void WaterDrawWaves(Self self) { draw_waves(self, self[y] - view_yview[0]); }

} // namespace

const EventTable obj_editor_events = {
    {ev_create, 0, Create},
    {ev_alarm, 0, Alarm_Repeat},
    {ev_alarm, 1, Alarm_Music},
    {ev_step, ev_step_end, EndStep},
    {ev_mouse, ev_global_right_button, RightButton},
    {ev_mouse, ev_mouse_wheel_up, WheelUp},
    {ev_mouse, ev_mouse_wheel_down, WheelDown},
    {ev_other, ev_room_start, RoomStart},
    {ev_other, ev_room_end, RoomEnd},
    {ev_other, ev_user(0), Toolbar},
    {ev_other, ev_user(1), Resized},
    {ev_other, ev_user(2), BuildSection},
    {ev_other, ev_user(3), RebuildWater},
    {ev_other, ev_user(kGivesLight), Shine},
    {ev_draw, ev_draw_normal, Draw},
    {ev_draw, ev_gui, DrawGui},
    {ev_draw, ev_gui_end, DrawGuiEnd},
    {ev_keypress, kEscapeKey, Escape},
};

const EventTable obj_watershader_editor_events = {
    {ev_create, 0, WaterCreate},
    {ev_draw, ev_draw_normal, WaterDraw},
    {ev_draw, ev_draw_end, WaterDrawWaves},
};

} // namespace vesk
