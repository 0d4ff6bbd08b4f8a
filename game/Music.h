#pragma once

namespace vesk {

inline constexpr int kMusicPriority = 99; // of every song; effects play below it

} // namespace vesk
