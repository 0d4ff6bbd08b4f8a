#include "pack/soundstudio/Instrument.h"

#include "pack/soundstudio/Drum.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <map>
#include <stdexcept>

namespace vesk::sound {
namespace {

constexpr std::string_view kVowels = "aeiou";

Wave WaveNamed(const std::string& name) {
  static const std::map<std::string, Wave> kWaves = {
      {"pulse", Wave::pulse}, {"saw", Wave::saw},     {"tri", Wave::triangle},
      {"sin", Wave::sine},    {"noise", Wave::noise}, {"fm", Wave::fm},
      {"org", Wave::organ},   {"pluck", Wave::pluck}, {"modal", Wave::modal}};
  const auto found = kWaves.find(name);
  if (found == kWaves.end()) throw std::runtime_error("\"" + name + "\" is no wave");
  return found->second;
}

Oscillator ReadOscillator(const std::vector<std::string>& parts) {
  Oscillator oscillator{WaveNamed(parts.at(0)), {}};
  for (size_t i = 1; i < parts.size(); ++i) oscillator.values.push_back(Number(parts[i]));
  if (oscillator.wave == Wave::modal && (oscillator.values.empty() || oscillator.values.size() % 3 != 0))
    throw std::runtime_error("modal takes ratio:level:seconds, once or more");
  return oscillator;
}

std::vector<Course::Point> ReadPoints(const std::string& text, double (*value)(const std::string&)) {
  std::vector<Course::Point> points;
  for (const std::string& part : Split(text, '>')) {
    const auto sides = Split(part, '@');
    const double seconds = sides.size() > 1 ? Number(sides[1]) : 0;
    if (!points.empty() && seconds <= points.back().seconds)
      throw std::runtime_error("the times in \"" + text + "\" don't rise");
    points.push_back({seconds, value(sides.at(0))});
  }
  return points;
}

Course ReadCourse(const std::string& text) {
  return Course(ReadPoints(text, [](const std::string& part) {
    const double value = Number(part);
    if (!(value >= 1)) throw std::runtime_error("\"" + part + "\" is below 1 hertz");
    return value;
  }));
}

std::vector<Course::Point> ReadVowels(const std::string& text) {
  return ReadPoints(text, [](const std::string& part) {
    const size_t index = part.size() == 1 ? kVowels.find(part[0]) : std::string_view::npos;
    if (index == std::string_view::npos) throw std::runtime_error("\"" + part + "\" is no vowel");
    return static_cast<double>(index);
  });
}

using Values = std::vector<std::string>;
double At(const Values& values, size_t index, double otherwise) {
  return index < values.size() ? Number(values[index]) : otherwise;
}

using Field = double Instrument::*;

// Settings of one to four plain numbers.
const std::map<std::string, std::vector<Field>>& Numbers() {
  using I = Instrument;
  static const std::map<std::string, std::vector<Field>> kNumbers = {
      {"mix", {&I::mix}},
      {"transpose", {&I::transpose}},
      {"detune", {&I::detune}},
      {"adsr", {&I::attack, &I::decay, &I::sustain, &I::release}},
      {"res", {&I::resonance}},
      {"cutenv", {&I::cutoffOctaves, &I::cutoffDecay}},
      {"track", {&I::tracking}},
      {"formant", {&I::formant}},
      {"vib", {&I::vibratoHertz, &I::vibratoCents, &I::vibratoDelay}},
      {"wobble", {&I::wobbleBeats, &I::wobbleOctaves}},
      {"trem", {&I::tremoloHertz, &I::tremolo}},
      {"glide", {&I::glide}},
      {"gate", {&I::gate}},
      {"drive", {&I::drive}},
      {"breath", {&I::breath}},
      {"vol", {&I::volume}},
      {"lev", {&I::level}},
      {"pan", {&I::pan}},
      {"rev", {&I::reverb}},
      {"echo", {&I::echo}},
      {"chorus", {&I::chorus}},
      {"duck", {&I::duck}},
      {"tune", {&I::tune}},
      {"dec", {&I::dying}},
      {"tone", {&I::tone}},
      {"rnd", {&I::scatterPitch}},
      {"at", {&I::at}},
      {"len", {&I::length}},
      {"steady", {&I::steady}}};
  return kNumbers;
}

void ApplyOther(Instrument& instrument, const std::string& key, const std::string& value) {
  const Values parts = Split(value, ':');
  if (key == "osc") {
    instrument.first = ReadOscillator(parts);
  } else if (key == "osc2") {
    instrument.second = ReadOscillator(parts);
  } else if (key == "unison") {
    instrument.unison = std::clamp(static_cast<int>(At(parts, 0, 1)), 1, 9);
    instrument.unisonCents = At(parts, 1, 8);
  } else if (key == "cut") {
    instrument.cutoff = ReadCourse(value);
  } else if (key == "hz") {
    instrument.pitch = ReadCourse(value);
  } else if (key == "vowel") {
    instrument.vowels = ReadVowels(value);
  } else if (key == "filter") {
    if (value != "lp" && value != "bp" && value != "hp") throw std::runtime_error("a filter is lp, bp or hp");
    instrument.pass = value == "lp"   ? Instrument::Pass::low
                      : value == "bp" ? Instrument::Pass::band
                                      : Instrument::Pass::high;
  } else if (key == "range") {
    instrument.lowest = NoteNumber(parts.at(0));
    instrument.highest = NoteNumber(parts.size() > 1 ? parts[1] : "");
    if (instrument.lowest < 0 || instrument.highest < instrument.lowest + 11)
      throw std::runtime_error("a range is two notes, an octave apart or more");
  } else if (key == "voices") {
    instrument.voices = std::clamp(static_cast<int>(Number(value)), 1, 6);
  } else if (key == "octave") {
    instrument.octave = static_cast<int>(Number(value));
  } else if (key == "ninths") {
    instrument.ninths = Number(value) != 0;
  } else if (key == "role") {
    instrument.role = value;
  } else if (key == "type") {
    if (!IsDrum(value)) throw std::runtime_error("\"" + value + "\" is no drum");
    instrument.drum = value;
  } else if (key == "times") { // count:seconds apart:decibels
    instrument.times = std::clamp(static_cast<int>(At(parts, 0, 1)), 1, 400);
    instrument.interval = At(parts, 1, 0.1);
    instrument.fall = At(parts, 2, 0);
  } else if (key == "scatter") { // count:seconds in all:decibels
    instrument.times = std::clamp(static_cast<int>(At(parts, 0, 1)), 1, 400);
    instrument.spread = At(parts, 1, 0.2);
    instrument.fall = At(parts, 2, 0);
  } else {
    throw std::runtime_error("\"" + key + "\" is no setting");
  }
}

// Lengths that make sense; everything else would only take memory and time.
void CheckSeconds(Instrument& instrument) {
  for (const double seconds :
       {instrument.attack, instrument.decay, instrument.release, instrument.dying, instrument.at,
        instrument.length, instrument.steady, instrument.glide, instrument.vibratoDelay})
    if (seconds < 0 || seconds > 60) throw std::runtime_error("a time lies between 0 and 60 seconds");
  instrument.cutoffDecay = std::max(instrument.cutoffDecay, 1e-3);
}

} // namespace

double Course::At(double seconds) const {
  if (m_points.empty()) return 0;
  if (seconds <= m_points[0].seconds) return m_points[0].value;
  for (size_t i = 1; i < m_points.size(); ++i) {
    const Point &from = m_points[i - 1], &to = m_points[i];
    if (seconds < to.seconds)
      return from.value *
             std::pow(to.value / from.value, (seconds - from.seconds) / (to.seconds - from.seconds));
  }
  return m_points.back().value;
}

void Apply(Instrument& instrument, std::string_view setting) {
  const size_t equals = setting.find('=');
  if (equals == std::string_view::npos || equals == 0)
    throw std::runtime_error("\"" + std::string(setting) + "\" is no setting like vol=-3");
  const std::string key(setting.substr(0, equals)), value(setting.substr(equals + 1));
  const auto numbers = Numbers().find(key);
  if (numbers == Numbers().end()) return ApplyOther(instrument, key, value);
  const Values parts = Split(value, ':');
  if (parts.size() > numbers->second.size())
    throw std::runtime_error("too many numbers in \"" + std::string(setting) + "\"");
  for (size_t i = 0; i < parts.size(); ++i) instrument.*numbers->second[i] = Number(parts[i]);
  if (key == "glide") instrument.glide /= 1000; // written in milliseconds
  CheckSeconds(instrument);
}

int NoteNumber(std::string_view text) {
  static constexpr int kSteps[7] = {9, 11, 0, 2, 4, 5, 7};
  if (text.empty() || text[0] < 'a' || text[0] > 'g') return -1;
  int note = kSteps[text[0] - 'a'];
  size_t i = 1;
  for (; i < text.size() && (text[i] == '#' || text[i] == 'b'); ++i) note += text[i] == '#' ? 1 : -1;
  if (i + 1 != text.size() || text[i] < '0' || text[i] > '9') return -1;
  return 12 * (text[i] - '0' + 1) + note;
}

double Number(std::string_view text) {
  const std::string copy(text);
  char* end = nullptr;
  const double value = std::strtod(copy.c_str(), &end);
  if (copy.empty() || *end != 0 || !std::isfinite(value))
    throw std::runtime_error("\"" + copy + "\" is no number");
  if (std::fabs(value) > 100000) throw std::runtime_error("\"" + copy + "\" is too large");
  return value;
}

std::vector<std::string> Split(std::string_view text, char separator) {
  std::vector<std::string> parts;
  for (size_t from = 0;;) {
    const size_t to = text.find(separator, from);
    parts.emplace_back(text.substr(from, to == std::string_view::npos ? to : to - from));
    if (to == std::string_view::npos) return parts;
    from = to + 1;
  }
}

} // namespace vesk::sound
