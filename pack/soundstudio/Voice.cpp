#include "pack/soundstudio/Voice.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace vesk::sound {
namespace {

constexpr int kBlock = 32;    // samples between two looks at pitch, filter and tremolo
constexpr int kLastFade = 96; // samples: no voice ends with a step
constexpr int kOrganSteps = 2048;
using Block = std::array<double, kBlock>;

// Corrections that take the edge off a step and off a bend, so that they don't fold back as foreign tones.
double Step(double phase, double dt) {
  if (phase < dt) {
    const double t = phase / dt;
    return t + t - t * t - 1;
  }
  if (phase > 1 - dt) {
    const double t = (phase - 1) / dt;
    return t * t + t + t + 1;
  }
  return 0;
}

double Bend(double phase, double dt) {
  if (phase < dt) {
    const double t = phase / dt - 1;
    return -t * t * t / 3;
  }
  if (phase > 1 - dt) {
    const double t = (phase - 1) / dt + 1;
    return t * t * t / 3;
  }
  return 0;
}

// Of a phase from 0 on.
double Wrap(double phase) { return phase - static_cast<double>(static_cast<int>(phase)); }

struct Mode {
  double cosine, sine, decay, amplitude, re = 1, im = 0;
};

// The state of one oscillator of one voice.
class Generator {
public:
  Generator(const Oscillator& oscillator, double hertz, double velocity, double phase, RandomNumbers& random)
      : m_oscillator(oscillator), m_velocity(velocity), m_phase(phase), m_random(random) {
    if (oscillator.wave == Wave::pluck) StartPluck(hertz);
    if (oscillator.wave == Wave::modal) StartModal(hertz);
    if (oscillator.wave == Wave::organ) StartOrgan(hertz);
  }

  // Fills the first `count` samples. `t` is the voice's age in seconds.
  void Run(Block& out, int count, double hertz, double t) {
    const double dt = std::min(0.45, hertz / kRate);
    switch (m_oscillator.wave) {
    case Wave::none: break;
    case Wave::pulse: Pulse(out, count, dt, t); break;
    case Wave::saw:
      for (int i = 0; i < count; ++i, Advance(dt)) Put(out, i, (2 * m_phase - 1 - Step(m_phase, dt)) * 0.8);
      break;
    case Wave::triangle:
      for (int i = 0; i < count; ++i, Advance(dt)) {
        const double half = Wrap(m_phase + 0.5);
        Put(out, i, 2 * std::fabs(2 * m_phase - 1) - 1 + 4 * dt * (Bend(half, dt) - Bend(m_phase, dt)));
      }
      break;
    case Wave::sine:
      for (int i = 0; i < count; ++i, Advance(dt)) Put(out, i, Sine(m_phase));
      break;
    case Wave::noise:
      for (int i = 0; i < count; ++i) Put(out, i, m_random.Signed());
      break;
    case Wave::fm: Fm(out, count, dt, t); break;
    case Wave::organ:
      for (int i = 0; i < count; ++i, Advance(dt * 0.5)) { // its table holds two waves, for the sub-octave
        const double place = m_phase * kOrganSteps;
        const auto step = std::min(static_cast<size_t>(place), static_cast<size_t>(kOrganSteps - 1));
        Put(out, i, m_line[step] + (m_line[step + 1] - m_line[step]) * (place - static_cast<double>(step)));
      }
      break;
    case Wave::pluck: Pluck(out, count, hertz); break;
    case Wave::modal:
      for (Mode& mode : m_modes)
        for (int i = 0; i < count; ++i) {
          Put(out, i, mode.im * mode.amplitude);
          const double re = (mode.re * mode.cosine - mode.im * mode.sine) * mode.decay;
          mode.im = (mode.re * mode.sine + mode.im * mode.cosine) * mode.decay;
          mode.re = re;
        }
      break;
    }
  }

private:
  static void Put(Block& out, int i, double y) { out[static_cast<size_t>(i)] += y; }
  void Advance(double dt) {
    m_phase += dt;
    if (m_phase >= 1) m_phase -= 1;
  }

  void Pulse(Block& out, int count, double dt, double t) {
    double width = m_oscillator.Value(0, 0.5);
    width += m_oscillator.Value(2, 0) * Sine(m_oscillator.Value(1, 0) * t);
    width = std::clamp(width, 0.05, 0.95);
    for (int i = 0; i < count; ++i, Advance(dt)) {
      const double fallen = Wrap(m_phase + 1 - width);
      Put(out, i,
          ((m_phase < width ? 1.0 : -1.0) + Step(m_phase, dt) - Step(fallen, dt) - (2 * width - 1)) * 0.7);
    }
  }

