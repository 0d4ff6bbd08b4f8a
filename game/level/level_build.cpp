#include "game/level/level_build.h"

#include "game/Game.h"
#include "game/level/collision_codes.h"
#include "game/text.h"

namespace vesk {

namespace {

constexpr int kFirstNetRow = 27; // climbable cells of the atlas from this row on are nets

constexpr BackgroundLabel kBackgroundLabels[] = {
    {"Wall", bg_classic, 32, 32, 64},
    {"Red Wall", bg_castlewall, 111, 0, 15},
    {"Clouds", bg_clouds_dark, 32, 32, 64},
    {"Red Clouds", bg_clouds, 111, 0, 15},
    {"Cave", bg_cave, 64, 32, 32},
    {"Blue Cave", bg_cave_blue, 32, 32, 64},
    {"Dungeon", bg_underground, 32, 32, 64},
    {"Red Dungeon", bg_castle, 111, 0, 15},
    {"Desert", bg_desert, 32, 32, 64},
    {"Desert Bricks", bg_desertbrick, 64, 32, 32},
    {"Crypt Bricks", bg_crypt, 32, 64, 48},
    {"Snow", bg_snow, 40, 48, 128},
    {"Cold Storage", bg_coldstorage, 40, 48, 128},
    {"Mountain", bg_mountain, 32, 32, 64},
    {"Factory", bg_factory, 32, 32, 64},
    {"Metal", bg_metal, 32, 32, 64},
    {"Ghost House", bg_ghosthouse, 0, 35, 27},
    {"Ice", bg_ice_0, 40, 48, 128, true},
    {"Forest", bg_leaves_0, 32, 32, 64, true},
    {"Red Forest", bg_leaves_red_0, 111, 0, 15, true},
    {"Pipes", bg_pipes, 32, 32, 64},
    {"Storm", bg_stormy, 32, 32, 64},
    {"Cabin", bg_cabin, 32, 32, 64},
    {"Volcano", bg_volcano, 32, 32, 64},
    {"Fort", bg_fort, 32, 32, 64},
};

constexpr MusicLabel kMusicLabels[] = {
    {"Sick", Sick},     {"Dubstep", Dubstep}, {"Cool", Cool},       {"Horror", snd_horror},
    {"Techno", Techno}, {"Dark", Dark},       {"Drop", Drop},       {"Cave", Cave},
    {"Edge", Edge},     {"Corrupt", Corrupt}, {"Dirty", Dirty},     {"Hardcore", Hardcore},
    {"WubWub", WubWub}, {"Frost", Frost},     {"Airship", Airship}, {"Dramatic", Dramatic},
    {"Fort", Fort},     {"Smithy", Smithy},
};

// The slopes' letters run in this order.
constexpr int kSlopes[] = {obj_slope_r,  obj_slope_l,  obj_slope_sr,  obj_slope_sl,
                           obj_islope_r, obj_islope_l, obj_islope_sr, obj_islope_sl};

bool is_exactly(int id, int object) {
  const Self it = first(id);
  return it && it[object_index] == object;
}

enum class Run { kDown, kRight };

// Each instance swallows its neighbours in the direction of the run.
void merge_runs(int object, Run run, bool exact) {
  with(object, [&](Self it) {
    if (!instance_exists(it.number()) || (exact && it[object_index] != object)) return;
    for (;;) {
      const int next = run == Run::kDown ? instance_position(it[x], it[bbox_bottom] + 1, object)
                                         : instance_position(it[bbox_right] + 1, it[y], object);
      if (next == noone || (exact && !is_exactly(next, object))) break;
      const Self swallowed = first(next);
      if (run == Run::kDown)
        it[image_yscale] += swallowed[image_yscale];
      else
        it[image_xscale] += swallowed[image_xscale];
      instance_destroy(swallowed);
    }
  });
}

} // namespace

std::span<const BackgroundLabel> BackgroundLabels() { return kBackgroundLabels; }
std::span<const MusicLabel> MusicLabels() { return kMusicLabels; }

void scr_gen_tile(std::string key, std::string value, double depth) {
  const DebugFrame frame("scr_gen_tile");
  const Cell at = parse_cell(key);
  const Cell atlas = parse_cell(value);
  const int left = at.x * kCellSize, top = at.y * kCellSize;
  tile_add(bg_tiles, atlas.x * kCellSize, atlas.y * kCellSize, kCellSize, kCellSize, static_cast<float>(left),
           static_cast<float>(top), static_cast<float>(depth));
  if (depth == kTileDepth && room == rm_template) scr_gen_collision(left, top, atlas.x, atlas.y);
}

void scr_gen_collision(double left, double top, double tx, double ty) {
  const DebugFrame frame("scr_gen_collision");
  const double at = ty * kAtlasColumns + tx;
  if (at < 0 || at >= static_cast<double>(kCollisionCodes.size())) return;
  const char code = kCollisionCodes[static_cast<size_t>(at)];
  switch (code) {
  case 'B': make(left, top, top == 0 ? obj_stopblock : obj_solid); break;
  case 'C': make(left, top, obj_solidtop); break;
  case 'D': make(left, top, ty < kFirstNetRow ? obj_climb : obj_climb_net); break;
  case 'E': make(left, top, obj_swim); break;
  case 'F': make(left, top, obj_slippery); break;
  case 'G':
    make(left, top, obj_solid);
    make(left, top - kCellSize, obj_hurtsolid);
    break;
  case 'H':
    make(left, top, obj_solid);
    make(left, top, obj_hurtsolid);
    break;
  default:
    if (code >= 'I' && code <= 'P') make(left, top, kSlopes[code - 'I']);
  }
}

double scr_gen_background(std::string label) {
  const DebugFrame frame("scr_gen_background");
  for (const BackgroundLabel& row : kBackgroundLabels) {
    if (row.label != label) continue;
    with(obj_lightmanager,
         [&](Self light) { light[ambientlight] = make_colour_rgb(row.red, row.green, row.blue); });
    if (row.animated) make(0, 0, obj_bganimator);
    return row.background;
  }
  return bg_classic; // an unknown label leaves the light alone
}

double scr_gen_music(std::string label) {
  const DebugFrame frame("scr_gen_music");
  for (const MusicLabel& row : kMusicLabels)
    if (row.label == label) return row.sound;
  return Sick;
}

namespace {

bool tile_in_cell(double cx, double cy) {
  const float left = static_cast<float>(cx * kCellSize), top = static_cast<float>(cy * kCellSize);
  return tile_layer_find(kTileDepth, left, top) != -1 || tile_layer_find(kTileDepthBehind, left, top) != -1;
}

} // namespace

bool scr_check_tiles_right(double width, double height) {
  const DebugFrame frame("scr_check_tiles_right");
  for (int cy = 0; cy <= height; ++cy)
    if (tile_in_cell(width - 1, cy)) return true;
  return false;
}

bool scr_check_tiles_down(double width, double height) {
  const DebugFrame frame("scr_check_tiles_down");
  for (int cx = 0; cx <= width; ++cx)
    if (tile_in_cell(cx, height - 1)) return true;
  return false;
}

void merge_terrain() {
  merge_runs(obj_solid, Run::kDown, true);
  merge_runs(obj_solidtop, Run::kRight, true);
  merge_runs(obj_slippery, Run::kDown, false);
}

} // namespace vesk
