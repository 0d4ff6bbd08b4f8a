#pragma once
// An instrument, a drum or a layer of an effect, as its settings "key=value" describe it.
#include <string>
#include <string_view>
#include <vector>

namespace vesk::sound {

enum class Wave { none, pulse, saw, triangle, sine, noise, fm, organ, pluck, modal };

struct Oscillator {
  Wave wave = Wave::none;
  std::vector<double> values; // what they mean depends on the wave
  double Value(size_t index, double otherwise) const {
    return index < values.size() ? values[index] : otherwise;
  }
};

// "200>800@.1>400@.3": 200, gliding to 800 at 0.1 s, to 400 at 0.3 s. All values from 1 on.
class Course {
public:
  struct Point {
    double seconds, value;
  };
  Course() = default;
  explicit Course(std::vector<Point> points) : m_points(std::move(points)) {}
  bool Empty() const { return m_points.empty(); }
  bool Fixed() const { return m_points.size() == 1; }
  double At(double seconds) const;

private:
  std::vector<Point> m_points;
};

struct Instrument {
  std::string name, role = "part";
  std::string drum; // which drum; empty for a voice with oscillators
  Oscillator first, second;
  double mix = 0.5, transpose = 0, detune = 0; // second oscillator: share, semitones, cents
  int unison = 1;
  double unisonCents = 8;
  double attack = 0.005, decay = 0.3, sustain = 0.7, release = 0.1; // seconds; sustain 0 to 1
  enum class Pass { low, band, high } pass = Pass::low;
  Course cutoff; // hertz; empty for no filter
  double resonance = 0.1, cutoffOctaves = 0, cutoffDecay = 0.2, tracking = 0;
  std::vector<Course::Point> vowels; // index of the vowel from a second on
  double formant = 1;
  double vibratoHertz = 0, vibratoCents = 0, vibratoDelay = 0, glide = 0.05;
  double wobbleBeats = 0, wobbleOctaves = 0, tremoloHertz = 0, tremolo = 0;
  double gate = 0.92, drive = 0, breath = 0; // share of the written length; strength; added noise
  double volume = 0, level = 0, pan = 0;     // decibels; -1 left to 1 right
  double reverb = 0, echo = 0, chorus = 0, duck = 0;
  int octave = 4, voices = 3, lowest = 52, highest = 74;
  bool ninths = true;
  double tune = 0, dying = 0, tone = 0.5, scatterPitch = 0; // drums: hertz and seconds, 0 for its own
  // Layers of effects only.
  Course pitch;
  double at = 0, length = 0, steady = 0;
  int times = 1;
  double interval = 0, spread = 0, fall = 0; // seconds, seconds, decibels from first to last
};

// Throws std::runtime_error, in words, without place.
void Apply(Instrument& instrument, std::string_view setting);

// "c#4" is 61; -1 when it is no note.
int NoteNumber(std::string_view text);

// Throws std::runtime_error when the text is no number or one beyond 100000.
double Number(std::string_view text);

std::vector<std::string> Split(std::string_view text, char separator);

} // namespace vesk::sound
