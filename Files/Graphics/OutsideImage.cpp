#include "Files/Graphics/OutsideImage.h"

#include "Files/Support/Support_Files.h"
#include "Platform/Files.h"

#include <array>
#include <cstring>

namespace vesk {

bool Png_ReadFile(const std::string& name, PngImage& image, std::string& why) {
  const std::string path = Files_FindForReading(name);
  std::string bytes;
  if (path.empty()) {
    why = "does not exist";
    return false;
  }
  if (!File_ReadAll(path, bytes, &why)) return false;
  return Png_Decode(reinterpret_cast<const uint8_t*>(bytes.data()), static_cast<uint32_t>(bytes.size()),
                    image, why);
}

void RemoveBack(PngImage& image) {
  if (image.pixels.empty()) return;
  std::array<uint8_t, 3> back;
  const size_t corner = static_cast<size_t>(image.height - 1) * static_cast<size_t>(image.width) * 4;
  std::memcpy(back.data(), &image.pixels[corner], back.size());
  for (size_t at = 0; at < image.pixels.size(); at += 4)
    if (std::memcmp(&image.pixels[at], back.data(), back.size()) == 0) image.pixels[at + 3] = 0;
}

} // namespace vesk
