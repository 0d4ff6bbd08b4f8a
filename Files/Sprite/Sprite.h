#pragma once
// Sprites at run time: frames on texture pages, box, origin and collision masks.
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace vesk {

// Where a picture stands on a texture page; points into the container. Coordinates are pixels.
struct PageEntry {
  uint16_t sourceX, sourceY, sourceWidth, sourceHeight; // on the page
  uint16_t targetX, targetY, targetWidth, targetHeight; // in the full frame
  uint16_t boundingWidth, boundingHeight;               // the full frame
  int16_t texture;                                      // page index in the file, texture id after the load
};
static_assert(sizeof(PageEntry) == 22);

enum class SpriteKind : int32_t { kRectangle = 0, kPrecise = 1, kRotatedRectangle = 2 };

class CSprite {
public:
  std::string name;
  int32_t index = -1;
  int32_t width = 0, height = 0;                    // pixels
  int32_t left = 0, top = 0, right = 0, bottom = 0; // box, inclusive pixels of the frame
  int32_t originX = 0, originY = 0;
  int32_t boundingRadius = 0; // from the origin to the farthest corner, rounded up
  int32_t bboxMode = 0;
  SpriteKind kind = SpriteKind::kRectangle;
  bool transparent = false, smooth = false, preload = false;
  std::vector<const PageEntry*> frames;                // null for a hole
  std::vector<std::unique_ptr<PageEntry>> ownedFrames; // of a sprite made at run time, with their textures

  int32_t FrameCount() const { return static_cast<int32_t>(frames.size()); }
  // The entry of a frame; any number wraps into the range. Null without frames.
  const PageEntry* Frame(int32_t frame) const {
    const int32_t count = FrameCount();
    if (frame >= count || frame < 0) {
      if (count == 0) return nullptr;
      frame %= count;
      if (frame < 0) frame += count;
    }
    return frames[static_cast<size_t>(frame)];
  }

  // Masks: one byte a pixel of the full frame, 1 solid, row after row; expanded at first use.
  // Null when the sprite has no masks: every pixel counts as set.
  const uint8_t* Mask(int32_t frame) const;
  int32_t MaskCount() const { return maskCount; }

  int32_t maskCount = 0;
  const uint8_t* packedMasks = nullptr; // in the container: rows of (width + 7) / 8 bytes, high bit first
  mutable std::vector<std::vector<uint8_t>> expandedMasks;
};

struct SpriteState {
  std::vector<std::unique_ptr<CSprite>> table; // by index; null for a hole
};
SpriteState& Sprites();
void Sprite_Reset();

// From the origin to the farthest corner of the frame, rounded up.
int32_t Sprite_BoundingRadius(const CSprite& sprite);
CSprite* Sprite_Find(int32_t index);              // null for an index that names none
int32_t Sprite_FindByName(std::string_view name); // -1 none

} // namespace vesk
