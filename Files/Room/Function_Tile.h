#pragma once
// Built-ins about the tiles of the current room. Positions are room pixels, parts pixels of the background;
// colours have red in the low byte. An unknown tile is a non-fatal report, and reads as 0.
#include <cstdint>

namespace vesk {

void Function_AddTile();

// The id of the new tile, the last of its depth; -1 with a report when the background does not exist.
int32_t tile_add(int32_t background, int32_t left, int32_t top, int32_t width, int32_t height, float x,
                 float y, float depth);
void tile_delete(int32_t id);
bool tile_exists(int32_t id);

float tile_get_x(int32_t id);
float tile_get_y(int32_t id);
int32_t tile_get_left(int32_t id);
int32_t tile_get_top(int32_t id);
int32_t tile_get_width(int32_t id);
int32_t tile_get_height(int32_t id);
float tile_get_depth(int32_t id);
bool tile_get_visible(int32_t id);
float tile_get_xscale(int32_t id);
float tile_get_yscale(int32_t id);
uint32_t tile_get_blend(int32_t id);
float tile_get_alpha(int32_t id);
int32_t tile_get_background(int32_t id);

void tile_set_position(int32_t id, float x, float y);
void tile_set_region(int32_t id, int32_t left, int32_t top, int32_t width, int32_t height);
void tile_set_background(int32_t id, int32_t background);
void tile_set_visible(int32_t id, bool visible);
void tile_set_depth(int32_t id, float depth);
void tile_set_scale(int32_t id, float xscale, float yscale);
void tile_set_blend(int32_t id, uint32_t colour);
void tile_set_alpha(int32_t id, float alpha);

// All tiles of exactly that depth.
int32_t tile_layer_find(float depth, float x, float y); // id of the nearest that contains the point, else -1
void tile_layer_hide(float depth);
void tile_layer_show(float depth);
void tile_layer_delete(float depth);
void tile_layer_delete_at(float depth, float x, float y);
void tile_layer_shift(float depth, float dx, float dy);
void tile_layer_depth(float depth, float newDepth);

} // namespace vesk
