#pragma once
// Drawing backgrounds, and backgrounds made from surfaces: built-ins as typed functions. An unknown
// background is a non-fatal error report.
#include "Files/Background/Background.h"
#include "Files/Function/Function.h"

#include <cstdint>
#include <string>

namespace vesk {

void draw_background(int32_t background, float x, float y);
void draw_background_ext(int32_t background, float x, float y, float xscale, float yscale, float rotation,
                         int32_t colour, float alpha);
void draw_background_part(int32_t background, float left, float top, float width, float height, float x,
                          float y);
void draw_background_part_ext(int32_t background, float left, float top, float width, float height, float x,
                              float y, float xscale, float yscale, int32_t colour, float alpha);
void draw_background_stretched(int32_t background, float x, float y, float width, float height);
void draw_background_stretched_ext(int32_t background, float x, float y, float width, float height,
                                   int32_t colour, float alpha);
void draw_background_tiled(int32_t background, float x, float y);
void draw_background_tiled_ext(int32_t background, float x, float y, float xscale, float yscale,
                               int32_t colour, float alpha);
void draw_background_general(int32_t background, float left, float top, float width, float height, float x,
                             float y, float xscale, float yscale, float rotation, int32_t colour1,
                             int32_t colour2, int32_t colour3, int32_t colour4, float alpha);

bool background_exists(int32_t background);
int32_t background_get_width(int32_t background); // -1 for an unknown one
int32_t background_get_height(int32_t background);
std::string background_get_name(int32_t background);
bool background_delete(int32_t background);
// From a PNG file of the bundle or the save area; -1 after a report. `removeback` makes the colour of the
// left bottom pixel transparent.
int32_t background_add(std::string_view file, bool removeback, bool smooth);
// Copies a rectangle of a surface, preloaded. The index is given even when the surface doesn't exist.
int32_t background_create_from_surface(int32_t surface, int32_t x, int32_t y, int32_t width, int32_t height,
                                       bool removeback, bool smooth, bool preload = true);

} // namespace vesk
