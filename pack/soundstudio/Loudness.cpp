#include "pack/soundstudio/Loudness.h"

#include <algorithm>

namespace vesk::sound {
namespace {

constexpr double kOffset = -0.691; // of the loudness scale

struct Biquad {
  double b0, b1, b2, a1, a2, x1 = 0, x2 = 0, y1 = 0, y2 = 0;
  double Next(double x) {
    double y = b0 * x + b1 * x1 + b2 * x2 - a1 * y1 - a2 * y2;
    if (std::fabs(y) < 1e-12) y = 0; // numbers below the normal range would cost ten times as much
    x2 = x1, x1 = x, y2 = y1, y1 = y;
    return y;
  }
};

// A shelf for the head, then a high-pass.
class Weighting {
public:
  double Next(double x) { return m_pass.Next(m_shelf.Next(x)); }

private:
  static Biquad Shelf() {
    const double q = 0.7071752369554196, k = std::tan(kPi * 1681.974450955533 / kRate);
    const double high = std::pow(10, 3.999843853973347 / 20), middle = std::pow(high, 0.4996667741545416);
    const double a0 = 1 + k / q + k * k;
    return {(high + middle * k / q + k * k) / a0, 2 * (k * k - high) / a0,
            (high - middle * k / q + k * k) / a0, 2 * (k * k - 1) / a0, (1 - k / q + k * k) / a0};
  }
  static Biquad Pass() {
    const double q = 0.5003270373238773, k = std::tan(kPi * 38.13547087602444 / kRate),
                 a0 = 1 + k / q + k * k;
    return {1, -2, 1, 2 * (k * k - 1) / a0, (1 - k / q + k * k) / a0};
  }
  Biquad m_shelf = Shelf(), m_pass = Pass();
};

double Level(double power) { return power > 1e-12 ? kOffset + 10 * std::log10(power) : kLowestLevel; }

// Adds the weighted power of consecutive windows of `hop` samples.
void AddPowers(const std::vector<float>& side, size_t hop, std::vector<double>& powers) {
  Weighting weighting;
  powers.resize((side.size() + hop - 1) / hop);
  for (size_t window = 0, i = 0; window < powers.size(); ++window) {
    const size_t end = std::min(side.size(), i + hop), count = end - i;
    double sum = 0;
    for (; i < end; ++i) {
      const double x = weighting.Next(side[i]);
      sum += x * x;
    }
    powers[window] += sum / static_cast<double>(count);
  }
}

std::vector<double> Powers(const Track& track, size_t hop) {
  std::vector<double> powers;
  AddPowers(track.left, hop, powers);
  AddPowers(track.right, hop, powers);
  return powers;
}

constexpr size_t kHop = 4410; // a tenth of a second

// Windows of 0.4 s; only those within 10 dB of the mean count.
double Gated(const std::vector<double>& powers) {
  std::vector<double> windows;
  for (size_t i = 0; i + 4 <= powers.size(); ++i)
    windows.push_back((powers[i] + powers[i + 1] + powers[i + 2] + powers[i + 3]) / 4);
  const auto mean = [&](double threshold) {
    double sum = 0;
    int count = 0;
    for (const double power : windows)
      if (Level(power) > threshold) sum += power, ++count;
    return count ? sum / count : 0;
  };
  return Level(mean(Level(mean(-70)) - 10));
}

} // namespace

double IntegratedLoudness(const Track& track) { return Gated(Powers(track, kHop)); }

double PartLoudness(const Track& track, double pan) {
  std::vector<double> powers;
  AddPowers(pan > 0 ? track.right : track.left, kHop, powers);
  const double share = std::cos((1 - std::min(1.0, std::fabs(pan))) * kPi / 4);
  return Gated(powers) - 20 * std::log10(share);
}

double LoudestWindow(const Track& track, double seconds) {
  constexpr size_t kStep = 220; // 5 ms
  const std::vector<double> powers = Powers(track, kStep);
  const auto width =
      std::clamp<size_t>(static_cast<size_t>(seconds / 0.005 + 0.5), 1, std::max<size_t>(1, powers.size()));
  double loudest = 0;
  for (size_t i = 0; i + width <= powers.size(); ++i) {
    double sum = 0;
    for (size_t k = 0; k < width; ++k) sum += powers[i + k];
    loudest = std::max(loudest, sum / static_cast<double>(width));
  }
  return Level(loudest / 2);
}

double Peak(const Track& track) {
  double peak = 0;
  for (const auto* side : {&track.left, &track.right})
    for (const float x : *side) peak = std::max(peak, std::fabs(static_cast<double>(x)));
  return peak;
}

} // namespace vesk::sound
