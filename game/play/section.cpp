#include "game/play/section.h"

#include "Files/Function/Function_Data_Structures.h"
#include "game/Game.h"
#include "game/level/catalogue.h"
#include "game/level/level_build.h"
#include "game/play/arrival.h"

namespace vesk {

namespace {

struct Section {
  int map = -1;
  double number(const char* key) const { return ValueAsReal(ds_map_find_value(map, key)); }
  std::string text(const char* key) const { return ValueAsText(ds_map_find_value(map, key)); }
  template <class Visit> void for_each(const char* layer, Visit visit) const {
    const int cells = ValueAsInt32(ds_map_find_value(map, layer));
    for (RValue key = ds_map_find_first(cells); !key.IsUndefined(); key = ds_map_find_next(cells, key))
      visit(ValueAsText(key), ValueAsText(ds_map_find_value(cells, key)));
  }
};

// A door may lead to a section that was deleted since: nothing is built then, as with no level at all.
bool find_section(Section& it) {
  if (!ds_exists(global[leveldata], ds_type_map)) return false;
  if (!ds_map_exists(global[leveldata], global[section].value())) return false;
  it.map = ValueAsInt32(ds_map_find_value(global[leveldata], global[section].value()));
  return true;
}

// A room keeps its size while it runs: a section of another size takes one more restart.
bool resize_room(const Section& it) {
  const int width = static_cast<int>(it.number("WIDTH")) * kCellSize;
  const int height = static_cast<int>(it.number("HEIGHT")) * kCellSize;
  if (room_width == width && room_height == height) return false;
  room_set_height(room, height);
  room_set_width(room, width);
  room_restart();
  with(obj_persistent, [](Self controller) {
    controller[mode] = 0;
    controller[alarm][1] = 0;
  });
  return true;
}

void set_scene(Self manager, const Section& it) {
  manager[levelmusic] = scr_gen_music(it.text("MUSIC"));
  if (manager[levelmusic] == snd_horror) make(0, 0, obj_suspense);
  background_index[0] = scr_gen_background(it.text("BACKGROUND"));
  if (it.number("DARKNESS") == 1) with(obj_lightmanager, [](Self light) { light[ambientlight] = 0; });
  if (it.number("RAIN") == 1) make(0, 0, obj_stormmaker);
}

void build_terrain(const Section& it) {
  it.for_each("TILES",
              [](const std::string& key, const std::string& value) { scr_gen_tile(key, value, kTileDepth); });
  merge_terrain();
  it.for_each("TILES_BG", [](const std::string& key, const std::string& value) {
    scr_gen_tile(key, value, kTileDepthBehind);
  });
}

// Markers and modifiers find the objects at their cells, so they come last.
void build_things(const Section& it) {
  it.for_each("OBJECTS", scr_gen_object_level);
  it.for_each("MARKERS", scr_gen_marker_level);
  it.for_each("MODIFIERS", scr_gen_modifier_level);
  if (!any_hero()) make(8, 0, obj_tovin);
}

void build_water(const Section& it) {
  if (it.number("WATER_LEVEL") > 0 || instance_exists(obj_waterlevelblock)) {
    const Self water = make(0, room_height - it.number("WATER_LEVEL") * kCellSize, obj_watershader);
    const std::string colour = it.text("WATER_COLOR");
    if (colour == "Red")
      water[sprite_index] = spr_watertop_r;
    else if (colour == "Green")
      water[sprite_index] = spr_watertop_g;
  }
  if (global[waterlevelprev] != -1)
    with(obj_watershader, [](Self water) {
      water[y] = global[waterlevelprev];
      water[target] = global[waterlevelprev];
    });
}

// Everything made above came after the room-start broadcast had passed.
void replay_room_start(Self manager) {
  manager[visible] = 0;
  with(all, [](Self it) { event_perform(it, ev_other, ev_room_start); });
  manager[visible] = 1;
}

} // namespace

bool build_section(Self manager) {
  Section it;
  if (!find_section(it)) return true;
  if (resize_room(it)) return false;
  set_scene(manager, it);
  build_terrain(it);
  build_things(it);
  build_water(it);
  replay_room_start(manager);
  return true;
}

} // namespace vesk
