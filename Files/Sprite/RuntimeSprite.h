#pragma once
// Sprites that are made while the game runs, from image files (PNG; the bundle or the save area) and from
// surfaces. They last until sprite_delete. `removeback` makes the colour of the left bottom pixel
// transparent.
#include <cstdint>
#include <string_view>

namespace vesk {

// The image holds `frames` pictures of one size side by side. The new index; -1 after a report.
int32_t sprite_add(std::string_view file, int32_t frames, bool removeback, bool smooth, int32_t originX,
                   int32_t originY);
// As sprite_add, in the place of an existing sprite. False, and nothing changes, when it can't.
bool sprite_replace(int32_t sprite, std::string_view file, int32_t frames, bool removeback, bool smooth,
                    int32_t originX, int32_t originY);
int32_t sprite_create_from_surface(int32_t surface, int32_t x, int32_t y, int32_t width, int32_t height,
                                   bool removeback, bool smooth, int32_t originX, int32_t originY);
// One more frame, cut or filled up to the sprite's size.
void sprite_add_from_surface(int32_t sprite, int32_t surface, int32_t x, int32_t y, int32_t width,
                             int32_t height, bool removeback, bool smooth);
bool sprite_delete(int32_t sprite);

void Function_AddRuntimeSprite();

} // namespace vesk
