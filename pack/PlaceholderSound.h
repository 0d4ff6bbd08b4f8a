#pragma once
// Sounds that stand in for those not made yet, and the Ogg Vorbis encoder behind them.
#include <span>
#include <string>

namespace vesk::pack {

inline constexpr int kSoundRate = 44100; // samples a second

// Samples from -1 to 1, those of one or two channels in turn, as an Ogg Vorbis stream; quality 0 to 1. The
// same bytes for the same samples on one build of the library. Throws std::runtime_error.
std::string EncodeOgg(std::span<const float> samples, float quality, int channels = 1);

// An effect: one short quiet blip, then silence up to its length. Music: a very quiet tone of a few seconds.
// The pitch comes from the number, so that they can be told apart.
std::string PlaceholderSound(int number, double seconds, bool music);

} // namespace vesk::pack
