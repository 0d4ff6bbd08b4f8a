#pragma once
// What is done to whole tracks: echo, reverb, chorus, overdrive, high-pass, limiter. `loop`: the end runs on
// into the start, also inside echo and reverb, so that a finished loop has no seam.
#include "pack/soundstudio/Signal.h"

namespace vesk::sound {

// Adds the reverberation of `send`. Seconds until 60 dB down; damping 0 to 1.
void AddReverb(const Track& send, Track& out, double seconds, double damping, bool loop);

// Adds echoes of `send` that change sides. Feedback and damping 0 to 1.
void AddEcho(const Track& send, Track& out, double seconds, double feedback, double damping, bool loop);

void Drive(Track& track, double strength);           // overdrive; 0 is none
void Chorus(Track& track, double depth);             // for loops; 0 to 1
void CutRumble(Track& track, bool loop);             // nothing below 24 Hz
void Limit(Track& track, double ceiling, bool loop); // looks ahead 4 ms
void FadeEnds(Track& track, double inSeconds, double outSeconds);

} // namespace vesk::sound
