#include "sim/Picture.h"

#include "Files/Graphics/Batch.h"
#include "Files/Graphics/Graphics.h"

#include <png.h>

#include <cstdio>
#include <vector>

namespace vesk {

DrawCounts LastFrameDraws() {
  const DrawCounters& last = Batch().lastFrame;
  return {static_cast<int64_t>(last.batches), static_cast<int64_t>(last.quads)};
}

std::string WriteShot(const std::string& file) {
  const WindowPicture picture = Graphics_ReadBackBuffer();
  if (picture.pixels.empty()) return "no frame has been drawn yet";
  png_image image{};
  image.version = PNG_IMAGE_VERSION;
  image.width = static_cast<png_uint_32>(picture.width);
  image.height = static_cast<png_uint_32>(picture.height);
  image.format = PNG_FORMAT_RGB; // what the window shows: alpha has done its work
  std::vector<uint8_t> opaque;
  for (size_t at = 0; at + 3 < picture.pixels.size(); at += 4)
    opaque.insert(opaque.end(), picture.pixels.begin() + static_cast<std::ptrdiff_t>(at),
                  picture.pixels.begin() + static_cast<std::ptrdiff_t>(at) + 3);
  if (!png_image_write_to_file(&image, file.c_str(), 0, opaque.data(), 0, nullptr))
    return "\"" + file + "\" can't be written: " + image.message;
  return "";
}

} // namespace vesk
