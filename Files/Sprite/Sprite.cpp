#include "Files/Sprite/Sprite.h"

#include "Files/Graphics/Texture.h"
#include "Files/Sprite/DrawSprite.h"

#include <algorithm>
#include <cmath>

namespace vesk {

namespace {
SpriteState g_state;
}

SpriteState& Sprites() { return g_state; }

void Sprite_Reset() {
  for (const auto& sprite : Sprites().table)
    for (size_t i = 0; sprite && i < sprite->ownedFrames.size(); ++i)
      Texture_Free(sprite->ownedFrames[i]->texture);
  Sprites() = {};
}

int32_t Sprite_BoundingRadius(const CSprite& sprite) {
  double radius = 0;
  for (const int32_t x : {0, sprite.width})
    for (const int32_t y : {0, sprite.height})
      radius =
          std::max(radius, std::ceil(std::hypot(double(x) - sprite.originX, double(y) - sprite.originY)));
  return static_cast<int32_t>(radius);
}

CSprite* Sprite_Find(int32_t index) {
  const auto& table = Sprites().table;
  return index >= 0 && static_cast<size_t>(index) < table.size() ? table[static_cast<size_t>(index)].get()
                                                                 : nullptr;
}

int32_t Sprite_FindByName(std::string_view name) {
  const auto& table = Sprites().table;
  for (size_t i = 0; i < table.size(); ++i)
    if (table[i] && table[i]->name == name) return static_cast<int32_t>(i);
  return -1;
}

bool sprite_exists(int32_t sprite) { return Sprite_Find(sprite) != nullptr; }

int32_t sprite_get_width(int32_t sprite) {
  const CSprite* it = Sprite_Find(sprite);
  return it ? it->width : -1;
}

int32_t sprite_get_height(int32_t sprite) {
  const CSprite* it = Sprite_Find(sprite);
  return it ? it->height : -1;
}

int32_t sprite_get_xoffset(int32_t sprite) {
  const CSprite* it = Sprite_Find(sprite);
  return it ? it->originX : -1;
}

int32_t sprite_get_yoffset(int32_t sprite) {
  const CSprite* it = Sprite_Find(sprite);
  return it ? it->originY : -1;
}

int32_t sprite_get_number(int32_t sprite) {
  const CSprite* it = Sprite_Find(sprite);
  return it ? it->FrameCount() : -1;
}

std::string sprite_get_name(int32_t sprite) {
  const CSprite* it = Sprite_Find(sprite);
  return it ? it->name : "<undefined>";
}

} // namespace vesk
