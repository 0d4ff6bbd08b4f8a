#pragma once
// Pictures from outside the container: read from a file, freed of their background.
#include "Files/Graphics/PngImage.h"

#include <string>

namespace vesk {

// From the save area or the bundle. False with the reason in words.
bool Png_ReadFile(const std::string& name, PngImage& image, std::string& why);
// Every pixel of the left bottom one's colour becomes transparent.
void RemoveBack(PngImage& image);

} // namespace vesk
