#include "pack/soundstudio/Drum.h"

#include <algorithm>
#include <array>
#include <stdexcept>

namespace vesk::sound {
namespace {

enum class Kind { kick, snare, metal, ride, crash, shaker, brush, tom, clap, wood, rim, drip };

// Hertz and seconds until a hit is 26 dB down, where the source gives none.
struct Row {
  const char* name;
  Kind kind;
  double tune, dying;
};
constexpr Row kDrums[] = {{"kick", Kind::kick, 50, 0.22},       {"snare", Kind::snare, 190, 0.16},
                          {"hat", Kind::metal, 7500, 0.05},     {"ohat", Kind::metal, 7000, 0.32},
                          {"ride", Kind::ride, 5200, 0.7},      {"crash", Kind::crash, 4200, 1.6},
                          {"shaker", Kind::shaker, 6000, 0.07}, {"swish", Kind::brush, 3000, 0.16},
                          {"tom", Kind::tom, 110, 0.3},         {"clap", Kind::clap, 1300, 0.18},
                          {"wood", Kind::wood, 820, 0.06},      {"rim", Kind::rim, 1700, 0.03},
                          {"drip", Kind::drip, 900, 0.09}};

const Row* Find(const std::string& name) {
  for (const Row& row : kDrums)
    if (name == row.name) return &row;
  return nullptr;
}

class Hit {
public:
  Hit(const Row& row, double tune, double dying, double tone, uint32_t seed)
      : m_kind(row.kind), m_step(tune / kRate), m_tone(tone), m_random(seed), m_body(dying / 3),
        m_half(dying / 5) {
    switch (m_kind) {
    case Kind::kick: m_first.Set(1800, 0.2); break;
    case Kind::snare: m_first.Set(tune * 11, 0.2), m_second.Set(tune * 5, 0); break;
    case Kind::brush: m_first.Set(tune, 0.3), m_second.Set(900, 0), m_third.Set(7000, 0.05); break;
    case Kind::clap: m_first.Set(tune, 0.55), m_second.Set(700, 0); break;
    default: m_first.Set(tune, 0.35), m_second.Set(tune * 0.8, 0.1); break;
    }
  }

  double Next(double t) {
    const double body = m_body.Next();
    switch (m_kind) {
    case Kind::kick: {
      Turn(m_phase, m_step * (1 + 3.2 * m_16ms.Next() + 0.5 * m_60ms.Next()));
      const double click = m_first.Next(m_random.Signed() * m_4ms.Next()).low * m_tone * 0.5;
      return std::tanh((Sine(m_phase) * body * 1.2 + click) * 1.3) * 0.85;
    }
    case Kind::snare: {
      Turn(m_phase, m_step * (1 + 0.5 * m_16ms.Next()));
      Turn(m_other, m_step * 1.72);
      const double skin = (Sine(m_phase) + 0.5 * Sine(m_other)) * m_half.Next();
      const double rattle = m_second.Next(m_first.Next(m_random.Signed()).band).high;
      return skin * (1 - m_tone) * 0.9 + rattle * body * m_tone * 1.6;
    }
    case Kind::metal: return Metal(400) * body;
    case Kind::ride: return Metal(310) * body * (0.35 + 0.65 * m_60ms.Next());
    case Kind::crash: return Metal(250) * body * std::min(1.0, t / 0.004);
    case Kind::shaker: return m_first.Next(m_random.Signed()).high * std::min(1.0, t / 0.015) * body * 0.8;
    case Kind::brush: {
      const double rise = 0.045 + 0.06 * m_tone;
      const double wiped = m_third.Next(m_second.Next(m_first.Next(m_random.Signed()).band).high).low;
      return wiped * (t < rise ? Sine(t / rise * 0.25) : body) * 1.1;
    }
    case Kind::tom:
      Turn(m_phase, m_step * (1 + 0.6 * m_60ms.Next()));
      return Sine(m_phase) * body + m_random.Signed() * m_4ms.Next() * 0.25 * m_tone;
    case Kind::clap: return Clap(t, body);
    case Kind::wood:
    case Kind::rim: {
      Turn(m_phase, m_step);
      Turn(m_other, m_step * (m_kind == Kind::rim ? 1.61 : 2.71));
      const double knock = m_random.Signed() * m_4ms.Next() * m_4ms.Next() * 0.3 * m_tone;
      return (Sine(m_phase) + 0.45 * Sine(m_other) * m_16ms.Next()) * body * 0.8 + knock;
    }
    case Kind::drip:
      Turn(m_phase, m_step * (1 + 0.9 * (1 - m_60ms.Next())));
      return Sine(m_phase) * body * std::min(1.0, t / 0.003);
    }
    return 0;
  }

private:
  static void Turn(double& phase, double step) {
    phase += step;
    if (phase >= 1) phase -= 1; // steps are below 1
  }

  double Metal(double ground) {
    static constexpr double kRatios[6] = {1, 1.342, 1.235, 1.692, 1.47, 1.83};
    double sum = 0;
    for (size_t k = 0; k < 6; ++k) {
      Turn(m_plates[k], ground * kRatios[k] / kRate);
      sum += m_plates[k] < 0.5 ? 0.16 : -0.16;
    }
    const double x = sum * m_tone + m_random.Signed() * (1 - m_tone) * 0.6;
    return m_second.Next(m_first.Next(x).high).high * 1.3;
  }

  // Three hands a little apart, then the room.
  double Clap(double t, double body) {
    double strength = body;
    for (int k = 0; k < 3; ++k) {
      const double since = t - k * 0.011;
      if (since >= 0 && since < 0.011) strength = std::exp(-since / 0.004);
    }
    return m_second.Next(m_first.Next(m_random.Signed()).band).high * strength * 1.5;
  }

  Kind m_kind;
  double m_step, m_tone, m_phase = 0, m_other = 0;
  RandomNumbers m_random;
  Decay m_body, m_half, m_4ms{0.004}, m_16ms{0.016}, m_60ms{0.06};
  Filter m_first, m_second, m_third;
  std::array<double, 6> m_plates = {0, 0.1, 0.3, 0.5, 0.7, 0.9};
};

} // namespace

bool IsDrum(const std::string& name) { return Find(name) != nullptr; }

void PlayDrum(const Instrument& instrument, int64_t start, double velocity, uint32_t seed, const Sink& sink) {
  const Row* row = Find(instrument.drum);
  if (!row) throw std::runtime_error("\"" + instrument.drum + "\" is no drum");
  RandomNumbers random(seed);
  const double tune = (instrument.tune > 0 ? instrument.tune : row->tune) *
                      Semitones(instrument.scatterPitch * random.Signed());
  const double dying = instrument.dying > 0 ? instrument.dying : row->dying;
  Hit hit(*row, tune, dying, instrument.tone, seed);
  const double angle = (std::clamp(instrument.pan, -1.0, 1.0) + 1) * kPi / 4;
  const double left = velocity * std::cos(angle) * 1.1892, right = velocity * std::sin(angle) * 1.1892;
  constexpr int64_t kFadeIn = 24, kFadeOut = 200; // samples
  const auto total = static_cast<int64_t>((dying * 2.4 + 0.05) * kRate);
  for (int64_t i = 0; i < total; ++i) {
    double y = hit.Next(static_cast<double>(i) / kRate);
    if (i < kFadeIn) y *= static_cast<double>(i) / kFadeIn;
    if (total - i < kFadeOut) y *= static_cast<double>(total - i) / kFadeOut;
    sink.Add(start + i, y * left, y * right);
  }
}

} // namespace vesk::sound