  void Fm(Block& out, int count, double dt, double t) {
    const double index = m_oscillator.Value(1, 1) *
                         std::exp(-t / std::max(1e-3, m_oscillator.Value(2, 0.3))) *
                         (0.4 + 0.6 * m_velocity) / (2 * kPi);
    const double step = dt * m_oscillator.Value(0, 1);
    for (int i = 0; i < count; ++i, Advance(dt)) {
      Put(out, i, Sine(m_phase + index * Sine(m_other)));
      m_other = Wrap(m_other + step);
    }
  }

  // A damped string: a delay line, a one-zero damping and an all-pass for the rest of the period.
  void StartPluck(double hertz) {
    const double period = std::clamp(kRate / hertz - Damping() - 0.2, 8.0, kRate);
    const auto whole = static_cast<size_t>(period);
    const double rest = period - static_cast<double>(whole) + 0.2;
    m_line.assign(whole, 0);
    const double brightness = m_oscillator.Value(0, 0.5);
    double low = 0, mean = 0, peak = 1e-6;
    for (double& x : m_line) {
      low += brightness * (m_random.Signed() - low);
      mean += x = low;
    }
    mean /= static_cast<double>(whole);
    for (double& x : m_line) peak = std::max(peak, std::fabs(x -= mean));
    for (double& x : m_line) x /= peak;
    m_allPass = (1 - rest) / (1 + rest);
    m_phase = m_other = 0;
  }
  double Damping() const { return m_oscillator.Value(2, 0.5); }

  void Pluck(Block& out, int count, double hertz) {
    const double loss = std::exp(-6.9 / (m_oscillator.Value(1, 1) * hertz)), damping = Damping();
    for (int i = 0; i < count; ++i) {
      const double y = m_line[m_place];
      const double damped = (1 - damping) * y + damping * m_last;
      m_last = y;
      const double passed = m_allPass * (damped - m_other) + m_phase;
      m_phase = damped;
      m_other = passed;
      m_line[m_place] = passed * loss;
      m_place = m_place + 1 < m_line.size() ? m_place + 1 : 0;
      Put(out, i, y);
    }
  }

  void StartModal(double hertz) {
    for (size_t i = 0; i + 2 < m_oscillator.values.size(); i += 3) {
      const double turns = hertz * m_oscillator.values[i] / kRate;
      if (turns > 0.45) continue;
      const double softer = i > 0 ? std::pow(std::max(0.0, m_velocity), 0.8) : 1;
      m_modes.push_back({std::cos(2 * kPi * turns), std::sin(2 * kPi * turns),
                         std::exp(-1 / (m_oscillator.values[i + 2] * kRate)),
                         m_oscillator.values[i + 1] * softer});
    }
  }

  // Drawbars: strengths of sub-octave, ground tone, fifth, octave and so on.
  void StartOrgan(double hertz) {
    static constexpr double kHarmonics[] = {0.5, 1, 1.5, 2, 3, 4, 5, 6, 8};
    m_line.assign(kOrganSteps + 1, 0);
    double sum = 1e-6;
    for (const double bar : m_oscillator.values) sum += bar;
    for (size_t k = 0; k < std::min(m_oscillator.values.size(), std::size(kHarmonics)); ++k) {
      if (hertz * kHarmonics[k] > kRate * 0.4) break;
      const double strength = m_oscillator.values[k] / sum * 1.6;
      for (int i = 0; i <= kOrganSteps; ++i)
        m_line[static_cast<size_t>(i)] += strength * Sine(kHarmonics[k] * 2 * i / kOrganSteps);
    }
  }

