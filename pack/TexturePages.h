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

// Pages are powers of two, no larger than needed, with a clear pixel between pictures. A picture without a
// visible pixel keeps one clear pixel. Throws std::runtime_error for a picture that no page can hold.
// Pictures of a lower rank come first onto every page, so that what is drawn together stands together; none:
// all the same.
TexturePages PackPages(std::span<const Picture* const> pictures, std::span<const int> ranks = {});

// An 8-bit RGBA PNG file in memory, the same bytes for the same picture. Throws std::runtime_error.
std::string EncodePng(const Picture& picture);
// Throws std::runtime_error, in words, for anything but a whole PNG file.
Picture DecodePng(std::span<const uint8_t> file);

} // namespace vesk::pack
