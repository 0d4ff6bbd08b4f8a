// The placeholders on the map and the choice at the mouse that places and erases them.
#include "Files/Function/Function_Data_Structures.h"
#include "game/Game.h"
#include "game/editor/editor.h"
#include "game/editor/interface.h"
#include "game/editor/window.h"
#include "game/level/catalogue.h"
#include "game/level/level_build.h"
#include "game/play/lighting.h"
#include "game/text.h"

#include <array>
#include <span>
#include <vector>

namespace vesk {

namespace {

constexpr int kDiagonalKey = 'C';
constexpr int kBelowToolbar = 34; // view pixels

// ---- placeholders ----

void PlaceholderCreate(Self self) {
  self[image_speed] = 0;
  self[image_alpha] = 1;
  self[x_offset] = 0;
  self[y_offset] = 0;
  self[x_direct] = 1;
  self[y_direct] = 1;
  self[a_l] = 0;
}

void draw_look(Self self, double left, double top) {
  if (self[sprite_index] < 0) return;
  draw_sprite_ext(self, self[sprite_index], self[image_index], left + self[x_offset].Get(),
                  top + self[y_offset].Get(), self[x_direct], self[y_direct], 0, self[image_blend],
                  self[image_alpha]);
  for (int row = 0; row < self[a_l]; ++row)
    draw_sprite_ext(self, self[a_s].at(row, 0), self[a_s].at(row, 1), left + self[a_s].at(row, 2).Get(),
                    top + self[a_s].at(row, 3).Get(), 1, 1, 0, c_white, self[a_s].at(row, 4));
}

void PlaceholderDraw(Self self) { draw_look(self, self[x], self[y]); }

void ModifierCreate(Self self) {
  event_inherited(self);
  self[cc_text] = "";
}

// Under the mouse the text takes the icon's place.
bool shows_text(Self self) {
  const Self editor = first(obj_editor);
  return !(self[cc_text] == "") && editor && editor[ready] == 0 && editor[xx] == self[x] &&
         editor[yy] == self[y];
}

void ModifierDraw(Self self) {
  if (!shows_text(self)) event_inherited(self);
}

void ModifierDrawGui(Self self) {
  if (!shows_text(self)) return;
  draw_set_font(global[font]);
  draw_backed_text(self[x] - view_xview[0], self[y] - view_yview[0], self[cc_text].text(), self[image_blend],
                   kBelowToolbar);
}

// ---- the light of a placeholder ----

void LightCreate(Self self) {
  self[light_color] = kLightOf<obj_lamplight>.colour; // unless the catalogue says otherwise
  self[light_mask] = kLightOf<obj_lamplight>.sprite;
}

void LightShine(Self self) {
  draw_sprite_ext(self, self[light_mask], 0, self[x] + 8 - view_xview[0], self[y] + 8 - view_yview[0], 1, 1,
                  0, self[light_color], 1);
}

// ---- cells ----

struct Spot {
  int x, y; // room pixels of the cell's corner
};
std::string key_of(Spot at) { return cell_key(at.x / kCellSize, at.y / kCellSize); }

bool in_section(Spot at) {
  const Self editor = first(obj_editor);
  return at.x > -1 && at.y > -1 && at.x < editor[width] * kCellSize && at.y < editor[height] * kCellSize;
}

bool is_taken(Self sticky, Spot at) { return ds_map_exists(sticky[current_map], key_of(at)); }

// Whoever of the object stands at the cell goes.
void remove_at(int object, Spot at) {
  with(object, [&](Self it) {
    if (it[x] == at.x && it[y] == at.y) instance_destroy(it);
  });
}

// ---- placing ----

constexpr std::array kPlaceholders = {obj_editor_object, obj_editor_modifier, obj_editor_marker};
using Dress = void (*)(double, std::string);
constexpr std::array<Dress, 3> kDress = {scr_gen_object_editor, scr_gen_modifier_editor,
                                         scr_gen_marker_editor};

void place_code(Self sticky, Spot at) {
  const auto kind = static_cast<size_t>(sticky[mode]);
  const Self it = make(at.x, at.y, kPlaceholders[kind]);
  kDress[kind](it.number(), sticky[o_name].text());
  ds_map_add(sticky[current_map], key_of(at), sticky[o_name].value());
}

void place_tile(Self sticky, Spot at, int column, int row) {
  const int left = static_cast<int>(sticky[tile_x]) + column * kCellSize;
  const int top = static_cast<int>(sticky[tile_y]) + row * kCellSize;
  tile_add(bg_tiles, left, top, kCellSize, kCellSize, static_cast<float>(at.x), static_cast<float>(at.y),
           sticky[tile_depth]);
  ds_map_add(sticky[current_map], key_of(at), cell_key(left / kCellSize, top / kCellSize));
}

void erase_tile(Self sticky, Spot at) {
  tile_delete(tile_layer_find(sticky[tile_depth], static_cast<float>(at.x), static_cast<float>(at.y)));
  ds_map_delete(sticky[current_map], key_of(at));
}

void place_stamp(Self sticky, Spot at) {
  for (int column = 0; column < sticky[mtt_x]; ++column)
    for (int row = 0; row < sticky[mtt_y]; ++row) {
      const Spot cell{at.x + column * kCellSize, at.y + row * kCellSize};
      if (in_section(cell) && !is_taken(sticky, cell)) place_tile(sticky, cell, column, row);
    }
}

// Spreads from a cell over all that `belongs`, which must no longer hold for a cell once it was `visited`.
constexpr Spot kSideways[] = {{-16, 0}, {16, 0}, {0, -16}, {0, 16}};
constexpr Spot kDiagonally[] = {{-16, -16}, {-16, 16}, {16, -16}, {16, 16}};

template <class Belongs, class Visit>
void spread(Spot from, std::span<const Spot> steps, Belongs belongs, Visit visit) {
  std::vector<Spot> open{from};
  while (!open.empty()) {
    const Spot at = open.back();
    open.pop_back();
    if (!belongs(at)) continue;
    visit(at);
    for (const Spot step : steps) open.push_back({at.x + step.x, at.y + step.y});
  }
}

// How the held keys widen a tile choice: plain, flood, or diagonal.
std::span<const Spot> spread_steps() {
  if (keyboard_check(kShiftKey)) return kSideways;
  if (keyboard_check(kDiagonalKey)) return kDiagonally;
  return {};
}

bool may_work(Self sticky) { return sticky[ready] == 0 && first(obj_editor)[ready] == 0; }
Spot spot_of(Self sticky) { return {sticky[x], sticky[y]}; }

void StickyPlace(Self self) {
  const Spot at = spot_of(self);
  if (!may_work(self) || !in_section(at) || is_taken(self, at)) return;
  audio_play_sound(snd_rapidfire, 0, false);
  if (self[mode] != static_cast<int>(Placing::kTile)) return place_code(self, at);
  const std::span<const Spot> steps = spread_steps();
  if (steps.empty()) return place_stamp(self, at);
  audio_play_sound(snd_magic, 0, false);
  spread(
      at, steps, [&](Spot cell) { return in_section(cell) && !is_taken(self, cell); },
      [&](Spot cell) { place_tile(self, cell, 0, 0); });
}

void erase_spread(Self self, Spot from, std::span<const Spot> steps) {
  const int map = self[current_map];
  const RValue erased = ds_map_find_value(map, key_of(from));
  spread(
      from, steps,
      [&](Spot cell) { return CompareValues(ds_map_find_value(map, key_of(cell)), erased, 0) == 0; },
      [&](Spot cell) { erase_tile(self, cell); });
}

void StickyErase(Self self) {
  const Spot at = spot_of(self);
  if (!may_work(self) || mouse_check_button(kLeftButton) || !is_taken(self, at)) return;
  audio_play_sound(snd_click, 0, false);
  if (self[mode] != static_cast<int>(Placing::kTile)) {
    remove_at(kPlaceholders[static_cast<size_t>(self[mode])], at);
    if (self[mode] == static_cast<int>(Placing::kObject)) remove_at(obj_editor_light, at);
    ds_map_delete(self[current_map], key_of(at));
    return;
  }
  const std::span<const Spot> steps = spread_steps();
  if (steps.empty()) return erase_tile(self, at);
  audio_play_sound(snd_magic, 0, false);
  erase_spread(self, at, steps);
}

// ---- the sticky itself ----

void StickyCreate(Self self) {
  PlaceholderCreate(self);
  self[cc_text] = "";
  self[mode] = static_cast<int>(Placing::kObject);
  self[o_name] = "";
  self[tile_x] = 0;
  self[tile_y] = 0;
  self[mtt_x] = 1;
  self[mtt_y] = 1;
  self[tile_depth] = kTileDepth;
  self[current_map] = noone;
  self[ready] = 1;
  self[alarm][0] = 5;
}

// The click that chose must not place.
void StickyAlarm_Release(Self self) {
  if (mouse_check_button(kLeftButton))
    self[alarm][0] = 1;
  else
    self[ready] = 0;
}

void StickyEndStep(Self self) {
  const Self editor = first(obj_editor);
  self[x] = editor[xx];
  self[y] = editor[yy];
}

void StickyDraw(Self self) {
  if (first(obj_editor)[ready] != 0 || mouse_check_button(kRightButton)) return;
  if (self[mode] == static_cast<int>(Placing::kTile))
    draw_background_part(bg_tiles, self[tile_x], self[tile_y], self[mtt_x] * kCellSize,
                         self[mtt_y] * kCellSize, self[x], self[y]);
  else
    draw_look(self, self[x], self[y]);
}

} // namespace

// The right button with nothing in hand clears the whole cell.
void erase_cell(int left, int top) {
  const Spot at{left, top};
  const int map = edited_section();
  struct Layer {
    const char* key;
    int object; // of its placeholders, or -1 with the depth of its tiles
    int depth;
  };
  constexpr Layer kInOrder[] = {
      {"TILES", -1, kTileDepth},         {"TILES_BG", -1, kTileDepthBehind},
      {"OBJECTS", obj_editor_object, 0}, {"MODIFIERS", obj_editor_modifier, 0},
      {"MARKERS", obj_editor_marker, 0},
  };
  for (const Layer& layer : kInOrder) {
    const int cells = ValueAsInt32(ds_map_find_value(map, layer.key));
    if (!ds_map_exists(cells, key_of(at))) continue;
    audio_play_sound(snd_click, 0, false);
    if (layer.object == -1)
      tile_delete(tile_layer_find(static_cast<float>(layer.depth), static_cast<float>(left),
                                  static_cast<float>(top)));
    else
      remove_at(layer.object, at);
    if (layer.object == obj_editor_object) remove_at(obj_editor_light, at);
    ds_map_delete(cells, key_of(at));
  }
}

const EventTable obj_editor_placeparent_events = {
    {ev_create, 0, PlaceholderCreate},
    {ev_draw, ev_draw_normal, PlaceholderDraw},
};
const EventTable obj_editor_object_events = {};
const EventTable obj_editor_marker_events = {};
const EventTable obj_editor_modifier_events = {
    {ev_create, 0, ModifierCreate},
    {ev_draw, ev_draw_normal, ModifierDraw},
    {ev_draw, ev_gui, ModifierDrawGui},
};
const EventTable obj_editor_light_events = {
    {ev_create, 0, LightCreate},
    {ev_other, ev_user(kGivesLight), LightShine},
};
// Fills work on a list of cells; no instance is made for them.
const EventTable obj_editor_fill_tool_events = {};
const EventTable obj_editor_sticky_events = {
    {ev_create, 0, StickyCreate},
    {ev_alarm, 0, StickyAlarm_Release},
    {ev_step, ev_step_end, StickyEndStep},
    {ev_mouse, ev_global_left_button, StickyPlace},
    {ev_mouse, ev_global_right_button, StickyErase},
    {ev_draw, ev_draw_normal, StickyDraw},
};

} // namespace vesk