  const Oscillator& m_oscillator;
  double m_velocity, m_phase, m_other = 0, m_allPass = 0, m_last = 0;
  size_t m_place = 0;
  RandomNumbers& m_random;
  std::vector<double> m_line;
  std::vector<Mode> m_modes;
};

// Three resonances of a mouth, gliding between vowels.
class Mouth {
public:
  explicit Mouth(const Instrument& instrument) : m_instrument(instrument) {}
  bool Used() const { return !m_instrument.vowels.empty(); }
  void Set(double t) {
    const auto& points = m_instrument.vowels;
    size_t next = 0;
    while (next < points.size() && points[next].seconds <= t) ++next;
    const auto from = static_cast<size_t>(points[next > 0 ? next - 1 : 0].value);
    const auto to = static_cast<size_t>(points[std::min(next, points.size() - 1)].value);
    double share = 0;
    if (next > 0 && next < points.size())
      share = (t - points[next - 1].seconds) / (points[next].seconds - points[next - 1].seconds);
    for (size_t i = 0; i < 3; ++i) {
      const double hertz =
          kHertz[from][i] * std::pow(kHertz[to][i] / kHertz[from][i], share) * m_instrument.formant;
      m_filters[i].Set(hertz, 0.9);
    }
  }
  double Next(double x) {
    return m_filters[0].Next(x).band + 0.6 * m_filters[1].Next(x).band + 0.3 * m_filters[2].Next(x).band;
  }

private:
  static constexpr double kHertz[5][3] = {
      {800, 1150, 2900}, {400, 1700, 2600}, {300, 2150, 3000}, {450, 800, 2830}, {325, 700, 2530}};
  const Instrument& m_instrument;
  std::array<Filter, 3> m_filters;
};

// Attack straight, decay and release exponential. A voice of a loop only fades in at its start and out over
// its end, so that the two ends add up: equal power for noise, equal gain for tones.
class Envelope {
public:
  Envelope(const Instrument& instrument, const VoiceNote& note) : m_instrument(instrument) {
    m_held = static_cast<int64_t>(note.seconds * kRate);
    m_total = m_held + static_cast<int64_t>(instrument.release * kRate) + 1;
    if (note.loopSeconds > 0) {
      m_fade = static_cast<int64_t>(instrument.steady * kRate);
      m_held = static_cast<int64_t>(std::llround(note.loopSeconds * kRate));
      m_total = m_held + m_fade;
      m_noise = instrument.first.wave == Wave::noise;
    } else if (instrument.sustain <= 0.0001) {
      m_total = std::min(
          m_total,
          std::max<int64_t>(64, static_cast<int64_t>((instrument.attack + instrument.decay * 2.4) * kRate)));
      m_held = std::min(m_held, m_total);
    }
    m_rise = 1 / std::max(1.0, instrument.attack * kRate);
    m_decay = std::exp(-3 / std::max(1.0, instrument.decay * kRate));
    m_release = std::exp(-6 / std::max(1.0, instrument.release * kRate));
  }
  int64_t Total() const { return m_total; }
  double Next(int64_t i) {
    if (m_fade > 0) {
      double share = 1;
      if (i < m_fade) share = static_cast<double>(i) / static_cast<double>(m_fade);
      if (i >= m_held) share = static_cast<double>(m_total - i) / static_cast<double>(m_fade);
      return m_noise ? std::sqrt(share) : share;
    }
    if (i >= m_held) {
      m_value *= m_release;
    } else if (!m_top) {
      m_value += m_rise;
      if (m_value >= 1) m_value = 1, m_top = true;
    } else {
      m_value = m_instrument.sustain + (m_value - m_instrument.sustain) * m_decay;
    }
    return m_total - i < kLastFade ? m_value * static_cast<double>(m_total - i) / kLastFade : m_value;
  }

private:
  const Instrument& m_instrument;
  int64_t m_held = 0, m_total = 0, m_fade = 0;
  double m_rise = 0, m_decay = 0, m_release = 0, m_value = 0;
  bool m_top = false, m_noise = false;
};

double Hertz(const Instrument& instrument, const VoiceNote& note, double t, double vibrato) {
  double hertz = note.hertz;
  if (!instrument.pitch.Empty())
    hertz = instrument.pitch.At(t) * note.pitchFactor;
  else if (note.fromHertz > 0 && instrument.glide > 0)
    hertz *= std::pow(note.fromHertz / note.hertz, std::exp(-t * 3 / instrument.glide));
  if (note.loopSeconds > 0 && (instrument.pitch.Empty() || instrument.pitch.Fixed()))
    hertz = std::max(1.0, std::round(hertz * note.loopSeconds)) / note.loopSeconds;
  if (vibrato > 0) {
    const double delayed =
        note.loopSeconds > 0 ? 1 : std::clamp((t - instrument.vibratoDelay) / 0.25, 0.0, 1.0);
    hertz *= std::exp2(delayed * instrument.vibratoCents * Sine(vibrato * t) / 1200);
  }
  return hertz;
}

double Cutoff(const Instrument& instrument, const VoiceNote& note, double t, double songTime) {
  double octaves = note.cutoffOctaves + instrument.cutoffOctaves * std::exp(-3 * t / instrument.cutoffDecay) *
                                            (0.5 + 0.5 * note.velocity);
  if (instrument.wobbleBeats > 0)
    octaves += instrument.wobbleOctaves * Sine(songTime / (note.beatSeconds * instrument.wobbleBeats));
  if (instrument.tracking > 0) octaves += instrument.tracking * std::log2(note.hertz / 261.6);
  return instrument.cutoff.At(t) * std::exp2(octaves);
}

double Pick(const Filter::Bands& bands, Instrument::Pass pass) {
  return pass == Instrument::Pass::low ? bands.low : pass == Instrument::Pass::band ? bands.band : bands.high;
}

// A rate that makes whole turns in a loop.
double WholeTurns(double hertz, double loopSeconds) {
  return loopSeconds > 0 && hertz > 0 ? std::max(1.0, std::round(hertz * loopSeconds)) / loopSeconds : hertz;
}

} // namespace

