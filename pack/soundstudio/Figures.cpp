#include "pack/soundstudio/Figures.h"

#include "pack/soundstudio/Loudness.h"

#include <algorithm>
#include <complex>

namespace vesk::sound {
namespace {

using Spectrum = std::vector<std::complex<double>>;

// In place; the length is a power of two.
void Transform(Spectrum& x) {
  const size_t n = x.size();
  for (size_t i = 1, j = 0; i < n; ++i) {
    size_t bit = n >> 1;
    for (; j & bit; bit >>= 1) j ^= bit;
    j ^= bit;
    if (i < j) std::swap(x[i], x[j]);
  }
  for (size_t length = 2; length <= n; length <<= 1) {
    const std::complex<double> turn = std::polar(1.0, -2 * kPi / static_cast<double>(length));
    for (size_t i = 0; i < n; i += length) {
      std::complex<double> w = 1;
      for (size_t k = i; k < i + length / 2; ++k, w *= turn) {
        const std::complex<double> odd = x[k + length / 2] * w;
        x[k + length / 2] = x[k] - odd;
        x[k] += odd;
      }
    }
  }
}

// Power of the first half of the bins of a window around a sample.
std::vector<double> PowerAt(const Track& track, int64_t middle, size_t window) {
  Spectrum x(window);
  for (size_t k = 0; k < window; ++k) {
    const int64_t i = middle + static_cast<int64_t>(k) - static_cast<int64_t>(window / 2);
    if (i < 0 || i >= static_cast<int64_t>(track.Length())) continue;
    const auto at = static_cast<size_t>(i);
    x[k] = (track.left[at] + track.right[at]) * 0.5 *
           (0.5 - 0.5 * std::cos(2 * kPi * static_cast<double>(k) / static_cast<double>(window)));
  }
  Transform(x);
  std::vector<double> power(window / 2);
  for (size_t k = 0; k < power.size(); ++k) power[k] = std::norm(x[k]);
  return power;
}

std::array<double, 9> Bands(const Track& track) {
  constexpr size_t kWindow = 4096;
  std::array<double, 9> bands{};
  double total = 1e-20;
  const auto length = static_cast<int64_t>(track.Length());
  for (int64_t at = std::min<int64_t>(length / 2, kWindow / 2); at < length; at += kWindow * 2) {
    const std::vector<double> power = PowerAt(track, at, kWindow);
    for (size_t k = 1; k < power.size(); ++k) {
      const double octave = std::log2(static_cast<double>(k) * kRate / kWindow / 44.2);
      bands[static_cast<size_t>(std::clamp(octave, 0.0, 8.0))] += power[k];
      total += power[k];
    }
  }
  for (double& band : bands) band = 10 * std::log10(band / total + 1e-9);
  return bands;
}

double StepBetween(const Track& track, size_t a, size_t b) {
  return std::max(std::fabs(static_cast<double>(track.left[a]) - track.left[b]),
                  std::fabs(static_cast<double>(track.right[a]) - track.right[b]));
}

double SeamStep(const Track& track) {
  const size_t length = track.Length();
  double near = 1e-4;
  for (size_t k = 1; k < std::min<size_t>(200, length / 2); ++k)
    near = std::max({near, StepBetween(track, k, k - 1), StepBetween(track, length - k, length - k - 1)});
  return StepBetween(track, 0, length - 1) / near;
}

constexpr uint32_t kGround = 0xff181414;

void Box(Picture& picture, int left, int top, int right, int bottom, uint32_t colour) {
  for (int y = std::max(0, top); y < std::min(picture.height, bottom); ++y)
    for (int x = std::max(0, left); x < std::min(picture.width, right); ++x)
      picture.rgba[static_cast<size_t>(y) * static_cast<size_t>(picture.width) + static_cast<size_t>(x)] =
          colour;
}

Picture Blank(int width, int height) {
  return {width, height,
          std::vector<uint32_t>(static_cast<size_t>(width) * static_cast<size_t>(height), kGround)};
}

uint32_t Heat(double share) {
  const auto part = [&](double from, double to) {
    return static_cast<uint32_t>(255 * std::clamp((share - from) / (to - from), 0.0, 1.0));
  };
  return 0xff000000u | part(0.55, 1.0) << 16 | part(0.3, 0.8) << 8 | part(0.0, 0.5);
}

} // namespace

Figures Measure(const Track& track) {
  Figures figures;
  const size_t length = track.Length();
  figures.seconds = static_cast<double>(length) / kRate;
  figures.peak = Decibels(Peak(track));
  figures.loudness = IntegratedLoudness(track);
  figures.loudest = LoudestWindow(track, 0.1);
  figures.bands = Bands(track);
  if (length < 2) return figures;
  const auto value = [&](size_t i) { return std::max(std::fabs(track.left[i]), std::fabs(track.right[i])); };
  figures.firstSample = value(0), figures.lastSample = value(length - 1);
  figures.seamStep = SeamStep(track);
  size_t quiet = 0, longest = 0;
  for (size_t i = 0; i < length; ++i) {
    quiet = value(i) < 0.001f ? quiet + 1 : 0;
    longest = std::max(longest, quiet);
    figures.clipped += value(i) >= 0.999f;
  }
  figures.silence = static_cast<double>(longest) / kRate;
  return figures;
}

Picture Spectrogram(const Track& track, int width, int height) {
  Picture picture = Blank(width, height);
  const int outline = height / 4, tall = height - outline;
  const size_t window = track.Length() > static_cast<size_t>(kRate * 4) ? 4096 : 1024;
  for (int x = 0; x < width; ++x) {
    const double length = static_cast<double>(track.Length());
    const auto middle = static_cast<int64_t>((x + 0.5) / width * length);
    const std::vector<double> power = PowerAt(track, middle, window);
    for (int y = 0; y < tall; ++y) {
      const auto bin = [&](int row) {
        return 40 * std::pow(500.0, 1 - static_cast<double>(row) / tall) * static_cast<double>(window) /
               kRate;
      };
      const size_t to = std::clamp(static_cast<size_t>(bin(y)), size_t{1}, power.size() - 1);
      const size_t from = std::clamp(static_cast<size_t>(bin(y + 1)), size_t{1}, to);
      const double most = *std::max_element(power.begin() + static_cast<std::ptrdiff_t>(from),
                                            power.begin() + static_cast<std::ptrdiff_t>(to) + 1);
      const double level = 10 * std::log10(most + 1e-12) - 20 * std::log10(static_cast<double>(window) / 4);
      Box(picture, x, y, x + 1, y + 1, Heat((level + 80) / 70));
    }
    const auto from = static_cast<size_t>(x / static_cast<double>(width) * length);
    const auto to = static_cast<size_t>((x + 1) / static_cast<double>(width) * length);
    double peak = 0;
    for (size_t i = from; i < to; ++i) peak = std::max(peak, std::fabs(static_cast<double>(track.left[i])));
    const int bar = static_cast<int>(peak * outline);
    Box(picture, x, height - bar, x + 1, height, 0xff60c060);
  }
  Box(picture, width - 1, 0, width, height, 0xffffffff);
  return picture;
}

Picture PianoRoll(const Song& song, const Score& score, int width) {
  constexpr uint32_t kColours[] = {0xff40d0ff, 0xffffd060, 0xff70e070, 0xffff80b0,
                                   0xff6070ff, 0xffa0a0a0, 0xffd090ff, 0xff408080};
  constexpr int kLowest = 28, kHighest = 96, kRow = 5, kDrumRow = 8;
  Picture picture = Blank(width, (kHighest - kLowest) * kRow + kDrumRow * 12);
  const auto x = [&](double beat) { return static_cast<int>(beat / score.beats * width); };
  for (double beat = 0; beat < score.beats; beat += song.meter)
    Box(picture, x(beat), 0, x(beat) + 1, picture.height, 0xff404040);
  for (const auto& [beat, name] : score.marks)
    Box(picture, x(beat), 0, x(beat) + 2, picture.height, 0xffffffff);
  for (const ScoreNote& note : score.notes) {
    const int y = (kHighest - note.note) * kRow;
    Box(picture, x(note.on), y, std::max(x(note.on) + 2, x(note.off) - 1), y + kRow - 1,
        kColours[note.instrument % 8]);
  }
  std::map<int, int> rows;
  for (const ScoreHit& hit : score.hits) {
    const int row = rows.try_emplace(hit.instrument, static_cast<int>(rows.size())).first->second;
    const int y = (kHighest - kLowest) * kRow + row * kDrumRow;
    Box(picture, x(hit.on), y, x(hit.on) + 2, y + 2 + static_cast<int>(hit.velocity * 5), 0xffe0e0e0);
  }
  return picture;
}

Picture Stack(const std::vector<Picture>& pictures, int columns) {
  int wide = 1, tall = 1;
  for (const Picture& picture : pictures)
    wide = std::max(wide, picture.width), tall = std::max(tall, picture.height);
  const int count = static_cast<int>(pictures.size());
  Picture sheet = Blank((wide + 4) * columns, (tall + 4) * std::max(1, (count + columns - 1) / columns));
  for (int i = 0; i < count; ++i) {
    const Picture& picture = pictures[static_cast<size_t>(i)];
    const int left = i % columns * (wide + 4), top = i / columns * (tall + 4);
    for (int y = 0; y < picture.height; ++y)
      std::copy_n(picture.rgba.begin() + static_cast<std::ptrdiff_t>(y) * picture.width, picture.width,
                  sheet.rgba.begin() + static_cast<std::ptrdiff_t>(top + y) * sheet.width + left);
  }
  return sheet;
}

} // namespace vesk::sound
