// obj_watershader: the water of a section. Its box is what one swims in; the picture below its top is drawn
// once more through the shader.
#include "game/Game.h"

namespace vesk {

namespace {

constexpr int kViewWidth = 384, kViewHeight = 216; // pixels
constexpr int kWaveReach = 3;                      // pixels that the shader moves the picture at most
constexpr int kHiddenBelow = 48; // pixels under the room of a section that has only water blocks

void Create(Self self) {
  self[image_speed] = 0.15;
  self[image_xscale] = room_width;
  self[image_yscale] = room_height;
  self[y] += 1;
  self[var::move] = 0;
  self[var::time] = shader_get_uniform(sha_water, "time");
  self[moving] = 0;
  self[target] = self[y];
}

void RoomStart(Self self) {
  if (self[y] != room_height + 1) return;
  self[target] = room_height + kHiddenBelow;
  self[y] = self[target];
}

void Alarm_Move(Self self) {
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

void Draw(Self self) {
  draw_set_blend_mode(bm_max);
  const int columns = static_cast<int>(floor(room_width / 16));
  for (int column = 0; column <= columns; ++column)
    draw_sprite(self, self[sprite_index], -1, static_cast<float>(16 * column), self[y] - 1);
  // One pixel of the sprite, stretched over all the water.
  draw_sprite_part_ext(self, self[sprite_index], 0, 0, 14, 1, 1, 0, self[y] + 15, room_width, room_height,
                       c_white, 1);
  draw_set_blend_mode(bm_normal);
}

void DrawOverlay(Self self) {
  if (!surface_exists(global[overlaysurf])) global[overlaysurf] = surface_create(kViewWidth, kViewHeight);
  surface_set_target(global[overlaysurf]);
  const Real top = self[y] - 1 - view_yview[0];
  if (top > view_hview[0]) {
    self[var::move] = 0;
  } else {
    self[var::move] += 1;
    shader_set(sha_water);
    shader_set_uniform_f(self[var::time], self[var::move]);
    draw_enable_alphablend(false);
    draw_surface_part(application_surface(), 0, top, view_wview[0], view_hview[0] - top, 0, top);
    shader_reset();
    // The waves would pull in what lies beyond the picture's right edge.
    draw_surface_part(application_surface(), view_wview[0] - kWaveReach, top, kWaveReach, view_hview[0] - top,
                      view_wview[0] - kWaveReach, top);
    draw_enable_alphablend(true);
  }
  surface_reset_target();
}

} // namespace

const EventTable obj_watershader_events = {
    {ev_create, 0, Create},
    {ev_alarm, 0, Alarm_Move},
    {ev_other, ev_room_start, RoomStart},
    {ev_draw, ev_draw_normal, Draw},
    {ev_draw, ev_draw_end, DrawOverlay},
};

} // namespace vesk
