#pragma once
// Drawing sprites: built-ins as typed functions. An image below 0 means the image_index of `self`, rounded
// down; any other wraps into the frames. An unknown sprite is a non-fatal error report.
#include "Files/Code/Self.h"
#include "Files/Sprite/Sprite.h"

#include <cstdint>
#include <string>

namespace vesk {

void draw_sprite(CInstance* self, int32_t sprite, int32_t image, float x, float y);
void draw_sprite_ext(CInstance* self, int32_t sprite, int32_t image, float x, float y, float xscale,
                     float yscale, float rotation, int32_t colour, float alpha);
void draw_sprite_part(CInstance* self, int32_t sprite, int32_t image, float left, float top, float width,
                      float height, float x, float y);
void draw_sprite_part_ext(CInstance* self, int32_t sprite, int32_t image, float left, float top, float width,
                          float height, float x, float y, float xscale, float yscale, int32_t colour,
                          float alpha);
void draw_sprite_stretched(CInstance* self, int32_t sprite, int32_t image, float x, float y, float width,
                           float height);
void draw_sprite_stretched_ext(CInstance* self, int32_t sprite, int32_t image, float x, float y, float width,
                               float height, int32_t colour, float alpha);
void draw_sprite_tiled(CInstance* self, int32_t sprite, int32_t image, float x, float y);
void draw_sprite_tiled_ext(CInstance* self, int32_t sprite, int32_t image, float x, float y, float xscale,
                           float yscale, int32_t colour, float alpha);
void draw_sprite_general(CInstance* self, int32_t sprite, int32_t image, float left, float top, float width,
                         float height, float x, float y, float xscale, float yscale, float rotation,
                         int32_t colour1, int32_t colour2, int32_t colour3, int32_t colour4, float alpha);
void draw_sprite_pos(CInstance* self, int32_t sprite, int32_t image, float x1, float y1, float x2, float y2,
                     float x3, float y3, float x4, float y4, float alpha);

bool sprite_exists(int32_t sprite);
int32_t sprite_get_width(int32_t sprite); // these give -1 for an unknown sprite
int32_t sprite_get_height(int32_t sprite);
int32_t sprite_get_xoffset(int32_t sprite);
int32_t sprite_get_yoffset(int32_t sprite);
int32_t sprite_get_number(int32_t sprite);
std::string sprite_get_name(int32_t sprite);

// ---- for the runner itself ----

// The draws behind the built-ins; colours in script order. False when the page is gone.
bool Sprite_Draw(const CSprite& sprite, int32_t image, float x, float y, float alpha);
bool Sprite_DrawExt(const CSprite& sprite, int32_t image, float x, float y, float xscale, float yscale,
                    float rotation, uint32_t colour, float alpha);
// As an instance without a draw event is drawn.
void DrawInstanceDefault(const CInstance& instance);

} // namespace vesk