void PlayVoice(const Instrument& instrument, const VoiceNote& note, const Sink& sink) {
  RandomNumbers random(note.seed);
  Envelope envelope(instrument, note);
  const int unison = instrument.unison;
  const bool two = instrument.second.wave != Wave::none;
  std::vector<Generator> generators;
  const double upper = Semitones(instrument.transpose + instrument.detune / 100);
  const double startHertz = Hertz(instrument, note, 0, 0);
  for (int layer = 0; layer < (two ? 2 : 1); ++layer)
    for (int u = 0; u < unison; ++u) {
      const double phase = unison > 1 ? random.Unit() * 0.999 : 0;
      generators.emplace_back(layer ? instrument.second : instrument.first, startHertz * (layer ? upper : 1),
                              note.velocity, phase, random);
    }
  const double strength = note.velocity / std::sqrt(static_cast<double>(unison));
  const double angle = (std::clamp(instrument.pan, -1.0, 1.0) + 1) * kPi / 4;
  const double gainLeft = strength * std::cos(angle) * 1.1892,
               gainRight = strength * std::sin(angle) * 1.1892;
  const double vibrato = WholeTurns(instrument.vibratoHertz, note.loopSeconds);
  const double tremolo = WholeTurns(instrument.tremoloHertz, note.loopSeconds);
  Filter leftFilter, rightFilter;
  Mouth leftMouth(instrument), rightMouth(instrument);
  for (int64_t i = 0; i < envelope.Total(); i += kBlock) {
    const int count = static_cast<int>(std::min<int64_t>(kBlock, envelope.Total() - i));
    double t = static_cast<double>(i) / kRate;
    if (note.loopSeconds > 0 && t >= note.loopSeconds) t -= note.loopSeconds;
    const double hertz = Hertz(instrument, note, t, vibrato);
    Block left{}, right{};
    for (size_t g = 0; g < generators.size(); ++g) {
      const int u = static_cast<int>(g) % unison;
      const bool second = static_cast<int>(g) >= unison;
      const double off = unison > 1 ? u / ((unison - 1) * 0.5) - 1 : 0;
      Block own{};
      generators[g].Run(own, count,
                        hertz * (second ? upper : 1) * std::exp2(off * instrument.unisonCents / 1200), t);
      const double share = !two ? 1 : second ? instrument.mix : 1 - instrument.mix;
      for (size_t k = 0; k < static_cast<size_t>(count); ++k) {
        left[k] += own[k] * share * (1 - 0.6 * off);
        if (unison > 1) right[k] += own[k] * share * (1 + 0.6 * off);
      }
    }
    if (instrument.breath > 0)
      for (size_t k = 0; k < static_cast<size_t>(count); ++k) {
        const double air = random.Signed() * instrument.breath;
        left[k] += air;
        right[k] += air;
      }
    if (leftMouth.Used()) {
      leftMouth.Set(t), rightMouth.Set(t);
      for (size_t k = 0; k < static_cast<size_t>(count); ++k) {
        left[k] = leftMouth.Next(left[k]);
        if (unison > 1) right[k] = rightMouth.Next(right[k]);
      }
    }
    if (!instrument.cutoff.Empty()) {
      leftFilter.Set(Cutoff(instrument, note, t, static_cast<double>(note.start + i) / kRate),
                     instrument.resonance);
      rightFilter.SetLike(leftFilter);
      for (size_t k = 0; k < static_cast<size_t>(count); ++k) {
        left[k] = Pick(leftFilter.Next(left[k]), instrument.pass);
        if (unison > 1) right[k] = Pick(rightFilter.Next(right[k]), instrument.pass);
      }
    }
    const double shake =
        instrument.tremolo > 0 ? 1 - instrument.tremolo * (0.5 + 0.5 * Sine(tremolo * t)) : 1;
    for (size_t k = 0; k < static_cast<size_t>(count); ++k) {
      const double e = envelope.Next(i + static_cast<int64_t>(k)) * shake;
      sink.Add(note.start + i + static_cast<int64_t>(k), left[k] * e * gainLeft,
               (unison > 1 ? right[k] : left[k]) * e * gainRight);
    }
  }
}

} // namespace vesk::sound
