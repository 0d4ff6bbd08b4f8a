// Placed lights: torches, candles, ghost fire, lamps.
#include "game/Game.h"
#include "game/play/globals.h"
#include "game/play/lighting.h"

namespace vesk {

namespace {

constexpr double kBrightening = 0.02; // of a torch that has just been lit, each step

void FireCreate(Self self) { self[image_speed] = 0.3; }

// ---- obj_lamplight: the look is its frame, the glass gives the colour ----

constexpr Light kLamp = kLightOf<obj_lamplight>;

void LampCreate(Self self) {
  self[image_speed] = 0;
  self[lamp_color] = kLamp.colour;
}

void LampShine(Self self) { scr_emit_light(self, kLamp.sprite, self[lamp_color]); }

// ---- obj_torch_lightable: unseen until a flame reaches it ----

void LightableCreate(Self self) {
  self[image_speed] = 0.15;
  self[image_alpha] = 0;
  self[ready] = 0;
}

void LightableStep(Self self) {
  if (outside_view(self)) return;
  if (self[ready] == 0 && place_meeting(self, self[x], self[y], obj_flamethrower_fire)) self[ready] = 1;
  if (self[ready] == 0) return;
  self[image_alpha] += kBrightening;
  if (self[image_alpha] > 0.99) {
    make(self[x], self[y], obj_torchfire);
    instance_destroy(self);
  }
}

void LightableShine(Self self) {
  constexpr Light light = kLightOf<obj_torchfire>;
  draw_sprite_ext(self, light.sprite, 0, self[x] + 8 - view_xview[0], self[y] + 8 - view_yview[0],
                  self[image_alpha], self[image_alpha], 0, light.colour, 1);
}

} // namespace

const EventTable obj_torchfire_events = {
    {ev_create, 0, FireCreate},
    {ev_other, ev_user(kGivesLight), Shine<obj_torchfire>},
};
const EventTable obj_torchflame_events = {};
const EventTable obj_ghostfire_events = {
    {ev_create, 0, FireCreate},
    {ev_other, ev_user(kGivesLight), Shine<obj_ghostfire>},
};
const EventTable obj_lamplight_events = {
    {ev_create, 0, LampCreate},
    {ev_other, ev_user(kGivesLight), LampShine},
};
const EventTable obj_torch_lightable_events = {
    {ev_create, 0, LightableCreate},
    {ev_step, ev_step_normal, LightableStep},
    {ev_other, ev_user(kGivesLight), LightableShine},
};

} // namespace vesk
