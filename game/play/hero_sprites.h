#pragma once
// The picture of a pose of the selected character.

namespace vesk {

// Each gives a sprite index; 0 when global.powerup is outside 1 to 8.
int scr_tovinwalk();
int scr_tovinjump();
int scr_tovinrun();
int scr_tovinrunjump();
int scr_tovinskid();
int scr_tovinclimb();
int scr_tovinswim();
int scr_tovinhold();
int scr_tovinduck();
int scr_tovinwarp();
int scr_tovinslide();
int scr_tovinkick();
// The parts sheet, for what is left of a hero.
int hero_parts_sprite();

} // namespace vesk
