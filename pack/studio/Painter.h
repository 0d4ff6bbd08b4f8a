#pragma once
// Runs the statements of a sprite's source and gives its frames.
#include "pack/studio/Source.h"
#include "pack/studio/Studio.h"

#include <vector>

namespace vesk::studio {

// The frames of a sprite that has a source. Throws std::runtime_error with file and line.
std::vector<Picture> PaintSprite(const Library& library, const Palette& palette, const PictureSpec& spec,
                                 const std::vector<PictureSpec>& specs);

} // namespace vesk::studio
