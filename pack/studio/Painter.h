#pragma once
// Runs the statements of a sprite's source and gives its frames.
#include "pack/studio/Source.h"
#include "pack/studio/Studio.h"

#include <vector>

namespace vesk::studio {

// The frames of a sprite that has a source, of its pieces only one of the four sets when onlySet is 0 to 3.
// Throws std::runtime_error with file and line.
std::vector<Picture> PaintSprite(const Library& library, const Palette& palette, const PictureSpec& spec,
                                 const std::vector<PictureSpec>& specs, int onlySet = -1);

} // namespace vesk::studio
