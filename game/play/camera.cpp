#include "game/play/camera.h"

#include "game/Game.h"
#include "game/play/arrival.h"

namespace vesk {

namespace {

constexpr int kSleepMargin = 32; // pixels around the view in which the sleeping families are awake

void hold_at(Self hero, double edge, int side) {
  hero[x] = edge;
  if (hero[hspeed] * side > 0) hero[hspeed] = 0;
  with(obj_slider, [&](Self slider) { slider[x] = edge; });
}

} // namespace

void lead_camera(Self manager) {
  if (const Self scroll = first(obj_autoscroll)) {
    manager[x] = scroll[x];
    manager[y] = scroll[y];
  } else if (const Self hero = any_hero()) {
    manager[x] = hero[x];
    manager[y] = hero[y] + 16;
  }
  manager[x] = round(manager[x]);
  manager[y] = round(manager[y]);
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

void keep_hero_in_view(Self manager) {
  const Self hero = first(obj_tovin);
  if (manager[barrier] != 0 || !hero) return;
  if (hero[x] < view_xview[0] + 5)
    hold_at(hero, view_xview[0] + 5, -1);
  else if (hero[x] > view_xview[0] + view_wview[0] - 5)
    hold_at(hero, view_xview[0] + view_wview[0] - 5, 1);
}

void Alarm_CloseView(Self manager) { manager[barrier] = 0; }

} // namespace vesk
