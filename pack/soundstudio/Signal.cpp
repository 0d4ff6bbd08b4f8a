#include "pack/soundstudio/Signal.h"

#include <algorithm>
#include <array>

namespace vesk::sound {
namespace {

constexpr int kSineSteps = 4096;

std::array<double, kSineSteps + 1> MakeSineTable() {
  std::array<double, kSineSteps + 1> table{};
  for (int i = 0; i <= kSineSteps; ++i) table[static_cast<size_t>(i)] = std::sin(2 * kPi * i / kSineSteps);
  return table;
}

const std::array<double, kSineSteps + 1> kSineTable = MakeSineTable();

} // namespace

void Track::Scale(double gain) {
  const auto factor = static_cast<float>(gain);
  for (float& x : left) x *= factor;
  for (float& x : right) x *= factor;
}

void Track::AddScaled(const Track& other, double gain) {
  const auto factor = static_cast<float>(gain);
  for (size_t i = 0; i < left.size(); ++i) left[i] += other.left[i] * factor;
  for (size_t i = 0; i < right.size(); ++i) right[i] += other.right[i] * factor;
}

uint32_t Hash(uint32_t value) {
  value ^= value >> 16;
  value *= 0x7feb352du;
  value ^= value >> 15;
  value *= 0x846ca68bu;
  return value ^ (value >> 16);
}

double Gain(double decibels) { return std::pow(10.0, decibels / 20); }
double Decibels(double gain) { return gain > 1e-6 ? 20 * std::log10(gain) : kLowestLevel; }

double Sine(double turns) {
  double part = turns - static_cast<double>(static_cast<int64_t>(turns)); // much faster than std::floor
  if (part < 0) part += 1;
  const double place = part * kSineSteps;
  const auto step = std::min(static_cast<size_t>(place), static_cast<size_t>(kSineSteps - 1));
  return kSineTable[step] + (kSineTable[step + 1] - kSineTable[step]) * (place - static_cast<double>(step));
}

void Filter::Set(double hertz, double resonance) {
  m_g = std::tan(kPi * std::clamp(hertz, 20.0, kRate * 0.45) / kRate);
  m_k = 2 - 1.96 * std::clamp(resonance, 0.0, 1.0);
  m_a1 = 1 / (1 + m_g * (m_g + m_k));
  m_a2 = m_g * m_a1;
  m_a3 = m_g * m_a2;
}

} // namespace vesk::sound
