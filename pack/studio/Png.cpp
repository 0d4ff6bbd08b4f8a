#include "pack/studio/Studio.h"

#include <cstring>
#include <png.h>
#include <stdexcept>

namespace vesk {

void WritePng(const Picture& picture, const std::filesystem::path& file) {
  png_image image{};
  image.version = PNG_IMAGE_VERSION;
  image.width = static_cast<png_uint_32>(picture.width);
  image.height = static_cast<png_uint_32>(picture.height);
  image.format = PNG_FORMAT_RGBA;
  if (!png_image_write_to_file(&image, file.c_str(), 0, picture.rgba.data(), 0, nullptr))
    throw std::runtime_error(file.string() + ": " + image.message);
}

} // namespace vesk
