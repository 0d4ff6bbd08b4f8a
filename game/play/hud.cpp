#include "game/play/hud.h"

#include "Files/Font/Font.h"
#include "game/Game.h"
#include "game/text.h"

namespace vesk {

namespace {

constexpr int kBarWidth = 182; // pixels of a full health or ammo bar
constexpr int kFullHealth = 25;

void draw_bar(int sprite, double amount, double full, double left, double top, double opacity) {
  draw_sprite_part_ext(nullptr, sprite, 0, 0, 0, kBarWidth * amount / full, 7, left, top, 1, 1, c_white,
                       opacity);
}

void draw_ammo(Self manager) {
  draw_sprite(manager, spr_healthbar, global[ammo] != 0 ? 1 : 0, 2, 4);
  if (global[ammo] == 0) return;
  draw_bar(spr_healthbar_gray, global[ammo], manager[maxammo], 6, 19, 0.7);
  draw_text(13, 23, "Ammo: " + global[ammo].text() + "/" + manager[maxammo].text());
}

void draw_counts(Self manager) {
  draw_set_halign(fa_right);
  draw_text(380, 4, string_add_zeros(score, 8));
  const std::string count = global[coins].text();
  draw_sprite(manager, spr_coinhud, 0, 366 - string_width(count), 16);
  draw_text(380, 16, count);
}

} // namespace

void DrawHud(Self manager) {
  if (manager[heart] == 1)
    draw_sprite_ext(manager, spr_bloodoverlay, 0, 0, 0, 1, 1, 0, c_white, manager[beat]);
  draw_set_font(global[font]);
  draw_ammo(manager);
  draw_bar(spr_healthbar_red, health, kFullHealth, 6, 7, 1);
  draw_text(13, 2, "Health: " + string(RValue(health.Get())) + "/25");
  draw_counts(manager);
  draw_sprite(manager, spr_pmeter, manager[pmeter], 303, 203);
  draw_set_halign(fa_left);
}

} // namespace vesk
