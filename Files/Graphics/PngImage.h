#pragma once
// PNG images in memory.
#include <cstdint>
#include <string>
#include <vector>

namespace vesk {

struct PngImage {
  int32_t width = 0, height = 0;
  std::vector<uint8_t> pixels; // red, green, blue, alpha, rows from the top
};

// Width and height from the image's head, without decoding. False when it is no PNG image or too large to
// decode.
bool Png_Measure(const uint8_t* data, uint32_t size, int32_t& width, int32_t& height);
bool Png_Decode(const uint8_t* data, uint32_t size, PngImage& image, std::string& why);
bool Png_Encode(const PngImage& image, std::string& bytes, std::string& why);

} // namespace vesk
