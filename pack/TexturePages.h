#pragma once
// Crops pictures to what is visible and packs them onto texture pages.
#include "pack/studio/Studio.h" // Picture

#include <cstdint>
#include <span>
#include <string>
#include <vector>

namespace vesk::pack {

inline constexpr int kPageSize = 2048; // pixels; a page is at most this wide and high

// A picture on its page: the crop, where the crop sits in the full frame, the full frame. Pixels.
struct PagePlace {
  int page = 0;
  int sourceX = 0, sourceY = 0, width = 0, height = 0;
  int targetX = 0, targetY = 0;
  int fullWidth = 0, fullHeight = 0;
};

struct TexturePages {
  std::vector<Picture> pages;
  std::vector<PagePlace> places; // one a picture, in the order given
};

struct PagePicture {
  const Picture* picture;
  // Drawn upright and in its own size: stands edge to edge with its neighbours, where others have a clear
  // pixel between them, and takes what room the others leave.
  bool backdrop = false;
};

// Packs onto as few pages as hold them, none larger than what it holds. A picture without a visible pixel
// keeps one clear pixel. Throws std::runtime_error for a picture that no page can hold.
TexturePages PackPages(std::span<const PagePicture> pictures);

// An 8-bit RGBA PNG file in memory, the same bytes for the same picture. Throws std::runtime_error.
std::string EncodePng(const Picture& picture);
// Throws std::runtime_error, in words, for anything but a whole PNG file.
Picture DecodePng(std::span<const uint8_t> file);

} // namespace vesk::pack
