#include "pack/TexturePages.h"

#include <algorithm>
#include <csetjmp>
#include <cstring>
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
constexpr int kSmallestPage = 64;

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

// Packs what fits onto one page of that size, a rank at a time; true when everything did. The rectangles
// stand in the order of their ranks.
bool PackOnce(std::vector<stbrp_rect>& rects, std::span<const int> ranks, int width, int height) {
  std::vector<stbrp_node> nodes(static_cast<size_t>(width));
  stbrp_context context;
  stbrp_init_target(&context, width, height, nodes.data(), width);
  stbrp_setup_heuristic(&context, STBRP_HEURISTIC_Skyline_BF_sortHeight);
  const auto rank = [&](const stbrp_rect& rect) {
    return ranks.empty() ? 0 : ranks[static_cast<size_t>(rect.id)];
  };
  bool all = true;
  for (auto from = rects.begin(); from != rects.end();) {
    const auto to =
        std::find_if(from, rects.end(), [&](const stbrp_rect& rect) { return rank(rect) != rank(*from); });
    all = stbrp_pack_rects(&context, &*from, static_cast<int>(to - from)) != 0 && all;
    from = to;
  }
  return all;
}

} // namespace

TexturePages PackPages(std::span<const Picture* const> pictures, std::span<const int> ranks) {
  TexturePages result;
  std::vector<stbrp_rect> rects;
  for (const Picture* picture : pictures) {
    PagePlace place = Crop(*picture);
    if (place.width + kPadding > kPageSize || place.height + kPadding > kPageSize)
      throw std::runtime_error("a picture of " + std::to_string(place.width) + " by " +
                               std::to_string(place.height) + " pixels does not fit on a texture page");
    rects.push_back(
        {static_cast<int>(result.places.size()), place.width + kPadding, place.height + kPadding, 0, 0, 0});
    result.places.push_back(place);
  }

  const auto before = [&](const stbrp_rect& a, const stbrp_rect& b) {
    const int rankA = ranks.empty() ? 0 : ranks[static_cast<size_t>(a.id)];
    const int rankB = ranks.empty() ? 0 : ranks[static_cast<size_t>(b.id)];
    return rankA != rankB ? rankA < rankB : a.id < b.id;
  };
  while (!rects.empty()) {
    std::sort(rects.begin(), rects.end(), before);
    int64_t area = 0;
    for (const stbrp_rect& rect : rects) area += static_cast<int64_t>(rect.w) * rect.h;
    int width = kSmallestPage, height = kSmallestPage;
    const auto grow = [&] { (width <= height ? width : height) *= 2; };
    while (area > static_cast<int64_t>(width) * height && height < kPageSize) grow();
    while (!PackOnce(rects, ranks, width, height) && height < kPageSize) grow();

    // What no picture reaches is cut off: a page costs memory by its area.
    int usedWidth = 0, usedHeight = 0;
    for (const stbrp_rect& rect : rects)
      if (rect.was_packed) {
        usedWidth = std::max(usedWidth, rect.x + rect.w);
        usedHeight = std::max(usedHeight, rect.y + rect.h);
      }
    width = std::min(width, (usedWidth + 15) / 16 * 16);
    height = std::min(height, (usedHeight + 15) / 16 * 16);

    const int page = static_cast<int>(result.pages.size());
    Picture picture{width, height,
                    std::vector<uint32_t>(static_cast<size_t>(width) * static_cast<size_t>(height))};
    std::vector<stbrp_rect> left;
    for (const stbrp_rect& rect : rects) {
      if (!rect.was_packed) {
        left.push_back(rect);
        continue;
      }
      PagePlace& place = result.places[static_cast<size_t>(rect.id)];
      const Picture& from = *pictures[static_cast<size_t>(rect.id)];
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
    rects = std::move(left);
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
