#include "pack/soundstudio/Effect.h"

#include "pack/TextSource.h"
#include "pack/soundstudio/Drum.h"
#include "pack/soundstudio/Loudness.h"
#include "pack/soundstudio/Room.h"
#include "pack/soundstudio/Voice.h"

#include <algorithm>
#include <stdexcept>

namespace vesk::sound {
namespace {

constexpr double kCeiling = -1.5;      // decibels
constexpr double kWindow = 0.1;        // seconds, loudness of an effect
constexpr double kLayerWindow = 0.025; // seconds, loudness of a layer
constexpr double kLayerLevel = -16;    // decibels of a layer with vol=0
constexpr double kFadeIn = 0.0007, kFadeOut = 0.012;

void ReadHeading(pack::SourceLine& line, Effect& effect) {
  effect.name = line.Word("a name");
  effect.seconds = Number(line.Word("seconds"));
  if (!(effect.seconds > 0 && effect.seconds < 60))
    line.Fail("an effect lasts more than 0 and less than 60 seconds");
  effect.text = effect.name + " " + std::to_string(effect.seconds);
  while (!line.AtEnd()) {
    const std::string word = line.Word("loop or a setting");
    effect.text += " " + word;
    const auto values = Split(word.substr(std::min(word.size(), word.find('=') + 1)), ':');
    const auto value = [&](size_t i, double otherwise) {
      return i < values.size() ? Number(values[i]) : otherwise;
    };
    if (word == "loop") {
      effect.loop = true;
    } else if (word.starts_with("level=")) {
      effect.level = value(0, -16);
    } else if (word.starts_with("reverb=")) {
      effect.reverbSend = value(0, 0.1), effect.reverbSeconds = std::clamp(value(1, 0.6), 0.05, 20.0);
    } else if (word.starts_with("echo=")) {
      effect.echoSend = value(0, 0.2), effect.echoSeconds = std::clamp(value(1, 0.1), 0.001, 10.0),
      effect.echoFeedback = value(2, 0.3);
    } else {
      throw std::runtime_error("\"" + word + "\" is neither loop, level=, reverb= nor echo=");
    }
  }
}

void ReadLayer(pack::SourceLine& line, Effect& effect) {
  Instrument layer;
  layer.sustain = 0;
  layer.pan = 0;
  effect.text += "\n";
  while (!line.AtEnd()) {
    const std::string word = line.Word("a setting");
    effect.text += " " + word;
    Apply(layer, word);
  }
  if (layer.drum.empty() && layer.first.wave == Wave::none)
    throw std::runtime_error("a layer has osc= or type=");
  if (layer.drum.empty() && layer.pitch.Empty() && layer.first.wave != Wave::noise)
    throw std::runtime_error("a layer with a pitch has hz=");
  if (layer.steady > 0 && !effect.loop) throw std::runtime_error("only a loop has steady layers");
  effect.layers.push_back(std::move(layer));
}

uint32_t Seed(const Effect& effect, size_t layer, int time) {
  uint32_t seed = Hash(static_cast<uint32_t>(1000 + layer * 131) + static_cast<uint32_t>(time) * 7919u);
  for (const char c : effect.name) seed = Hash(seed ^ static_cast<uint8_t>(c));
  return seed;
}

void PlayOnce(const Effect& effect, const Instrument& layer, double at, double velocity, double factor,
              uint32_t seed, const Sink& sink) {
  const auto start = static_cast<int64_t>(at * kRate);
  if (!layer.drum.empty()) return PlayDrum(layer, start, velocity, seed, sink);
  VoiceNote note;
  note.hertz = layer.pitch.Empty() ? 440 : layer.pitch.At(0);
  note.pitchFactor = factor;
  note.start = start;
  note.seconds = std::max(0.004, layer.length > 0 ? layer.length : effect.seconds - at - layer.release);
  note.velocity = velocity;
  note.seed = seed;
  if (layer.steady > 0) note.loopSeconds = effect.seconds;
  PlayVoice(layer, note, sink);
}

// All strokes of a layer, brought to its own loudness, so that `vol` says how it stands in the whole.
Track RenderLayer(const Effect& effect, size_t index, size_t length) {
  const Instrument& layer = effect.layers[index];
  Track track(length);
  const Sink sink(track, effect.loop);
  RandomNumbers random(Seed(effect, index, -1));
  for (int k = 0; k < layer.times; ++k) {
    const double share = layer.times > 1 ? static_cast<double>(k) / (layer.times - 1) : 0;
    const double chance = random.Unit(), pitch = random.Signed();
    double at = layer.at + k * layer.interval;
    if (layer.spread > 0)
      at = layer.at + layer.spread * (effect.loop ? chance : std::pow(share, 1.3) * 0.85 + 0.15 * chance);
    const double factor = layer.drum.empty() ? Semitones(layer.scatterPitch * pitch) : 1;
    PlayOnce(effect, layer, at, Gain(layer.fall * share), factor, Seed(effect, index, k), sink);
  }
  const double loudness = LoudestWindow(track, kLayerWindow);
  if (loudness <= kLowestLevel)
    throw std::runtime_error(effect.name + ": layer " + std::to_string(index + 1) + " is silent");
  track.Scale(Gain(kLayerLevel - loudness));
  if (layer.drive > 0) {
    Drive(track, layer.drive);
    track.Scale(Gain(kLayerLevel - LoudestWindow(track, kLayerWindow)));
  }
  track.Scale(Gain(layer.volume));
  return track;
}

} // namespace

std::vector<Effect> ReadEffects(const std::filesystem::path& file) {
  std::vector<Effect> effects;
  for (pack::SourceLine& line : pack::ReadSource(file)) {
    try {
      const std::string word = line.Word("sound or layer");
      if (word == "sound") {
        ReadHeading(line, effects.emplace_back());
      } else if (word == "layer") {
        if (effects.empty()) throw std::runtime_error("a layer stands below a sound");
        ReadLayer(line, effects.back());
      } else {
        throw std::runtime_error("\"" + word + "\" is neither sound nor layer");
      }
    } catch (const std::runtime_error& error) {
      const std::string what = error.what();
      if (what.starts_with(file.string())) throw;
      line.Fail(what);
    }
  }
  for (const Effect& effect : effects)
    if (effect.layers.empty()) throw std::runtime_error(file.string() + ": " + effect.name + " has no layer");
  return effects;
}

Track Render(const Effect& effect) {
  const auto length = static_cast<size_t>(std::llround(effect.seconds * kRate));
  Track mix(length), reverb(length), echo(length);
  for (size_t i = 0; i < effect.layers.size(); ++i) {
    const Track layer = RenderLayer(effect, i, length);
    mix.AddScaled(layer, 1);
    reverb.AddScaled(layer, effect.layers[i].reverb > 0 ? effect.layers[i].reverb : effect.reverbSend);
    echo.AddScaled(layer, effect.layers[i].echo > 0 ? effect.layers[i].echo : effect.echoSend);
  }
  if (effect.echoSend > 0) AddEcho(echo, mix, effect.echoSeconds, effect.echoFeedback, 0.35, effect.loop);
  AddReverb(reverb, mix, effect.reverbSeconds, 0.4, effect.loop);
  CutRumble(mix, effect.loop);
  if (!effect.loop) FadeEnds(mix, kFadeIn, kFadeOut);
  // The limiter takes a little loudness away, so aim again.
  for (int pass = 0; pass < 3; ++pass) {
    mix.Scale(Gain(effect.level - LoudestWindow(mix, kWindow)));
    Limit(mix, Gain(kCeiling), effect.loop);
  }
  return mix;
}

} // namespace vesk::sound
