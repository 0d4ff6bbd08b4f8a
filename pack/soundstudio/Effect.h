#pragma once
// Sources of effects, *.fx: sounds made of layers.
#include "pack/soundstudio/Instrument.h"
#include "pack/soundstudio/Signal.h"

#include <filesystem>

namespace vesk::sound {

struct Effect {
  std::string name, text; // text: all words of its source, by which it is cached
  double seconds = 0;
  double level = -16; // loudness of its loudest 100 ms, decibels
  bool loop = false;
  double reverbSend = 0, reverbSeconds = 0.6, echoSend = 0, echoSeconds = 0.1, echoFeedback = 0.3;
  std::vector<Instrument> layers;
};

// Throws std::runtime_error, in words, with file and line.
std::vector<Effect> ReadEffects(const std::filesystem::path& file);

Track Render(const Effect& effect);

} // namespace vesk::sound
