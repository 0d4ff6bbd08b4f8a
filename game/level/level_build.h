#pragma once
// From the data of a section to what the player sees and walks on.
#include <span>
#include <string>
#include <string_view>

namespace vesk {

// Depths of the two tile layers; rules tell the layers apart by them.
inline constexpr int kTileDepth = 9;        // foreground, with collision in play
inline constexpr int kTileDepthBehind = 12; // drawn only
inline constexpr int kCellSize = 16;        // pixels

// One tile of the layer, and in play its collision.
void scr_gen_tile(std::string key, std::string value, double depth);
// The terrain of an atlas cell at a pixel position.
void scr_gen_collision(double x, double y, double tx, double ty);
// The background of a label; sets the ambient light, and may make the animator.
double scr_gen_background(std::string label);
// The sound of a label.
double scr_gen_music(std::string label);
// Whether a tile stands in the last column or row of a section of that many cells.
bool scr_check_tiles_right(double width, double height);
bool scr_check_tiles_down(double width, double height);

// The labels of backgrounds, in the order of the window that offers them.
struct BackgroundLabel {
  std::string_view label;
  int background;
  int red, green, blue; // ambient light
  bool animated = false;
};
std::span<const BackgroundLabel> BackgroundLabels();
// The labels of music, in the same way.
struct MusicLabel {
  std::string_view label;
  int sound;
};
std::span<const MusicLabel> MusicLabels();

// Collapses runs of equal terrain, so that a wall of a hundred cells is one instance.
void merge_terrain();

} // namespace vesk
