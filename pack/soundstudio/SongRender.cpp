#include "pack/soundstudio/SongRender.h"

#include "pack/soundstudio/Drum.h"
#include "pack/soundstudio/Loudness.h"
#include "pack/soundstudio/Room.h"
#include "pack/soundstudio/Voice.h"

#include <algorithm>

namespace vesk::sound {
namespace {

constexpr double kCeiling = -1.5;  // decibels
constexpr double kLeadLevel = -22; // loudness of a part with lev=0
constexpr double kDriven = -12;  // loudness of a part before its overdrive, so that it means the same for all
constexpr double kFadeOut = 0.3; // seconds, of songs that end

// How far the kick pushes other parts down, 0 to 1, for every sample.
std::vector<float> Ducking(const Song& song, const Score& score, double beatSeconds, size_t length) {
  std::vector<float> ducking(length, 0.0f);
  for (const ScoreHit& hit : score.hits) {
    if (song.instruments[static_cast<size_t>(hit.instrument)].drum != "kick") continue;
    const auto start = static_cast<int64_t>(hit.on * beatSeconds * kRate);
    Decay fall(0.09);
    const auto strength = static_cast<float>(std::min(1.0, hit.velocity * 1.2));
    constexpr int64_t kBefore = 130, kAfter = 22050; // samples
    for (int64_t k = -kBefore; k < kAfter; ++k) {
      const double e = k < 0 ? static_cast<double>(kBefore + k) / kBefore : fall.Next();
      const auto count = static_cast<int64_t>(length);
      const auto at = static_cast<size_t>((((start + k) % count) + count) % count);
      ducking[at] = std::max(ducking[at], static_cast<float>(e) * strength);
    }
  }
  return ducking;
}

class Orchestra {
public:
  Orchestra(const Song& song, const Score& score)
      : m_song(song), m_score(score), m_beatSeconds(60 / song.tempo),
        m_length(static_cast<size_t>(std::llround(score.beats * 60 / song.tempo * kRate))) {}

  Track Play() {
    Track mix(m_length), reverb(m_length), echo(m_length);
    const std::vector<float> ducking = Ducking(m_song, m_score, m_beatSeconds, m_length);
    for (size_t i = 0; i < m_song.instruments.size(); ++i) {
      const Instrument& instrument = m_song.instruments[i];
      Track track(m_length);
      if (!PlayPart(static_cast<int>(i), track)) continue;
      if (instrument.drive > 0) {
        track.Scale(Gain(kDriven - PartLoudness(track, instrument.pan)));
        Drive(track, instrument.drive);
      }
      Chorus(track, instrument.chorus);
      const double loudness = PartLoudness(track, instrument.pan);
      const double gain = loudness > kLowestLevel ? Gain(kLeadLevel + instrument.level - loudness) : 1;
      if (instrument.duck > 0) Duck(track, ducking, instrument.duck);
      mix.AddScaled(track, gain);
      if (instrument.reverb > 0) reverb.AddScaled(track, gain * instrument.reverb);
      if (instrument.echo > 0) echo.AddScaled(track, gain * instrument.echo);
    }
    Track echoes(m_length);
    AddEcho(echo, echoes, m_song.echoBeats * m_beatSeconds, m_song.echoFeedback, m_song.echoDamping,
            m_song.loop);
    mix.AddScaled(echoes, 1);
    reverb.AddScaled(echoes, 0.35);
    AddReverb(reverb, mix, m_song.reverbSeconds, m_song.reverbDamping, m_song.loop);
    CutRumble(mix, m_song.loop);
    if (!m_song.loop) FadeEnds(mix, 0.001, kFadeOut);
    for (int pass = 0; pass < 2; ++pass) { // the limiter takes a little away
      mix.Scale(Gain(m_song.target - IntegratedLoudness(mix)));
      Limit(mix, Gain(kCeiling), m_song.loop);
    }
    return mix;
  }

private:
  static void Duck(Track& track, const std::vector<float>& ducking, double depth) {
    for (size_t i = 0; i < ducking.size(); ++i) {
      const auto gain = static_cast<float>(1 - depth * ducking[i]);
      track.left[i] *= gain;
      track.right[i] *= gain;
    }
  }

  // False when the instrument has nothing to play.
  bool PlayPart(int index, Track& track) const {
    const Instrument& instrument = m_song.instruments[static_cast<size_t>(index)];
    const Sink sink(track, m_song.loop);
    uint32_t count = 0;
    const auto human = [&](double& seconds, double& velocity, uint32_t seed) {
      RandomNumbers random(seed);
      const double late = random.Signed(), loud = random.Signed(); // in this order on every compiler
      seconds += late * m_song.humanSeconds * 0.5;
      if (!m_song.loop) seconds = std::max(0.0, seconds);
      velocity *= 1 + loud * m_song.humanStrength;
    };
    const auto seed = [&] { return Hash(static_cast<uint32_t>(index) * 104729u + count++); };
    for (const ScoreHit& hit : m_score.hits) {
      if (hit.instrument != index) continue;
      double at = hit.on * m_beatSeconds, velocity = hit.velocity;
      const uint32_t own = seed();
      human(at, velocity, own);
      PlayDrum(instrument, static_cast<int64_t>(at * kRate), velocity, own, sink);
    }
    double lastHertz = 0, lastOn = -1;
    for (const ScoreNote& note : m_score.notes) {
      if (note.instrument != index) continue;
      double at = note.on * m_beatSeconds, velocity = note.velocity;
      VoiceNote voice;
      voice.seed = seed();
      human(at, velocity, voice.seed);
      voice.hertz = 440 * Semitones(note.note - 69);
      voice.fromHertz = note.slide ? lastHertz : 0;
      voice.start = static_cast<int64_t>(at * kRate);
      voice.seconds = std::max(0.03, (note.off - note.on) * m_beatSeconds * instrument.gate);
      voice.velocity = velocity;
      voice.cutoffOctaves = note.cutoffOctaves;
      voice.beatSeconds = m_beatSeconds;
      PlayVoice(instrument, voice, sink);
      if (note.on != lastOn) lastHertz = voice.hertz, lastOn = note.on; // NOLINT: a chord has one time
    }
    return count > 0;
  }

  const Song& m_song;
  const Score& m_score;
  double m_beatSeconds;
  size_t m_length;
};

} // namespace

Track Render(const Song& song, const Score& score) { return Orchestra(song, score).Play(); }

} // namespace vesk::sound
