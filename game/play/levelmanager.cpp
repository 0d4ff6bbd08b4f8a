// obj_levelmanager: builds the section at room start; camera, sleep of far things, music, blue switch, HUD
// while it runs. The P-meter stands in pmeter.cpp.
#include "game/play/levelmanager.h"

#include "Files/Font/Font.h"
#include "Files/Function/Function_Data_Structures.h"
#include "game/Game.h"
#include "game/level/catalogue.h"
#include "game/level/level_build.h"
#include "game/play/globals.h"
#include "game/play/pmeter.h"
#include "game/text.h"

namespace vesk {

namespace {

constexpr int kEnter = 13, kAlt = 18;
constexpr int kMusicPriority = 99;
constexpr int kSleepMargin = 32; // pixels around the view in which the sleeping families are awake
constexpr int kLowHealth = 8, kFullHealth = 25;
constexpr int kBarWidth = 182; // pixels of a full health or ammo bar

// Those who stand for the hero; the first that exists leads the camera.
constexpr int kHeroes[] = {obj_tovin, obj_warptovin, obj_jumpspawn, obj_vinespawn};

Self any_hero() {
  for (const int object : kHeroes)
    if (const Self it = first(object)) return it;
  return {};
}

void Create(Self self) {
  self[levelmusic] = 0;
  if (global[star] == 0) self[alarm][0] = 2;
  view_object[0] = obj_levelmanager;
  self[musicdisabled] = 0;
  self[anim] = 0;
  self[alarm][5] = 7;
  self[barrier] = 1;
  self[alarm][6] = 3;
  self[switchon] = 0;
  self[pmeter] = 0;
  self[slowdown] = 0;
  self[maxammo] = 1;
  self[lockon] = 0;
  self[alarm][7] = kMeterSteps;
  self[heart] = 0;
  self[beat] = 0;
  self[beatd] = 0.1;
}

// ---- room start ----

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

void set_scene(Self self, const Section& it) {
  self[levelmusic] = scr_gen_music(it.text("MUSIC"));
  if (self[levelmusic] == snd_horror) make(0, 0, obj_suspense);
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
void replay_room_start(Self self) {
  self[visible] = 0;
  with(all, [](Self it) { event_perform(it, ev_other, ev_room_start); });
  self[visible] = 1;
}

void map_keys() {
  if (keyboard_get_map(88) != 88) return;
  keyboard_set_map(88, 16); // X jumps
  keyboard_set_map(90, 17); // Z acts
}

void enter_level(Self self) {
  if (global[tovinstart] != 0) return;
  global[tovinstart] = 1;
  global[carrieditem] = noone;
  global[pswitch] = 0;
  global[star] = 0;
  if (global[checkpoint_x] != noone) {
    event_user(self, 0);
    make(global[checkpoint_x], global[checkpoint_y], obj_tovin);
  }
  global[checkpointroom] = room;
  make(0, 0, obj_tovinstart);
}

void hand_over_music(Self self) {
  if (global[levelmusic] == self[levelmusic]) return;
  audio_stop_sound(global[levelmusic]);
  global[levelmusic] = self[levelmusic];
}

struct Arrival {
  int object;
  int right_by;
};
constexpr Arrival kArrivals[] = {{obj_tovin, 8}, {obj_warptovin, 16}, {obj_jumpspawn, 8}, {obj_vinespawn, 8}};

void arrive_by_warp(Self self) {
  if (global[post_section] == "") return;
  event_user(self, 0);
  const Self marker = first(static_cast<int>(scr_find_marker(global[post_section].text())));
  const int way = global[postchange];
  if (marker && way >= 0 && way < static_cast<int>(std::size(kArrivals)))
    make(marker[x] + kArrivals[way].right_by, marker[y], kArrivals[way].object);
  global[post_section] = "";
}

void bring_carried_item(Self self) {
  if (global[velmo] == 2) {
    make(0, 0, obj_hoskushoe);
    return;
  }
  if (global[carrieditem] == noone) return;
  const Self item = make(self[x] - 8, self[y] + 15, global[carrieditem]);
  global[shallihold] = 2;
  with(obj_tovin, [](Self hero) { // one that stands here already has taken its hands from the old value
    hero[holding] = 2;
    global[shallihold] = 0;
  });
  item[held] = 1;
  const bool gun = object_is_ancestor(global[carrieditem], obj_gunparent);
  item[depth] = gun ? -6 : -4;
  if (global[carriedsprite] != noone) {
    item[sprite_index] = global[carriedsprite];
    global[carriedsprite] = noone;
  }
  if (gun) item[ammo] = global[ammo]; // an empty one stays empty
  if (global[ammo] > 0) self[maxammo] = item[maxammo];
  global[carrieditem] = noone;
}

void go_on_with_timers(Self self) {
  if (global[pswitch] > 0) {
    event_user(self, 1);
    self[alarm][10] = max(global[pswitch], 30);
    global[pswitch] = 0;
  }
  if (global[star] > 0) {
    make(self[x], self[y], obj_invincibility)[alarm][0] = max(global[star], 30);
    global[star] = 0;
  }
}

// A door may lead to a section that was deleted since: nothing is built then, as with no level at all.
bool find_section(Section& it) {
  if (!ds_exists(global[leveldata], ds_type_map)) return false;
  if (!ds_map_exists(global[leveldata], global[section].value())) return false;
  it.map = ValueAsInt32(ds_map_find_value(global[leveldata], global[section].value()));
  return true;
}

void RoomStart(Self self) {
  if (self[visible] == 0) return; // the replay below reaches the manager too
  if (Section it; find_section(it)) {
    if (resize_room(it)) return;
    set_scene(self, it);
    build_terrain(it);
    build_things(it);
    build_water(it);
    replay_room_start(self);
  }
  map_keys();
  enter_level(self);
  hand_over_music(self);
  arrive_by_warp(self);
  if (global[died] == 1) { // a hero that died carries nothing back
    global[died] = 0;
    return;
  }
  bring_carried_item(self);
  go_on_with_timers(self);
}

// ---- end step ----

void lead_camera(Self self) {
  if (const Self scroll = first(obj_autoscroll)) {
    self[x] = scroll[x];
    self[y] = scroll[y];
  } else if (const Self hero = any_hero()) {
    self[x] = hero[x];
    self[y] = hero[y] + 16;
  }
  self[x] = round(self[x]);
  self[y] = round(self[y]);
}

void scroll_background() {
  background_x[0] = view_xview[0] / 2;
  if (background_height[0] < room_height && background_height[0] > view_hview[0])
    background_y[0] = view_yview[0] * (room_height - background_height[0]) / (room_height - view_hview[0]);
}

void sleep_far_things() {
  instance_deactivate_object(obj_deactenemyparent);
  instance_deactivate_object(obj_deactivation);
  instance_activate_region(view_xview[0] - kSleepMargin, view_yview[0] - kSleepMargin,
                           view_wview[0] + 2 * kSleepMargin, view_hview[0] + 2 * kSleepMargin, true);
}

void hold_at(Self hero, double edge, int side) {
  hero[x] = edge;
  if (hero[hspeed] * side > 0) hero[hspeed] = 0;
  with(obj_slider, [&](Self slider) { slider[x] = edge; });
}

void keep_hero_in_view(Self self) {
  const Self hero = first(obj_tovin);
  if (self[barrier] != 0 || !hero) return;
  if (hero[x] < view_xview[0] + 5)
    hold_at(hero, view_xview[0] + 5, -1);
  else if (hero[x] > view_xview[0] + view_wview[0] - 5)
    hold_at(hero, view_xview[0] + view_wview[0] - 5, 1);
}

void mind_heartbeat(Self self) {
  if (self[heart] == 0 && health <= kLowHealth) {
    self[heart] = 1;
    self[beat] = 0;
    self[beatd] = 0.1;
    self[alarm][2] = 4;
    audio_play_sound(snd_heartbeat, 1, true);
  } else if (self[heart] == 1 && health > kLowHealth) {
    self[heart] = 0;
    audio_stop_sound(snd_heartbeat);
  }
}

void EndStep(Self self) {
  lead_camera(self);
  scroll_background();
  sleep_far_things();
  keep_hero_in_view(self);
  mind_heartbeat(self);
}

// ---- blue switch ----

void set_blue_switch(Self self, bool on) {
  if (self[switchon] == on) return;
  self[switchon] = on;
  event_user(self, 2);
  with(obj_pcoin, [&](Self coin) { coin[visible] = on; });
  if (on) {
    with(obj_spring_hidden, [](Self spring) { make(spring[x], spring[y], obj_spring_blue); });
  } else {
    with(obj_spring_blue, [](Self spring) {
      make(spring[x], spring[y], obj_smoke);
      instance_destroy(spring);
    });
  }
  for (const int door : {obj_door_hidden, obj_door_hidden_locked})
    with(door, [&](Self it) { it[visible] = on; });
  with(obj_pplatform, [&](Self it) { event_user(it, on ? 0 : 1); });
  for (const int conveyor : {obj_conveyor_left, obj_conveyor_right})
    with(conveyor, [&](Self it) { it[image_speed] = on ? 0 : 1; });
  audio_stop_sound(snd_switchsong);
  if (on) audio_play_sound(snd_switchsong, kMusicPriority, true);
}

void BlueSwitchOn(Self self) { set_blue_switch(self, true); }
void Alarm_BlueSwitchOff(Self self) { set_blue_switch(self, false); }

void turn_into(int from, int to) {
  with(from, [&](Self it) {
    make(it[x], it[y], to);
    instance_destroy(it);
  });
}

// The middle object keeps new coins from being turned back.
void SwapBricksAndCoins(Self) {
  turn_into(obj_brick, obj_coinchange);
  turn_into(obj_coin, obj_brick);
  turn_into(obj_coinchange, obj_coin);
}

// ---- other events ----

void RemoveHeroes(Self) {
  for (const int object : kHeroes) with(object, [](Self it) { instance_destroy(it); });
}

void Silence(Self self) {
  self[musicdisabled] = 1;
  audio_stop_sound(self[levelmusic]);
  audio_stop_sound(snd_starman);
  audio_stop_sound(snd_switchsong);
}

void RoomEnd(Self) {
  for (const int sound : {snd_switchsong, snd_pmeter, snd_heartbeat})
    if (audio_is_playing(sound)) audio_stop_sound(sound);
}

void PressEnter(Self) {
  if (keyboard_check(kAlt) || instance_exists(obj_levelender)) return;
  make(0, 0, obj_pausemenu);
  keyboard_clear(kEnter);
}

void Alarm_Music(Self self) {
  if (!audio_is_playing(self[levelmusic]) && self[musicdisabled] == 0)
    audio_play_sound(self[levelmusic], kMusicPriority, true);
}

void Alarm_StopMusic(Self self) { audio_stop_sound(self[levelmusic]); }

void Alarm_Pulse(Self self) {
  self[beat] += self[beatd];
  if (self[beat] > 1) {
    self[beat] = 1;
    self[beatd] = -0.1;
  } else if (self[beat] < 0) {
    self[beat] = 0;
    self[beatd] = 0.1;
  }
  if (self[heart] == 1) self[alarm][2] = 4;
}

void Alarm_EndLockOn(Self self) { self[lockon] = 0; }

void Alarm_Animate(Self self) {
  self[anim] += 1;
  self[alarm][5] = 7;
}

void Alarm_DropBarrier(Self self) { self[barrier] = 0; }

// ---- HUD ----

void draw_bar(int sprite, double amount, double full, double left, double top, double opacity) {
  draw_sprite_part_ext(nullptr, sprite, 0, 0, 0, kBarWidth * amount / full, 7, left, top, 1, 1, c_white,
                       opacity);
}

void draw_ammo(Self self) {
  draw_sprite(self, spr_healthbar, global[ammo] != 0 ? 1 : 0, 2, 4);
  if (global[ammo] == 0) return;
  draw_bar(spr_healthbar_gray, global[ammo], self[maxammo], 6, 19, 0.7);
  draw_text(13, 23, "Ammo: " + global[ammo].text() + "/" + self[maxammo].text());
}

void draw_counts(Self self) {
  draw_set_halign(fa_right);
  draw_text(380, 4, string_add_zeros(score, 8));
  const std::string count = global[coins].text();
  draw_sprite(self, spr_coinhud, 0, 366 - string_width(count), 16);
  draw_text(380, 16, count);
}

void DrawGui(Self self) {
  if (self[heart] == 1) draw_sprite_ext(self, spr_bloodoverlay, 0, 0, 0, 1, 1, 0, c_white, self[beat]);
  draw_set_font(global[font]);
  draw_ammo(self);
  draw_bar(spr_healthbar_red, health, kFullHealth, 6, 7, 1);
  draw_text(13, 2, "Health: " + string(RValue(health.Get())) + "/25");
  draw_counts(self);
  draw_sprite(self, spr_pmeter, self[pmeter], 303, 203);
  draw_set_halign(fa_left);
}

} // namespace

void scr_return() {
  const DebugFrame frame("scr_return");
  if (keyboard_check(17)) keyboard_key_release(17);
  io_clear();
  keyboard_unset_map();
  global[powerup] = 1;
  if (global[gamemode] == 0) { // a test from the editor
    global[rememberview][0] = view_xview[0].Get();
    global[rememberview][1] = view_yview[0].Get();
    room_goto(rm_editor);
  } else {
    room_goto(rm_mainmenu);
  }
}

void scr_clearvars() {
  const DebugFrame frame("scr_clearvars");
  global[tovinstart] = 0;
  global[carrieditem] = noone;
  global[carriedsprite] = noone;
  global[shallihold] = 0;
  global[pswitch] = 0;
  global[star] = 0;
  global[onoffblock] = global[onoffblockprev];
  global[waterlevelprev] = -1;
  global[died] = 0;
  global[velmo] = 0;
  global[postchange] = -1;
  health = 25;
  global[clear] = 0;
  score = 0;
  global[coins] = 0;
  global[checkpoint_x] = noone;
  global[checkpoint_y] = noone;
  global[checkpoint_section] = "Main";
  global[post_section] = "";
  global[ammo] = 0;
}

const EventTable obj_levelmanager_events = {
    {ev_create, 0, Create},
    {ev_alarm, 0, Alarm_Music},
    {ev_alarm, 1, Alarm_StopMusic},
    {ev_alarm, 2, Alarm_Pulse},
    {ev_alarm, 3, Alarm_EndLockOn},
    {ev_alarm, 5, Alarm_Animate},
    {ev_alarm, 6, Alarm_DropBarrier},
    {ev_alarm, 7, Alarm_SampleMeter},
    {ev_alarm, 8, Alarm_CheckFullMeter},
    {ev_alarm, 9, Alarm_BlinkMeter},
    {ev_alarm, 10, Alarm_BlueSwitchOff},
    {ev_step, ev_step_end, EndStep},
    {ev_other, ev_room_start, RoomStart},
    {ev_other, ev_room_end, RoomEnd},
    {ev_other, ev_user(0), RemoveHeroes},
    {ev_other, ev_user(1), BlueSwitchOn},
    {ev_other, ev_user(2), SwapBricksAndCoins},
    {ev_other, ev_user(3), Silence},
    {ev_draw, ev_gui, DrawGui},
    {ev_keypress, kEnter, PressEnter},
};

} // namespace vesk
