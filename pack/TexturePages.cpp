#include "pack/TexturePages.h"

#include <algorithm>
#include <csetjmp>
#include <cstring>
#include <functional>
#include <png.h>
#include <stdexcept>

#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wconversion"
#pragma GCC diagnostic ignored "-Wunused-function"
#define STBRP_STATIC
#define STB_RECT_PACK_IMPLEMENTATION
#include <stb/stb_rect_pack.h>
#pragma GCC diagnostic pop

namespace vesk::pack {
namespace {

constexpr int kPadding = 1;
constexpr int kWidthStep = 64;

bool Visible(uint32_t rgba) { return (rgba >> 24) != 0; }

PagePlace Crop(const Picture& picture) {
  int left = picture.width, top = picture.height, right = -1, bottom = -1;
  for (int y = 0; y < picture.height; ++y) {
    const uint32_t* row = picture.rgba.data() + static_cast<size_t>(y) * static_cast<size_t>(picture.width);
    const uint32_t* end = row + picture.width;
    const uint32_t* first = std::find_if(row, end, Visible);
    if (first == end) continue;
    const uint32_t* last = end - 1;
    while (!Visible(*last)) --last;
    left = std::min(left, static_cast<int>(first - row));
    right = std::max(right, static_cast<int>(last - row));
    top = std::min(top, y);
    bottom = y;
  }
  PagePlace place;
  place.fullWidth = picture.width;
  place.fullHeight = picture.height;
  if (right < 0) {
    place.width = place.height = 1;
    return place;
  }
  place.targetX = left;
  place.targetY = top;
  place.width = right - left + 1;
  place.height = bottom - top + 1;
  return place;
}

// The rectangles to pack: those before `backdrops` come first.
struct Rects {
  std::vector<stbrp_rect> all;
  std::ptrdiff_t backdrops = 0;
};

// Packs what fits onto a page that wide; true when everything did.
bool PackOnce(Rects& rects, int width) {
  std::vector<stbrp_node> nodes(static_cast<size_t>(width));
  stbrp_context context;
  stbrp_init_target(&context, width, kPageSize, nodes.data(), width);
  stbrp_setup_heuristic(&context, STBRP_HEURISTIC_Skyline_BF_sortHeight);
  const auto total = static_cast<std::ptrdiff_t>(rects.all.size());
  const bool first = stbrp_pack_rects(&context, rects.all.data(), static_cast<int>(rects.backdrops)) != 0;
  return stbrp_pack_rects(&context, rects.all.data() + rects.backdrops,
                          static_cast<int>(total - rects.backdrops)) != 0 &&
         first;
}

struct Extent {
  int width = 0, height = 0;
  int64_t Area() const { return static_cast<int64_t>(width) * height; }
};

// What the packed pictures take, in whole blocks of 16 pixels.
Extent Used(std::span<const stbrp_rect> rects) {
  Extent used;
  for (const stbrp_rect& rect : rects) {
    if (!rect.was_packed) continue;
    used.width = std::max(used.width, rect.x + rect.w);
    used.height = std::max(used.height, rect.y + rect.h);
  }
  const auto blocks = [](int pixels) { return (pixels + 15) / 16 * 16; };
  return {std::min(blocks(used.width), kPageSize), std::min(blocks(used.height), kPageSize)};
}

// Packs everything onto the page of the smallest area, since a page costs memory by its area; where no page
// holds everything, as much as the largest page holds.
Extent PackTightly(Rects& rects) {
  Extent best;
  int bestWidth = kPageSize;
  int64_t needed = 0;
  for (const stbrp_rect& rect : rects.all) needed += static_cast<int64_t>(rect.w) * rect.h;
  for (int width = kWidthStep; width <= kPageSize; width += kWidthStep) {
    if (needed > static_cast<int64_t>(width) * kPageSize || !PackOnce(rects, width)) continue;
    const Extent used = Used(rects.all);
    if (best.width == 0 || used.Area() < best.Area()) {
      best = used;
      bestWidth = width;
    }
  }
  PackOnce(rects, bestWidth);
  return Used(rects.all);
}

} // namespace

TexturePages PackPages(std::span<const PagePicture> pictures) {
  TexturePages result;
  std::vector<stbrp_rect> waiting;
  for (const auto& [picture, backdrop] : pictures) {
    PagePlace place = Crop(*picture);
    const int padding = backdrop ? 0 : kPadding;
    if (place.width + padding > kPageSize || place.height + padding > kPageSize)
      throw std::runtime_error("a picture of " + std::to_string(place.width) + " by " +
                               std::to_string(place.height) + " pixels does not fit on a texture page");
    waiting.push_back(
        {static_cast<int>(result.places.size()), place.width + padding, place.height + padding, 0, 0, 0});
    result.places.push_back(place);
  }

  const auto isBackdrop = [&](const stbrp_rect& rect) {
    return pictures[static_cast<size_t>(rect.id)].backdrop;
  };
  while (!waiting.empty()) {
    Rects rects{std::move(waiting)};
    std::sort(rects.all.begin(), rects.all.end(), [](const auto& a, const auto& b) { return a.id < b.id; });
    rects.backdrops = std::stable_partition(rects.all.begin(), rects.all.end(), std::not_fn(isBackdrop)) -
                      rects.all.begin();
    waiting.clear();
    const auto [width, height] = PackTightly(rects);

    const int page = static_cast<int>(result.pages.size());
    Picture picture{width, height,
                    std::vector<uint32_t>(static_cast<size_t>(width) * static_cast<size_t>(height))};
    for (const stbrp_rect& rect : rects.all) {
      if (!rect.was_packed) {
        waiting.push_back(rect);
        continue;
      }
      PagePlace& place = result.places[static_cast<size_t>(rect.id)];
      const Picture& from = *pictures[static_cast<size_t>(rect.id)].picture;
      place.page = page;
      place.sourceX = rect.x;
      place.sourceY = rect.y;
      for (int y = 0; y < place.height && !from.rgba.empty(); ++y)
        std::memcpy(&picture.rgba[static_cast<size_t>(place.sourceY + y) * static_cast<size_t>(width) +
                                  static_cast<size_t>(place.sourceX)],
                    &from.rgba[static_cast<size_t>(place.targetY + y) * static_cast<size_t>(from.width) +
                               static_cast<size_t>(place.targetX)],
                    static_cast<size_t>(place.width) * sizeof(uint32_t));
    }
    result.pages.push_back(std::move(picture));
  }
  return result;
}

namespace {

void WriteToString(png_structp png, png_bytep bytes, size_t count) {
  static_cast<std::string*>(png_get_io_ptr(png))->append(reinterpret_cast<const char*>(bytes), count);
}

} // namespace

std::string EncodePng(const Picture& picture) {
  std::string file;
  png_structp png = png_create_write_struct(PNG_LIBPNG_VER_STRING, nullptr, nullptr, nullptr);
  png_infop info = png ? png_create_info_struct(png) : nullptr;
  std::vector<png_bytep> rows(static_cast<size_t>(picture.height));
  for (size_t y = 0; y < rows.size(); ++y)
    rows[y] = reinterpret_cast<png_bytep>(
        const_cast<uint32_t*>(picture.rgba.data() + y * static_cast<size_t>(picture.width)));
  if (!info || setjmp(png_jmpbuf(png))) {
    png_destroy_write_struct(&png, &info);
    throw std::runtime_error("a PNG picture could not be written");
  }
  png_set_write_fn(png, &file, WriteToString, nullptr);
  png_set_compression_level(png, 3);
  png_set_IHDR(png, info, static_cast<png_uint_32>(picture.width), static_cast<png_uint_32>(picture.height),
               8, PNG_COLOR_TYPE_RGBA, PNG_INTERLACE_NONE, PNG_COMPRESSION_TYPE_DEFAULT,
               PNG_FILTER_TYPE_DEFAULT);
  png_write_info(png, info);
  png_write_image(png, rows.data());
  png_write_end(png, nullptr);
  png_destroy_write_struct(&png, &info);
  return file;
}

Picture DecodePng(std::span<const uint8_t> file) {
  png_image image{};
  image.version = PNG_IMAGE_VERSION;
  if (!png_image_begin_read_from_memory(&image, file.data(), file.size()))
    throw std::runtime_error(std::string("not a PNG picture: ") + image.message);
  image.format = PNG_FORMAT_RGBA;
  if (image.width > 16384 || image.height > 16384) {
    png_image_free(&image);
    throw std::runtime_error("a PNG picture of " + std::to_string(image.width) + " by " +
                             std::to_string(image.height) + " pixels is too large");
  }
  Picture picture{static_cast<int>(image.width), static_cast<int>(image.height), {}};
  picture.rgba.resize(static_cast<size_t>(image.width) * image.height);
  if (!png_image_finish_read(&image, nullptr, picture.rgba.data(), 0, nullptr))
    throw std::runtime_error(std::string("a damaged PNG picture: ") + image.message);
  return picture;
}

} // namespace vesk::pack
