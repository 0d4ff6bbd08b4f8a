#include "game/play/hero_sprites.h"

#include "game/Game.h"

namespace vesk {

namespace {

// Every character has these poses as consecutive sprites, in this order.
enum class Pose { walk, jump, run, runjump, skid, climb, swim, hold, duck, warp, slide, kick, parts, count };
constexpr int kCharacters = 8;

int PoseSprite(Pose pose) {
  const int character = global[powerup];
  if (character < 1 || character > kCharacters) return 0;
  return spr_player_durian_walk + (character - 1) * static_cast<int>(Pose::count) + static_cast<int>(pose);
}

} // namespace

int scr_tovinwalk() { return PoseSprite(Pose::walk); }
int scr_tovinjump() { return PoseSprite(Pose::jump); }
int scr_tovinrun() { return PoseSprite(Pose::run); }
int scr_tovinrunjump() { return PoseSprite(Pose::runjump); }
int scr_tovinskid() { return PoseSprite(Pose::skid); }
int scr_tovinclimb() { return PoseSprite(Pose::climb); }
int scr_tovinswim() { return PoseSprite(Pose::swim); }
int scr_tovinhold() { return PoseSprite(Pose::hold); }
int scr_tovinduck() { return PoseSprite(Pose::duck); }
int scr_tovinwarp() { return PoseSprite(Pose::warp); }
int scr_tovinslide() { return PoseSprite(Pose::slide); }
int scr_tovinkick() { return PoseSprite(Pose::kick); }
int hero_parts_sprite() { return PoseSprite(Pose::parts); }

} // namespace vesk
