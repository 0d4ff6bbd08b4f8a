#include "pack/soundstudio/Room.h"

#include <algorithm>
#include <array>

namespace vesk::sound {
namespace {

// A ring of samples of fixed length.
class Ring {
public:
  explicit Ring(size_t length = 1) : m_samples(std::max<size_t>(length, 1)) {}
  double Oldest() const { return m_samples[m_place]; }
  void Push(double x) {
    m_samples[m_place] = x;
    if (++m_place == m_samples.size()) m_place = 0;
  }

private:
  std::vector<double> m_samples;
  size_t m_place = 0;
};

// Places of a track in order; a loop is led in by its own end.
template <typename Visit> void Walk(size_t length, size_t lead, bool loop, Visit visit) {
  lead = loop ? std::min(lead, length) : 0;
  for (size_t q = 0; q < length + lead; ++q) visit((q + length - lead) % length, q >= lead);
}

} // namespace

void AddReverb(const Track& send, Track& out, double seconds, double damping, bool loop) {
  constexpr size_t kLines[8] = {1433, 1601, 1867, 2053, 2251, 2399, 2617, 2797};
  constexpr size_t kPasses[2][2] = {{225, 441}, {341, 556}};
  constexpr double kPass = 0.6;
  const size_t delay = static_cast<size_t>(0.012 * kRate), length = send.Length();
  if (length == 0) return;
  std::array<Ring, 8> lines;
  std::array<double, 8> low{}, gain{};
  for (size_t k = 0; k < 8; ++k) {
    lines[k] = Ring(kLines[k]);
    gain[k] = std::pow(10.0, -3.0 * static_cast<double>(kLines[k]) / (seconds * kRate));
  }
  Ring passes[2][2] = {{Ring(kPasses[0][0]), Ring(kPasses[0][1])},
                       {Ring(kPasses[1][0]), Ring(kPasses[1][1])}};
  const double damp = damping * 0.7;
  Walk(length, static_cast<size_t>(kRate * seconds * 1.2), loop, [&](size_t i, bool heard) {
    double input[2] = {0, 0};
    if (i >= delay || loop) {
      const size_t source = (i + length - delay % length) % length;
      input[0] = send.left[source], input[1] = send.right[source];
    }
    for (size_t c = 0; c < 2; ++c)
      for (Ring& pass : passes[c]) {
        const double y = pass.Oldest() - kPass * input[c];
        pass.Push(input[c] + kPass * y);
        input[c] = y;
      }
    double v[8], sum = 0;
    for (size_t k = 0; k < 8; ++k) {
      low[k] = lines[k].Oldest() * (1 - damp) + low[k] * damp;
      v[k] = low[k] * gain[k];
      sum += v[k];
    }
    if (heard) {
      out.left[i] += static_cast<float>((v[0] + v[2] - v[4] + v[6]) * 0.5);
      out.right[i] += static_cast<float>((v[1] + v[3] + v[5] - v[7]) * 0.5);
    }
    for (size_t k = 0; k < 8; ++k) lines[k].Push(v[k] - sum * 0.25 + input[k & 1] * 0.5);
  });
}

void AddEcho(const Track& send, Track& out, double seconds, double feedback, double damping, bool loop) {
  const auto delay = static_cast<size_t>(seconds * kRate);
  Ring left(delay), right(delay);
  const double damp = damping * 0.85;
  double lowLeft = 0, lowRight = 0, restLeft = 0, restRight = 0;
  Walk(send.Length(), delay * 16, loop, [&](size_t i, bool heard) {
    lowLeft = left.Oldest() * (1 - damp) + lowLeft * damp;
    lowRight = right.Oldest() * (1 - damp) + lowRight * damp;
    restLeft += 0.02 * (lowLeft - restLeft);
    restRight += 0.02 * (lowRight - restRight);
    const double a = lowLeft - restLeft, b = lowRight - restRight;
    if (heard) {
      out.left[i] += static_cast<float>(a);
      out.right[i] += static_cast<float>(b);
    }
    const double x = (send.left[i] + send.right[i]) * 0.5;
    left.Push(x + b * feedback);
    right.Push(a * feedback + x * 0.15);
  });
}

void Drive(Track& track, double strength) {
  if (!(strength > 0)) return;
  const double into = 1 + strength * 4, back = 1 / std::sqrt(into);
  for (auto* side : {&track.left, &track.right})
    for (float& x : *side) x = static_cast<float>(std::tanh(x * into) * back);
}

void Chorus(Track& track, double depth) {
  const size_t length = track.Length();
  if (!(depth > 0) || length == 0) return;
  const Track dry = track;
  const double turns =
      std::max(1.0, std::round(0.55 * static_cast<double>(length) / kRate)) / static_cast<double>(length);
  const double back = 1 / std::sqrt(1 + depth * depth);
  const auto read = [&](const std::vector<float>& side, size_t i, double delay) {
    const auto whole = static_cast<size_t>(delay);
    const double part = delay - static_cast<double>(whole);
    return side[(i + length - whole % length) % length] * (1 - part) +
           side[(i + length - (whole + 1) % length) % length] * part;
  };
  for (size_t i = 0; i < length; ++i) {
    const double phase = static_cast<double>(i) * turns;
    const double a = read(dry.left, i, kRate * (0.011 + 0.003 * Sine(phase)));
    const double b = read(dry.right, i, kRate * (0.013 + 0.003 * Sine(phase + 0.25)));
    track.left[i] = static_cast<float>((dry.left[i] + depth * a) * back);
    track.right[i] = static_cast<float>((dry.right[i] + depth * b) * back);
  }
}

void CutRumble(Track& track, bool loop) {
  const double keep = 1 - 2 * kPi * 24 / kRate;
  for (auto* side : {&track.left, &track.right}) {
    const std::vector<float> dry = *side;
    double before = 0, y = 0;
    Walk(dry.size(), static_cast<size_t>(kRate / 2), loop, [&](size_t i, bool heard) {
      y = keep * y + dry[i] - before;
      before = dry[i];
      if (heard) (*side)[i] = static_cast<float>(y);
    });
  }
}

void Limit(Track& track, double ceiling, bool loop) {
  const auto length = static_cast<int64_t>(track.Length());
  const int64_t window = std::min<int64_t>(static_cast<int64_t>(kRate * 0.004), length / 4);
  std::vector<double> least(static_cast<size_t>(length), 1.0);
  const auto place = [&](int64_t i) { return loop ? ((i % length) + length) % length : i; };
  bool any = false;
  for (int64_t i = 0; i < length; ++i) {
    const auto at = static_cast<size_t>(i);
    const double peak = std::max(std::fabs(track.left[at]), std::fabs(track.right[at]));
    if (peak <= ceiling) continue;
    any = true;
    for (int64_t k = i - window; k <= i + window; ++k) {
      const int64_t j = place(k);
      if (j < 0 || j >= length) continue;
      least[static_cast<size_t>(j)] = std::min(least[static_cast<size_t>(j)], ceiling / peak);
    }
  }
  if (!any) return;
  const auto value = [&](int64_t i) {
    const int64_t j = place(i);
    return j < 0 || j >= length ? 1.0 : least[static_cast<size_t>(j)];
  };
  double sum = 0;
  for (int64_t k = -window; k <= window; ++k) sum += value(k);
  for (int64_t i = 0; i < length; ++i) {
    const auto at = static_cast<size_t>(i);
    const double gain = std::min(1.0, sum / static_cast<double>(2 * window + 1));
    track.left[at] = static_cast<float>(std::clamp(track.left[at] * gain, -ceiling, ceiling));
    track.right[at] = static_cast<float>(std::clamp(track.right[at] * gain, -ceiling, ceiling));
    sum += value(i + window + 1) - value(i - window);
  }
}

void FadeEnds(Track& track, double inSeconds, double outSeconds) {
  const size_t length = track.Length();
  const size_t in = std::min(length / 4, static_cast<size_t>(inSeconds * kRate));
  const size_t out = std::min(length / 4, static_cast<size_t>(outSeconds * kRate));
  for (auto* side : {&track.left, &track.right}) {
    for (size_t i = 0; i < in; ++i) (*side)[i] *= static_cast<float>(i) / static_cast<float>(in);
    for (size_t i = 0; i < out; ++i)
      (*side)[length - 1 - i] *= static_cast<float>(i) / static_cast<float>(out);
  }
}

} // namespace vesk::sound
