#pragma once
// Measures of finished sounds, and pictures to look at them.
#include "pack/soundstudio/Score.h"
#include "pack/soundstudio/Signal.h"
#include "pack/studio/Studio.h"

#include <array>

namespace vesk::sound {

struct Figures {
  double seconds = 0;
  double peak = 0;                        // decibels
  double loudness = 0;                    // of the whole, decibels
  double loudest = 0;                     // of the loudest 100 ms, decibels
  double firstSample = 0, lastSample = 0; // the larger channel
  double seamStep =
      0; // from the last sample to the first, as a share of the largest step within 200 samples of there
  double silence = 0; // longest stretch below -60 dB, seconds
  size_t clipped = 0; // samples at full scale
  std::array<double, 9>
      bands{}; // decibels of the whole by octave from 44 Hz on; the last takes what is above
};

Figures Measure(const Track& track);

// Spectrogram from 40 Hz to 20 kHz over the outline of its loudness.
Picture Spectrogram(const Track& track, int width, int height);

// Notes by pitch, one colour a part, with section lines; drums in rows below.
Picture PianoRoll(const Song& song, const Score& score, int width);

// One picture below the other.
Picture Stack(const std::vector<Picture>& pictures, int columns);

} // namespace vesk::sound
