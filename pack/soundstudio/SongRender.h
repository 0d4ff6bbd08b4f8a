#pragma once
// Plays a score.
#include "pack/soundstudio/Score.h"
#include "pack/soundstudio/Signal.h"

namespace vesk::sound {

// Every part is brought to its own loudness (`lev`), the whole to the song's target. A loop has no seam.
Track Render(const Song& song, const Score& score);

} // namespace vesk::sound
