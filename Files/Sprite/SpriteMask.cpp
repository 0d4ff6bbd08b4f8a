// Collision masks of sprites: packed bits of the container, one byte a pixel from the first test on.
#include "Files/Sprite/Sprite.h"

namespace vesk {

namespace {

int32_t Wrap(int32_t frame, int32_t count) {
  const int32_t rest = frame % count;
  return rest < 0 ? rest + count : rest;
}

std::vector<uint8_t> Expand(const uint8_t* packed, int32_t width, int32_t height) {
  const size_t rowBytes = (static_cast<size_t>(width) + 7) / 8;
  std::vector<uint8_t> bytes(static_cast<size_t>(width) * static_cast<size_t>(height));
  uint8_t* out = bytes.data();
  for (int32_t y = 0; y < height; ++y, packed += rowBytes)
    for (int32_t x = 0; x < width; ++x) *out++ = (packed[x >> 3] >> (7 - (x & 7))) & 1;
  return bytes;
}

} // namespace

const uint8_t* CSprite::Mask(int32_t frame) const {
  if (maskCount <= 0) return nullptr;
  if (expandedMasks.empty()) {
    if (!packedMasks || width <= 0 || height <= 0) return nullptr;
    const size_t size = (static_cast<size_t>(width) + 7) / 8 * static_cast<size_t>(height);
    expandedMasks.reserve(static_cast<size_t>(maskCount));
    for (int32_t m = 0; m < maskCount; ++m)
      expandedMasks.push_back(Expand(packedMasks + static_cast<size_t>(m) * size, width, height));
  }
  return expandedMasks[static_cast<size_t>(Wrap(frame, static_cast<int32_t>(expandedMasks.size())))].data();
}

} // namespace vesk
