// obj_editor_window: the panel, its title bar, its close button, and what its content is made of.
#include "game/editor/window.h"

#include "Files/Function/Function_Data_Structures.h"
#include "game/Game.h"
#include "game/editor/interface.h"
#include "game/level/catalogue.h"
#include "game/level/level_build.h"

#include <array>

namespace vesk {

namespace {

constexpr int kCloseLeft = 349, kBarTop = 39; // view pixels
constexpr int kLastTabLeft = 325, kTabStep = 24;
constexpr int kBelowBar = 40; // the content's buttons stand below this
constexpr int kGridLeft = 13, kGridStep = 24, kGridColumns = 15;
constexpr double kPanelAlpha = 0.7;

void dress(Self sticky, Placing kind, const std::string& code) {
  switch (kind) {
  case Placing::kObject: return scr_gen_object_editor(sticky.number(), code);
  case Placing::kModifier: return scr_gen_modifier_editor(sticky.number(), code);
  case Placing::kMarker: return scr_gen_marker_editor(sticky.number(), code);
  case Placing::kTile: return;
  }
}

const char* layer_of(Placing kind) {
  switch (kind) {
  case Placing::kObject: return "OBJECTS";
  case Placing::kModifier: return "MODIFIERS";
  case Placing::kMarker: return "MARKERS";
  case Placing::kTile: break;
  }
  return "TILES";
}

void DrawNothing(Self) {} // the panel stands in the GUI layer alone

} // namespace

void window_create(Self self) {
  self[num_options] = 0;
  self[text] = "";
  self[note] = "";
  self[tab] = 0;
  self[error] = "";
  self[image_speed] = 0;
  make_button(self, kCloseLeft, kBarTop, "CLOSE", "Close", {spr_button, spr_editor_top_icons, 14},
              obj_button);
}

void window_destroy(Self self) { destroy_buttons_of(self); }

void window_notified(Self self) {
  audio_play_sound(snd_pistolplus, 0, false);
  if (self[note] == "CLOSE") instance_destroy(self);
}

void window_draw(Self self) {
  draw_sprite_ext(self, spr_editor_window, self[image_index], 10, 36, 1, 1, 0, c_white, kPanelAlpha);
  draw_sprite_ext(self, spr_editor_window_top, self[num_options], 13, 39, 1, 1, 0, c_white, kPanelAlpha);
  draw_set_font(global[font]);
  draw_text(20, 46, self[text]);
}

void make_tab_button(Self self, int at, int tabs, std::string_view said, std::string_view tooltip, int icon,
                     int iconFrame) {
  make_button(self, kLastTabLeft - kTabStep * (tabs - 1 - at), kBarTop, std::string(said),
              std::string(tooltip), {spr_button, icon, iconFrame}, obj_button);
}

void show_tab(Self self, int shown, std::string_view title) {
  with(obj_button, [&](Self button) {
    if (button[notifyto] == self.number() && button[y] > kBelowBar) instance_destroy(button);
  });
  self[tab] = shown;
  self[text] = title;
  event_user(self, 1);
}

void make_grid_button(Self self, int at, double top, std::string_view label, int icon, int iconFrame) {
  const int column = at % kGridColumns, row = at / kGridColumns;
  make_button(self, kGridLeft + column * kGridStep, top + row * kGridStep, std::string(label),
              std::string(label), {spr_button, icon, iconFrame}, obj_button);
}

int grid_rows(int buttons) { return (buttons + kGridColumns - 1) / kGridColumns; }

int edited_section() { return first(obj_editor)[section_data]; }

Self choose_code(Placing kind, const std::string& code) {
  const Self sticky = make(0, 0, obj_editor_sticky);
  sticky[mode] = static_cast<int>(kind);
  sticky[o_name] = code;
  sticky[current_map] = ds_map_find_value(edited_section(), layer_of(kind));
  dress(sticky, kind, code);
  return sticky;
}

Self choose_tiles(int atlasLeft, int atlasTop, int columns, int rows, bool background) {
  const Self sticky = make(0, 0, obj_editor_sticky);
  sticky[mode] = static_cast<int>(Placing::kTile);
  sticky[tile_x] = atlasLeft;
  sticky[tile_y] = atlasTop;
  sticky[mtt_x] = columns;
  sticky[mtt_y] = rows;
  sticky[tile_depth] = background ? kTileDepthBehind : kTileDepth;
  sticky[current_map] = ds_map_find_value(edited_section(), background ? "TILES_BG" : "TILES");
  return sticky;
}

const EventTable obj_editor_window_events = {
    {ev_create, 0, window_create},           {ev_destroy, 0, window_destroy},
    {ev_other, ev_user(0), window_notified}, {ev_draw, ev_draw_normal, DrawNothing},
    {ev_draw, ev_gui, window_draw},
};

} // namespace vesk
