#pragma once
// What all parts of the sound studio share: rate, buffers, random numbers, a sine, a filter.
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <vector>

namespace vesk::sound {

inline constexpr double kRate = 44100; // samples a second
inline constexpr double kPi = 3.14159265358979323846;
inline constexpr double kLowestLevel = -120; // decibels; silence

// Two channels of samples of equal length, from -1 to 1 when finished.
struct Track {
  std::vector<float> left, right;
  explicit Track(size_t length = 0) : left(length), right(length) {}
  size_t Length() const { return left.size(); }
  void Scale(double gain);
  void AddScaled(const Track& other, double gain);
};

// Where voices are added: a loop takes what runs over its end back in at its start, everything else drops it.
class Sink {
public:
  Sink(Track& track, bool loop)
      : m_track(track), m_length(static_cast<int64_t>(track.Length())), m_loop(loop) {}
  void Add(int64_t at, double left, double right) const {
    if (at < 0 || at >= m_length) {
      if (!m_loop) return;
      at = ((at % m_length) + m_length) % m_length;
    }
    m_track.left[static_cast<size_t>(at)] += static_cast<float>(left);
    m_track.right[static_cast<size_t>(at)] += static_cast<float>(right);
  }

private:
  Track& m_track;
  int64_t m_length;
  bool m_loop;
};

uint32_t Hash(uint32_t value);

// Equal seeds give equal numbers on every machine.
class RandomNumbers {
public:
  explicit RandomNumbers(uint32_t seed) : m_state(Hash(seed) | 1u) {}
  double Signed() { // -1 to 1
    m_state ^= m_state << 13;
    m_state ^= m_state >> 17;
    m_state ^= m_state << 5;
    return static_cast<double>(static_cast<int32_t>(m_state)) / 2147483648.0;
  }
  double Unit() { return Signed() * 0.5 + 0.5; }

private:
  uint32_t m_state;
};

double Gain(double decibels);
double Decibels(double gain);
inline double Semitones(double count) { return std::exp2(count / 12); }

double Sine(double turns); // by table; any finite number of turns

// A falling exponential without a call of exp for every sample.
class Decay {
public:
  explicit Decay(double seconds) : m_factor(std::exp(-1.0 / (seconds * kRate))) {}
  double Next() {
    const double now = m_value;
    m_value *= m_factor;
    return now;
  }

private:
  double m_value = 1, m_factor;
};

// State-variable filter, stable while its cutoff moves. Resonance is 0 to 1.
class Filter {
public:
  struct Bands {
    double low, band, high;
  };
  void Set(double hertz, double resonance);
  void SetLike(const Filter& other) { // the other's setting, the own state
    m_k = other.m_k, m_g = other.m_g, m_a1 = other.m_a1, m_a2 = other.m_a2, m_a3 = other.m_a3;
  }
  Bands Next(double x) {
    const double v3 = x - m_s2;
    const double v1 = m_a1 * m_s1 + m_a2 * v3;
    const double v2 = m_s2 + m_a2 * m_s1 + m_a3 * v3;
    m_s1 = 2 * v1 - m_s1;
    m_s2 = 2 * v2 - m_s2;
    return {v2, v1, x - m_k * v1 - v2};
  }

private:
  double m_g = 0, m_k = 1, m_a1 = 0, m_a2 = 0, m_a3 = 0, m_s1 = 0, m_s2 = 0;
};

} // namespace vesk::sound
