// obj_lightmanager: the picture is darkened by what its light surface leaves. Lights subtract from the dark.
#include "game/play/lighting.h"

#include "game/Game.h"

namespace vesk {

void scr_emit_light(Self it, int sprite, int colour) {
  draw_sprite_ext(it, sprite, 0, mean(it[bbox_left], it[bbox_right]) - view_xview[0],
                  mean(it[bbox_top], it[bbox_bottom]) - view_yview[0], 1, 1, 0, colour, 1);
}

namespace {

constexpr int kViewWidth = 384, kViewHeight = 216; // pixels
constexpr int kGrey = 8421504;                     // 128 in each channel: half the brightness outside lights

void Create(Self self) {
  self[ambientlight] = kGrey;
  self[lightsurf] = -1;
}

void Draw(Self self) {
  if (!surface_exists(self[lightsurf])) self[lightsurf] = surface_create(kViewWidth, kViewHeight);
  surface_set_target(self[lightsurf]);
  draw_clear(static_cast<int>(c_white - self[ambientlight]));
  draw_set_blend_mode(bm_subtract);
  with(all, [](Self it) { event_user(it, kGivesLight); });
  surface_reset_target();
  draw_surface(self[lightsurf], view_xview[0], view_yview[0]);
  draw_set_blend_mode(bm_normal);
}

void RoomEnd(Self self) {
  if (surface_exists(self[lightsurf])) surface_free(self[lightsurf]);
}

} // namespace

const EventTable obj_lightmanager_events = {
    {ev_create, 0, Create},
    {ev_other, ev_room_end, RoomEnd},
    {ev_draw, ev_draw_normal, Draw},
};

} // namespace vesk
