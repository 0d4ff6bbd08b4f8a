// Lava: deadly to the touch, whatever protects the hero. Glows.
#include "game/Game.h"
#include "game/play/hero.h"
#include "game/play/lighting.h"

namespace vesk {

namespace {

void Create(Self self) { self[image_speed] = 0.15; }

void MeetsHero(Self, Other hero) {
  hero[damage] = hero::kFatalDamage;
  hero[invincible] = 0;
  event_user(hero, hero::kTakeDamage);
}

// ---- obj_lava_stretch: a run of lava in one instance, as many cells as image_xscale says ----

template <class Visit> void for_each_cell(Self self, Visit visit) {
  for (int cell = 0; cell < self[image_xscale]; ++cell) visit(self[x] + 16 * cell);
}

void StretchDraw(Self self) {
  for_each_cell(
      self, [&](double left) { draw_sprite(self, self[sprite_index], self[image_index], left, self[y]); });
}

void StretchShine(Self self) {
  constexpr Light light = kLightOf<obj_lava>;
  for_each_cell(self, [&](double left) {
    draw_sprite_ext(self, light.sprite, 0, left + 8 - view_xview[0], self[y] + 8 - view_yview[0], 1, 1, 0,
                    light.colour, 1);
  });
}

} // namespace

const EventTable obj_lava_events = {
    {ev_create, 0, Create},
    {ev_collision, obj_tovin, MeetsHero},
    {ev_other, ev_user(kGivesLight), Shine<obj_lava>},
};
const EventTable obj_lava_r_events = {};
const EventTable obj_lava_l_events = {};
const EventTable obj_lava_sr_events = {};
const EventTable obj_lava_sl_events = {};
const EventTable obj_lava_stretch_events = {
    {ev_other, ev_user(kGivesLight), StretchShine},
    {ev_draw, ev_draw_normal, StretchDraw},
};

} // namespace vesk
