#pragma once
// A room with sprites, objects and instances made by hand, for tests and benchmarks of collision and motion.
#include "Files/Object/CollisionIndex.h"
#include "Files/Object/CollisionQuery.h"
#include "Files/Object/Object.h"
#include "Files/Path/Path.h"
#include "Files/Room/Room.h"
#include "Files/Run/Run_Events.h"
#include "Files/Sprite/Sprite.h"

#include <deque>
#include <string>
#include <string_view>
#include <vector>

namespace vesk {

class CollisionWorld {
public:
  CollisionWorld(int32_t width = 640, int32_t height = 480) {
    Clear();
    Rooms().running.push_back(std::make_unique<CRoom>());
    Rooms().current = Rooms().running.back().get();
    Rooms().currentIndex = 0;
    Rooms().current->width = width;
    Rooms().current->height = height;
  }
  ~CollisionWorld() { Clear(); }
  CollisionWorld(const CollisionWorld&) = delete;
  CollisionWorld& operator=(const CollisionWorld&) = delete;

  // A sprite whose box is the whole frame, origin at its corner. The index.
  int32_t Sprite(int32_t width, int32_t height, SpriteKind kind = SpriteKind::kRectangle,
                 int32_t frames = 1) {
    static constexpr PageEntry kPage{};
    auto sprite = std::make_unique<CSprite>();
    sprite->width = width;
    sprite->height = height;
    sprite->right = width - 1;
    sprite->bottom = height - 1;
    sprite->kind = kind;
    sprite->frames.assign(static_cast<size_t>(frames), &kPage);
    sprite->index = static_cast<int32_t>(Sprites().table.size());
    Sprites().table.push_back(std::move(sprite));
    return Sprites().table.back()->index;
  }
  // A precise sprite from pictures of its masks, one string a row, '#' solid, one after the other.
  int32_t Masked(int32_t width, const std::vector<std::string_view>& rows, int32_t masks = 1) {
    const int32_t height = static_cast<int32_t>(rows.size()) / masks;
    const int32_t index = Sprite(width, height, SpriteKind::kPrecise, masks);
    std::vector<uint8_t>& bits = m_masks.emplace_back();
    for (const std::string_view row : rows) {
      const size_t start = bits.size();
      bits.resize(start + (static_cast<size_t>(width) + 7) / 8);
      for (size_t x = 0; x < row.size(); ++x)
        if (row[x] == '#')
          bits[start + x / 8] = static_cast<uint8_t>(bits[start + x / 8] | (0x80 >> (x % 8)));
    }
    At(index).maskCount = masks;
    At(index).packedMasks = bits.data();
    return index;
  }
  CSprite& At(int32_t sprite) { return *Sprites().table[static_cast<size_t>(sprite)]; }

  int32_t Object(int32_t sprite, int32_t parent = -1, int32_t depth = 0) {
    CObjectFb& object = Object_Add("obj_" + std::to_string(Objects().table.size()));
    object.spriteIndex = sprite;
    object.depth = depth;
    object.parentIndex = parent;
    object.parent = Object_Find(parent);
    return object.objectIndex;
  }
  CInstance& Add(int32_t object, float x, float y) { return *Instance_Add(Object_Find(object), x, y); }
  static CollisionPair Pair(int32_t a, int32_t b) { return {a, b, Object_Find(a), Object_Find(b), true}; }

private:
  static void Clear() {
    Room_Reset();
    Run_ResetEvents();
    Object_Reset();
    Sprite_Reset();
    Path_Reset();
    CollisionIndex_Reset();
  }
  std::deque<std::vector<uint8_t>> m_masks;
};

} // namespace vesk
