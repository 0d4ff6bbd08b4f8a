// Water: the level of a section that rises and falls, water that fills a section, falls. The box of what is
// an obj_swim is what one swims in.
#include "game/play/water.h"

#include "game/Game.h"

namespace vesk {

namespace {

constexpr int kCell = 16;                          // pixels
constexpr int kViewWidth = 384, kViewHeight = 216; // pixels
constexpr int kWaveReach = 3;                      // pixels that the shader moves the picture at most
constexpr double kIdle = 0.15;                     // frames a step

void Animate(Self self) { self[image_speed] = kIdle; }

// ---- obj_watershader: its surface is at y - 1 ----

constexpr int kHiddenBelow = 48; // pixels under the room of a section that has only water blocks

void LevelCreate(Self self) {
  self[image_speed] = kIdle;
  self[image_xscale] = room_width;
  self[image_yscale] = room_height;
  self[y] += 1;
  self[var::move] = 0;
  self[var::time] = shader_get_uniform(sha_water, "time");
  self[moving] = 0;
  self[target] = self[y];
}

void LevelRoomStart(Self self) {
  if (self[y] != room_height + 1) return;
  self[target] = room_height + kHiddenBelow;
  self[y] = self[target];
}

void LevelAlarm_Move(Self self) {
  if (self[target] > self[y])
    self[y] += 1;
  else if (self[target] < self[y])
    self[y] -= 1;
  if (abs(self[target] - self[y]) < 1) {
    self[y] = self[target];
    self[moving] = 0;
  } else {
    self[alarm][0] = 1;
  }
}

void LevelDraw(Self self) {
  const int columns = static_cast<int>(floor(room_width / kCell)) + 1;
  draw_water(self, self[y] - 1, columns, room_width, room_height);
}

void LevelDrawWaves(Self self) { draw_waves(self, self[y] - 1 - view_yview[0]); }

// ---- obj_fillwater: all of a section, up to the highest that the hero can be ----

constexpr int kAboveRoom = 96; // pixels

void FillCreate(Self self) {
  self[x] = 0;
  self[y] = -kAboveRoom;
  self[image_xscale] = room_width / kCell;
  self[image_yscale] = (room_height + kAboveRoom) / kCell;
}

// ---- falls ----

void FallDraw(Self self) {
  draw_set_blend_mode(bm_add);
  draw_sprite_ext(self, self[sprite_index], self[image_index], self[x], self[y], self[image_xscale],
                  self[image_yscale], self[image_angle], self[image_blend], self[image_alpha]);
  draw_set_blend_mode(bm_normal);
}

// From its place up to the view's top.
void BloodfallDraw(Self self) {
  if (self[x] < view_xview[0] - kCell || self[x] > view_xview[0] + view_wview[0] + kCell) return;
  draw_set_blend_mode(bm_max);
  for (double top = self[y]; top > view_yview[0] - kCell; top -= kCell)
    draw_sprite(self, self[sprite_index], -1, self[x], top);
  draw_sprite(self, spr_splash, -1, self[x], self[y]);
  draw_set_blend_mode(bm_normal);
}

} // namespace

void draw_water(Self water, double top, int columns, double width, double height) {
  draw_set_blend_mode(bm_max);
  for (int column = 0; column < columns; ++column)
    draw_sprite(water, water[sprite_index], -1, kCell * column, top);
  // One pixel of the sprite, stretched over all the water.
  draw_sprite_part_ext(water, water[sprite_index], 0, 0, 14, 1, 1, 0, top + kCell, width, height, c_white, 1);
  draw_set_blend_mode(bm_normal);
}

void draw_waves(Self water, double top) {
  if (!surface_exists(global[overlaysurf])) global[overlaysurf] = surface_create(kViewWidth, kViewHeight);
  surface_set_target(global[overlaysurf]);
  if (top > view_hview[0]) {
    water[var::move] = 0;
  } else {
    const Real height = view_hview[0] - top;
    water[var::move] += 1;
    shader_set(sha_water);
    shader_set_uniform_f(water[var::time], water[var::move]);
    draw_enable_alphablend(false);
    draw_surface_part(application_surface(), 0, top, view_wview[0], height, 0, top);
    shader_reset();
    // The waves would pull in what lies beyond the picture's right edge.
    draw_surface_part(application_surface(), view_wview[0] - kWaveReach, top, kWaveReach, height,
                      view_wview[0] - kWaveReach, top);
    draw_enable_alphablend(true);
  }
  surface_reset_target();
}

const EventTable obj_watershader_events = {
    {ev_create, 0, LevelCreate},
    {ev_alarm, 0, LevelAlarm_Move},
    {ev_other, ev_room_start, LevelRoomStart},
    {ev_draw, ev_draw_normal, LevelDraw},
    {ev_draw, ev_draw_end, LevelDrawWaves},
};
const EventTable obj_fillwater_events = {{ev_create, 0, FillCreate}};
const EventTable obj_watertop_events = {{ev_create, 0, Animate}};
const EventTable obj_wfalltop_events = {{ev_create, 0, Animate}};
const EventTable obj_wfall_events = {{ev_create, 0, Animate}, {ev_draw, ev_draw_normal, FallDraw}};
const EventTable obj_bloodfall_events = {{ev_create, 0, Animate}, {ev_draw, ev_draw_normal, BloodfallDraw}};

} // namespace vesk
