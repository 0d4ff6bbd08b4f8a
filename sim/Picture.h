#pragma once
// What the last frame drew.
#include <cstdint>
#include <string>

namespace vesk {

struct DrawCounts {
  int64_t batches = 0;
  int64_t quads = 0;
};
DrawCounts LastFrameDraws();

// Writes the last frame's picture, 384 by 216, as PNG. "" or, in words, why it can't.
std::string WriteShot(const std::string& file);

} // namespace vesk
