#pragma once
// Runs the statements of a sprite's source and gives its frames.
#include "pack/studio/Source.h"
#include "pack/studio/Studio.h"

#include <functional>
#include <string>
#include <vector>

namespace vesk::studio {

// Gives the frames of a picture that icons are made of; empty when it has no source.
using FramesOf = std::function<const std::vector<Picture>&(const std::string& name)>;

// The frames of a sprite that has a source, of its pieces only one of the four sets when onlySet is 0 to 3.
// Throws std::runtime_error with file and line.
std::vector<Picture> PaintSprite(const Library& library, const Palette& palette, const PictureSpec& spec,
                                 const std::vector<PictureSpec>& specs, const FramesOf& framesOf,
                                 int onlySet = -1);

} // namespace vesk::studio
