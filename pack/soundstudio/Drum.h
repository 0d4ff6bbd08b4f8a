#pragma once
// One hit of a drum.
#include "pack/soundstudio/Instrument.h"
#include "pack/soundstudio/Signal.h"

namespace vesk::sound {

bool IsDrum(const std::string& name);

// `start` in samples. Throws std::runtime_error when the instrument is no drum.
void PlayDrum(const Instrument& instrument, int64_t start, double velocity, uint32_t seed, const Sink& sink);

} // namespace vesk::sound
