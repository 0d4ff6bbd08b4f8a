#include "Files/Sprite/DrawSprite.h"

#include "Files/Base/Console.h"
#include "Files/Base/Error.h"
#include "Files/Function/Function.h"
#include "Files/Graphics/Draw.h"
#include "Files/Graphics/PageDraw.h"
#include "Files/Graphics/Registration.h"
#include "Files/Graphics/View.h"
#include "Files/Sprite/RuntimeSprite.h"

#include <algorithm>
#include <cmath>

namespace vesk {

namespace {

// The sprite and frame that a call means; an unknown sprite is reported.
struct Picture {
  const CSprite* sprite = nullptr;
  const PageEntry* entry = nullptr;
  explicit operator bool() const { return entry != nullptr; }
};

Picture Find(CInstance* self, int32_t sprite, int32_t image) {
  const CSprite* it = Sprite_Find(sprite);
  if (!it) {
    ReportError("Trying to draw non-existing sprite.");
    return {};
  }
  if (image < 0) image = self ? static_cast<int32_t>(std::floor(self->imageIndex)) : 0;
  return {it, it->Frame(image)};
}

void Check(const CSprite& sprite, bool drawn) {
  if (!drawn) DebugConsole().Output("Error attempting to draw sprite %s\n", sprite.name.c_str());
}

bool InView(float radius, float x, float y) {
  if (!Drawing().culling || View().customProjection) return true;
  const CullRect& box = CullBox();
  return radius >= box.top - y && radius >= y - box.bottom && radius >= box.left - x &&
         radius >= x - box.right;
}

float ScaledRadius(const CSprite& sprite, float xscale, float yscale) {
  const auto radius = static_cast<float>(sprite.boundingRadius);
  return std::max(std::fabs(radius * xscale), std::fabs(radius * yscale));
}

bool DrawEntry(const CSprite& sprite, const PageEntry& entry, float x, float y, float alpha) {
  if (!InView(static_cast<float>(sprite.boundingRadius), x, y)) return true;
  return Page_Draw(entry, x, y, static_cast<float>(sprite.originX), static_cast<float>(sprite.originY),
                   alpha);
}

bool DrawEntryExt(const CSprite& sprite, const PageEntry& entry, PagePlace place) {
  if (!InView(ScaledRadius(sprite, place.xscale, place.yscale), place.x, place.y)) return true;
  place.originX = static_cast<float>(sprite.originX);
  place.originY = static_cast<float>(sprite.originY);
  return Page_DrawExt(entry, place);
}

} // namespace

bool Sprite_Draw(const CSprite& sprite, int32_t image, float x, float y, float alpha) {
  const PageEntry* entry = sprite.Frame(image);
  return !entry || DrawEntry(sprite, *entry, x, y, alpha);
}

bool Sprite_DrawExt(const CSprite& sprite, int32_t image, float x, float y, float xscale, float yscale,
                    float rotation, uint32_t colour, float alpha) {
  const PageEntry* entry = sprite.Frame(image);
  return !entry || DrawEntryExt(sprite, *entry,
                                {.x = x,
                                 .y = y,
                                 .xscale = xscale,
                                 .yscale = yscale,
                                 .rotation = rotation,
                                 .colour = colour,
                                 .alpha = alpha});
}

void DrawInstanceDefault(const CInstance& i) {
  const CSprite* sprite = Sprite_Find(i.spriteIndex);
  if (!sprite) return;
  const auto image = static_cast<int32_t>(i.imageIndex);
  if (i.imageXScale == 1 && i.imageYScale == 1 && i.imageAngle == 0 && i.imageBlend == 0xFFFFFF &&
      i.imageAlpha == 1)
    Check(*sprite, Sprite_Draw(*sprite, image, i.x, i.y, draw_get_alpha()));
  else
    Check(*sprite, Sprite_DrawExt(*sprite, image, i.x, i.y, i.imageXScale, i.imageYScale, i.imageAngle,
                                  SwapRedBlue(i.imageBlend), i.imageAlpha));
}

void draw_sprite(CInstance* self, int32_t sprite, int32_t image, float x, float y) {
  if (const Picture it = Find(self, sprite, image))
    Check(*it.sprite, DrawEntry(*it.sprite, *it.entry, x, y, draw_get_alpha()));
}

void draw_sprite_ext(CInstance* self, int32_t sprite, int32_t image, float x, float y, float xscale,
                     float yscale, float rotation, int32_t colour, float alpha) {
  if (const Picture it = Find(self, sprite, image))
    Check(*it.sprite, DrawEntryExt(*it.sprite, *it.entry,
                                   {.x = x,
                                    .y = y,
                                    .xscale = xscale,
                                    .yscale = yscale,
                                    .rotation = rotation,
                                    .colour = static_cast<uint32_t>(colour),
                                    .alpha = alpha}));
}

void draw_sprite_part(CInstance* self, int32_t sprite, int32_t image, float left, float top, float width,
                      float height, float x, float y) {
  draw_sprite_part_ext(self, sprite, image, left, top, width, height, x, y, 1, 1, c_white, draw_get_alpha());
}

void draw_sprite_part_ext(CInstance* self, int32_t sprite, int32_t image, float left, float top, float width,
                          float height, float x, float y, float xscale, float yscale, int32_t colour,
                          float alpha) {
  if (const Picture it = Find(self, sprite, image))
    Check(*it.sprite, Page_DrawPart(*it.entry, {left, top, width, height},
                                    {.x = x,
                                     .y = y,
                                     .xscale = xscale,
                                     .yscale = yscale,
                                     .colour = static_cast<uint32_t>(colour),
                                     .alpha = alpha}));
}

void draw_sprite_stretched(CInstance* self, int32_t sprite, int32_t image, float x, float y, float width,
                           float height) {
  draw_sprite_stretched_ext(self, sprite, image, x, y, width, height, c_white, draw_get_alpha());
}

void draw_sprite_stretched_ext(CInstance* self, int32_t sprite, int32_t image, float x, float y, float width,
                               float height, int32_t colour, float alpha) {
  if (const Picture it = Find(self, sprite, image))
    Check(*it.sprite,
          Page_DrawStretched(*it.entry, it.sprite->width, it.sprite->height,
                             {.x = x, .y = y, .colour = static_cast<uint32_t>(colour), .alpha = alpha}, width,
                             height));
}

void draw_sprite_tiled(CInstance* self, int32_t sprite, int32_t image, float x, float y) {
  draw_sprite_tiled_ext(self, sprite, image, x, y, 1, 1, c_white, draw_get_alpha());
}

void draw_sprite_tiled_ext(CInstance* self, int32_t sprite, int32_t image, float x, float y, float xscale,
                           float yscale, int32_t colour, float alpha) {
  if (const Picture it = Find(self, sprite, image))
    Check(*it.sprite, Page_DrawTiled(*it.entry,
                                     {.x = x,
                                      .y = y,
                                      .originX = static_cast<float>(it.sprite->originX),
                                      .originY = static_cast<float>(it.sprite->originY),
                                      .xscale = xscale,
                                      .yscale = yscale,
                                      .colour = static_cast<uint32_t>(colour),
                                      .alpha = alpha},
                                     true, true));
}

void draw_sprite_general(CInstance* self, int32_t sprite, int32_t image, float left, float top, float width,
                         float height, float x, float y, float xscale, float yscale, float rotation,
                         int32_t colour1, int32_t colour2, int32_t colour3, int32_t colour4, float alpha) {
  const Picture it = Find(self, sprite, image);
  if (!it || !InView(ScaledRadius(*it.sprite, xscale, yscale), x, y)) return;
  Check(*it.sprite,
        Page_DrawGeneral(*it.entry, {left, top, width, height},
                         {.x = x, .y = y, .xscale = xscale, .yscale = yscale, .rotation = rotation},
                         CornerWords(colour1, colour2, colour3, colour4, alpha)));
}

void draw_sprite_pos(CInstance* self, int32_t sprite, int32_t image, float x1, float y1, float x2, float y2,
                     float x3, float y3, float x4, float y4, float alpha) {
  if (const Picture it = Find(self, sprite, image))
    Check(*it.sprite, Page_DrawCorners(*it.entry, {x1, y1, x2, y2, x3, y3, x4, y4}, alpha));
}

void Function_AddSprite() {
  static constexpr BuiltinRow kBuiltins[] = {
      Builtin<&draw_sprite>("draw_sprite"),
      Builtin<&draw_sprite_ext>("draw_sprite_ext"),
      Builtin<&draw_sprite_part>("draw_sprite_part"),
      Builtin<&draw_sprite_part_ext>("draw_sprite_part_ext"),
      Builtin<&draw_sprite_stretched>("draw_sprite_stretched"),
      Builtin<&draw_sprite_stretched_ext>("draw_sprite_stretched_ext"),
      Builtin<&draw_sprite_tiled>("draw_sprite_tiled"),
      Builtin<&draw_sprite_tiled_ext>("draw_sprite_tiled_ext"),
      Builtin<&draw_sprite_general>("draw_sprite_general"),
      Builtin<&draw_sprite_pos>("draw_sprite_pos"),
      Builtin<&sprite_exists>("sprite_exists"),
      Builtin<&sprite_get_width>("sprite_get_width"),
      Builtin<&sprite_get_height>("sprite_get_height"),
      Builtin<&sprite_get_xoffset>("sprite_get_xoffset"),
      Builtin<&sprite_get_yoffset>("sprite_get_yoffset"),
      Builtin<&sprite_get_number>("sprite_get_number"),
      Builtin<&sprite_get_name>("sprite_get_name"),
  };
  Function_Add(kBuiltins);
  Function_AddRuntimeSprite();
}

} // namespace vesk
