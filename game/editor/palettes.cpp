// The palettes: windows that differ only in their lists. A list is a run of the catalogue, in its order.
#include "Files/Function/Function_Data_Structures.h"
#include "game/Game.h"
#include "game/Music.h"
#include "game/editor/interface.h"
#include "game/editor/window.h"
#include "game/level/catalogue.h"
#include "game/level/level_build.h"
#include "game/text.h"

#include <span>

namespace vesk {

namespace {

constexpr int kGridTop = 63;

struct Tab {
  std::string_view notify, tooltip, title;
  int icons, firstIcon; // sprite and frame of the first button
  std::string_view firstCode;
  int count;
  Placing kind = Placing::kObject;
};

constexpr Tab kControl[] = {
    {"MAIN", "Main", "Control", spr_editor_control_icons, 0, "Durian", 11},
    {"NPC", "NPC", "Control - NPC", spr_editor_control_icons, 11, "NPC Durian", 10},
};
constexpr Tab kItem[] = {
    {"MAIN", "Main", "Item", spr_editor_item_icons, 0, "Coin", 38},
    {"PLATFORM", "Platform", "Item - Platform", spr_editor_item_icons, 38, "Moving Platform", 20},
    {"GUN", "Gun", "Item - Gun", spr_editor_modifier_icons, 12, "Gun", 13},
    {"LIGHT", "Light", "Item - Light", spr_editor_item_icons, 58, "Torch Fire", 17},
    {"DECOR", "Decor", "Item - Decor", spr_editor_item_icons, 75, "Pombo House", 15},
};
constexpr Tab kBlock[] = {{"", "", "Block", spr_editor_block_icons, 0, "Question Block", 33}};
constexpr Tab kEnemy[] = {
    {"MAIN", "Main", "Enemy", spr_editor_enemy_icons, 0, "Snorbit", 41},
    {"CAVE", "Cave", "Enemy - Cave", spr_editor_enemy_icons, 41, "Thornel", 27},
    {"CASTLE", "Castle", "Enemy - Castle", spr_editor_enemy_icons, 68, "Rattlewalker", 33},
};
constexpr Tab kWarp[] = {{"", "", "Warp", spr_editor_warp_icons, 0, "Warp Top", 13, Placing::kMarker}};
constexpr Tab kModifier[] = {
    {"ITEM", "Item", "Modifier - Item", spr_editor_modifier_icons, 0, "Vesk", 12, Placing::kModifier},
    {"GUN", "Gun", "Modifier - Gun", spr_editor_modifier_icons, 12, "Gun", 13, Placing::kModifier},
    {"ARROW", "Arrow", "Modifier - Arrow", spr_editor_modifier_icons, 25, "Up", 10, Placing::kMarker},
    {"TEXT", "Text", "Modifier - Text", spr_editor_modifier_icons, 35, "", 0, Placing::kModifier},
};
constexpr int kTextTab = 3;

struct Palette {
  int window;
  std::span<const Tab> tabs;
};
constexpr Palette kPalettes[] = {
    {obj_ewindow_control, kControl}, {obj_ewindow_item, kItem}, {obj_ewindow_block, kBlock},
    {obj_ewindow_enemy, kEnemy},     {obj_ewindow_warp, kWarp}, {obj_ewindow_modifier, kModifier},
};

std::span<const Tab> tabs_of(Self window) {
  for (const Palette& palette : kPalettes)
    if (window[object_index] == palette.window) return palette.tabs;
  return {};
}
const Tab& tab_of(Self window) { return tabs_of(window)[static_cast<size_t>(window[tab])]; }

template <class Row> std::span<const Row> run_of(std::span<const Row> rows, const Tab& shown) {
  for (size_t at = 0; at < rows.size(); ++at)
    if (rows[at].code == shown.firstCode) return rows.subspan(at, static_cast<size_t>(shown.count));
  return {};
}

template <class Visit> void for_each_code(const Tab& shown, Visit visit) {
  switch (shown.kind) {
  case Placing::kObject:
    for (const CatalogueRow& row : run_of(ObjectCatalogue(), shown)) visit(row.code);
    break;
  case Placing::kMarker:
    for (const CatalogueRow& row : run_of(MarkerCatalogue(), shown)) visit(row.code);
    break;
  default:
    for (const ModifierRow& row : run_of(ModifierCatalogue(), shown)) visit(row.code);
  }
}

void fill_grid(Self self, const Tab& shown) {
  int at = 0;
  for_each_code(shown, [&](std::string_view code) {
    make_grid_button(self, at, kGridTop, code, shown.icons, shown.firstIcon + at);
    ++at;
  });
  self[image_index] = grid_rows(at) - 1;
}

void Create(Self self) {
  event_inherited(self);
  const std::span<const Tab> tabs = tabs_of(self);
  const int count = static_cast<int>(tabs.size());
  if (count > 1) {
    self[num_options] = count;
    for (int at = 0; at < count; ++at) {
      const Tab& row = tabs[static_cast<size_t>(at)];
      make_tab_button(self, at, count, row.notify, row.tooltip, row.icons, row.firstIcon);
    }
  }
  self[text] = tabs[0].title;
  event_user(self, 1);
}

void Build(Self self) { fill_grid(self, tab_of(self)); }

// True when the note was a tab's.
bool changes_tab(Self self) {
  const std::span<const Tab> tabs = tabs_of(self);
  for (size_t at = 0; at < tabs.size(); ++at) {
    if (tabs[at].notify.empty() || !(self[note] == tabs[at].notify)) continue;
    show_tab(self, static_cast<int>(at), tabs[at].title);
    return true;
  }
  return false;
}

void Notified(Self self) {
  event_inherited(self);
  if (self[note] == "CLOSE" || changes_tab(self)) return;
  choose_code(tab_of(self).kind, self[note].text());
  instance_destroy(self);
}

// ---- the text page of the modifiers ----

constexpr int kTextFrame = 6; // of spr_editor_window
constexpr double kMessageWidth = 292;

bool on_text_page(Self self) { return self[tab] == kTextTab; }

void ModifierCreate(Self self) {
  self[readmessage] = noone;
  self[message_preview] = "";
  Create(self);
}

void drop_reader(Self self) {
  with(self[readmessage], [](Self reader) { instance_destroy(reader); });
  self[readmessage] = noone;
}

void ModifierBuild(Self self) {
  drop_reader(self);
  self[message_preview] = "";
  if (!on_text_page(self)) {
    Build(self);
    return;
  }
  self[readmessage] = make_key_reader(self, kMessageText).number();
  make_button(self, 13, 63, "TEXT:", "Text Modifier", {spr_button, spr_editor_modifier_icons, 35},
              obj_button);
  make_button(self, 13, 87, "DESTINATION:", "Destination Marker", {spr_button, spr_editor_modifier_icons, 36},
              obj_button);
  self[image_index] = kTextFrame;
}

void ModifierNotified(Self self) {
  if (!on_text_page(self) || !(self[note] == kTextPrefix || self[note] == kDestinationPrefix)) {
    Notified(self);
    return;
  }
  const std::string typed = first(self[readmessage])[words].text();
  if (typed.empty()) {
    refuse(self, "Type something first!");
    return;
  }
  event_inherited(self);
  choose_code(Placing::kModifier, self[note].text() + typed);
  instance_destroy(self);
}

void ModifierTyped(Self self) {
  draw_set_font(global[font]);
  self[message_preview] = string_make_width(first(self[readmessage])[words].text(), kMessageWidth);
}

void ModifierDestroy(Self self) {
  event_inherited(self);
  drop_reader(self);
}

void ModifierDrawGui(Self self) {
  event_inherited(self);
  if (!on_text_page(self)) return;
  draw_sprite(self, spr_editor_messagebox, 0, 37, 63);
  const std::string typed = first(self[readmessage])[words].text();
  draw_text(45, 69,
            prompt(typed.empty() ? "" : self[message_preview].text(), self[error].text(), "Type some text!"));
  draw_set_colour(c_white);
}

// ---- music and background: palettes that set the section instead of choosing ----

void MusicCreate(Self self) {
  event_inherited(self);
  int at = 0;
  for (const MusicLabel& row : MusicLabels()) {
    make_grid_button(self, at, kGridTop, row.label, spr_editor_music_icons, at);
    ++at;
  }
  self[image_index] = grid_rows(at) - 1;
}

void MusicNotified(Self self) {
  event_inherited(self);
  if (self[note] == "CLOSE") return;
  const Self editor = first(obj_editor);
  const double chosen = scr_gen_music(self[note].text());
  if (editor[music] != chosen) {
    ds_map_replace(edited_section(), "MUSIC", self[note].value());
    audio_stop_sound(editor[music]);
    editor[music] = chosen;
    audio_play_sound(editor[music], kMusicPriority, true);
  }
  instance_destroy(self);
}

void BackgroundCreate(Self self) {
  event_inherited(self);
  int at = 0;
  for (const BackgroundLabel& row : BackgroundLabels()) {
    make_grid_button(self, at, kGridTop, row.label, spr_editor_background_icons, at);
    ++at;
  }
  self[image_index] = grid_rows(at) - 1;
}

void BackgroundNotified(Self self) {
  event_inherited(self);
  if (self[note] == "CLOSE") return;
  with(obj_bganimator, [](Self animator) { instance_destroy(animator); });
  background_index[0] = scr_gen_background(self[note].text());
  ds_map_replace(edited_section(), "BACKGROUND", self[note].value());
  instance_destroy(self);
}

} // namespace

#define PALETTE_EVENTS                                                                                       \
  { {ev_create, 0, Create}, {ev_other, ev_user(0), Notified}, {ev_other, ev_user(1), Build}, }

const EventTable obj_ewindow_control_events = PALETTE_EVENTS;
const EventTable obj_ewindow_item_events = PALETTE_EVENTS;
const EventTable obj_ewindow_block_events = PALETTE_EVENTS;
const EventTable obj_ewindow_enemy_events = PALETTE_EVENTS;
const EventTable obj_ewindow_warp_events = PALETTE_EVENTS;
#undef PALETTE_EVENTS

const EventTable obj_ewindow_modifier_events = {
    {ev_create, 0, ModifierCreate},           {ev_destroy, 0, ModifierDestroy},
    {ev_other, ev_user(0), ModifierNotified}, {ev_other, ev_user(1), ModifierBuild},
    {ev_other, ev_user(8), ModifierTyped},    {ev_draw, ev_gui, ModifierDrawGui},
};

const EventTable obj_ewindow_music_events = {
    {ev_create, 0, MusicCreate},
    {ev_other, ev_user(0), MusicNotified},
};

const EventTable obj_ewindow_background_events = {
    {ev_create, 0, BackgroundCreate},
    {ev_other, ev_user(0), BackgroundNotified},
};

} // namespace vesk
