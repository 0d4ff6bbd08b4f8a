#pragma once
// From a picture on a texture page to vertices: what sprites, backgrounds, tiles, surfaces and glyphs share.
// Colours are in script order, angles degrees counter-clockwise. Each gives false when the page can't be
// drawn from.
#include "Files/Graphics/Batch.h"
#include "Files/Sprite/Sprite.h"

#include <array>
#include <cstdint>

namespace vesk {

inline constexpr float kPi = 3.1415927410125732f;
inline float ToRadians(float degrees) { return degrees * kPi / 180.0f; }

struct PagePlace { // where and how a picture is put
  float x = 0, y = 0;
  float originX = 0, originY = 0; // pixels of the full frame
  float xscale = 1, yscale = 1;
  float rotation = 0;
  uint32_t colour = 0xFFFFFF;
  float alpha = 1;
};

struct PagePart { // pixels of the full frame
  float left = 0, top = 0, width = 0, height = 0;
};

using CornerColours = std::array<uint32_t, 4>; // ARGB: left top, right top, right bottom, left bottom
// From colours in script order and one alpha.
CornerColours CornerWords(int32_t leftTop, int32_t rightTop, int32_t rightBottom, int32_t leftBottom,
                          float alpha);

bool Page_Draw(const PageEntry& entry, float x, float y, float originX, float originY, float alpha);
bool Page_DrawExt(const PageEntry& entry, const PagePlace& place);
// The whole frame of that size over a box of `width` by `height` from the place's x and y; its scale, origin
// and rotation don't count. Nothing is drawn over a box without an area.
bool Page_DrawStretched(const PageEntry& entry, int32_t frameWidth, int32_t frameHeight, PagePlace place,
                        float width, float height);
// The origin doesn't count. True also when only cropped pixels were asked for.
bool Page_DrawPart(const PageEntry& entry, const PagePart& part, const PagePlace& place);
bool Page_DrawGeneral(const PageEntry& entry, const PagePart& part, const PagePlace& place,
                      const CornerColours& colours);
// A piece of the page behind the entry's corner, with that many texels more on each side. No part of the page
// is cropped.
bool Page_DrawGlyph(const PageEntry& entry, const PagePart& glyph, float border, const PagePlace& place,
                    const CornerColours& colours);
// Over the current view's box in the directions asked for.
bool Page_DrawTiled(const PageEntry& entry, const PagePlace& place, bool htiled, bool vtiled);
// Corners clockwise from the left top; x and y in turn.
bool Page_DrawCorners(const PageEntry& entry, const std::array<float, 8>& corners, float alpha);

// An entry that shows a whole texture of that size.
PageEntry Page_OfTexture(int32_t texture, int32_t width, int32_t height);

} // namespace vesk
