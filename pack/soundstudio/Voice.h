#pragma once
// One note of an instrument with oscillators.
#include "pack/soundstudio/Instrument.h"
#include "pack/soundstudio/Signal.h"

namespace vesk::sound {

struct VoiceNote {
  double hertz = 440;
  double fromHertz = 0;     // glides from there; 0 for a plain start
  double pitchFactor = 1;   // on top of the course of a layer
  int64_t start = 0;        // samples
  double seconds = 0.1;     // held; the release comes after it
  double velocity = 1;      // 0 to about 1.2
  double cutoffOctaves = 0; // added to the cutoff
  double beatSeconds = 0.5;
  uint32_t seed = 1;
  double loopSeconds = 0; // above 0: sounds without begin or end through a loop of that length
};

void PlayVoice(const Instrument& instrument, const VoiceNote& note, const Sink& sink);

} // namespace vesk::sound
