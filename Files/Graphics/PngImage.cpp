#include "Files/Graphics/PngImage.h"

#include <png.h>

#include <cstring>

namespace vesk {

namespace {

constexpr uint8_t kSignature[8] = {0x89, 'P', 'N', 'G', '\r', '\n', 0x1A, '\n'};
constexpr uint32_t kLargestSide = 16384;
constexpr uint64_t kMostPixels = uint64_t{1} << 27;

uint32_t BigEndian(const uint8_t* at) {
  return static_cast<uint32_t>(at[0]) << 24 | static_cast<uint32_t>(at[1]) << 16 |
         static_cast<uint32_t>(at[2]) << 8 | at[3];
}

} // namespace

bool Png_Measure(const uint8_t* data, uint32_t size, int32_t& width, int32_t& height) {
  if (size < 33 || std::memcmp(data, kSignature, 8) != 0 || std::memcmp(data + 12, "IHDR", 4) != 0)
    return false;
  const uint32_t w = BigEndian(data + 16), h = BigEndian(data + 20);
  if (w == 0 || h == 0 || w > kLargestSide || h > kLargestSide || uint64_t{w} * h > kMostPixels) return false;
  width = static_cast<int32_t>(w);
  height = static_cast<int32_t>(h);
  return true;
}

bool Png_Decode(const uint8_t* data, uint32_t size, PngImage& image, std::string& why) {
  if (!Png_Measure(data, size, image.width, image.height)) {
    why = "not a PNG image, or one of more than 16384 pixels a side";
    return false;
  }
  png_image png{};
  png.version = PNG_IMAGE_VERSION;
  if (png_image_begin_read_from_memory(&png, data, size)) {
    png.format = PNG_FORMAT_RGBA;
    image.pixels.resize(PNG_IMAGE_SIZE(png));
    if (png_image_finish_read(&png, nullptr, image.pixels.data(), 0, nullptr)) return true;
  }
  why = png.message;
  image.pixels.clear();
  png_image_free(&png);
  return false;
}

bool Png_Encode(const PngImage& image, std::string& bytes, std::string& why) {
  png_image png{};
  png.version = PNG_IMAGE_VERSION;
  png.width = static_cast<png_uint_32>(image.width);
  png.height = static_cast<png_uint_32>(image.height);
  png.format = PNG_FORMAT_RGBA;
  png_alloc_size_t size = PNG_IMAGE_PNG_SIZE_MAX(png);
  bytes.resize(size);
  const bool done =
      png_image_write_to_memory(&png, bytes.data(), &size, 0, image.pixels.data(), 0, nullptr) != 0;
  bytes.resize(done ? size : 0);
  if (!done) why = png.message;
  return done;
}

} // namespace vesk
