#pragma once
// Loudness as ears weigh it (K-weighting), in decibels below full scale.
#include "pack/soundstudio/Signal.h"

namespace vesk::sound {

// Of the whole track; windows of 0.4 s more than 10 dB below the rest don't count. Of both channels together.
double IntegratedLoudness(const Track& track);

// The same from the louder side alone, for a part whose place between the sides (-1 to 1) is known: half the
// work.
double PartLoudness(const Track& track, double pan);

// Of the loudest window of that length, as if heard from one channel.
double LoudestWindow(const Track& track, double seconds);

double Peak(const Track& track); // largest sample, as a gain

} // namespace vesk::sound
