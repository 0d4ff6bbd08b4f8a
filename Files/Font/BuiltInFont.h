#pragma once
// The small font that text gets when the game has chosen none: characters 32 to 126, 5 by 7 pixels.
#include "Files/Font/Font.h"

#include <cstdint>
#include <memory>

namespace vesk {

// Makes the font and its page texture, whose id is stored.
std::unique_ptr<CFontFb> BuiltInFont_Make(int32_t& texture);

} // namespace vesk
