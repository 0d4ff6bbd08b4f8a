#include "pack/soundstudio/Score.h"

#include <algorithm>
#include <cmath>
#include <stdexcept>

namespace vesk::sound {
namespace {

constexpr double kSame = 1e-6; // beats closer than that are one

// Plays one part of one section.
class Player {
public:
  Player(const Song& song, const Section& section, double base, Score& score)
      : m_song(song), m_section(section), m_base(base), m_score(score) {}

  void Play(int index, std::vector<int>& voices) {
    const Instrument& instrument = m_song.instruments[static_cast<size_t>(index)];
    const auto part = m_section.parts.find(instrument.name);
    if (part == m_section.parts.end()) return;
    std::vector<size_t> sounding;
    for (int b = 0; b < m_section.bars; ++b) {
      const Bar& bar = part->second.bars[static_cast<size_t>(b) % part->second.bars.size()];
      const bool swings = Swings(bar.grid);
      for (const Step& step : bar.steps) {
        const double written = m_base + (b + step.place) * m_song.meter;
        const double on = Swing(written, swings);
        const double off = Swing(m_base + (b + step.place + step.length) * m_song.meter, swings);
        const double through = (b + step.place) / m_section.bars;
        const double velocity = step.velocity * At(m_section.strength, instrument.name, through, 1);
        if (!instrument.drum.empty()) {
          m_score.hits.push_back({index, on, velocity});
        } else if (step.tie) {
          for (const size_t note : sounding) m_score.notes[note].off = off;
        } else {
          sounding.clear();
          const Chord& chord = m_score.ChordAt(step.ahead ? written + 0.5 : written);
          for (const int note : Notes(instrument, step, chord, voices)) {
            sounding.push_back(m_score.notes.size());
            m_score.notes.push_back({index, note, on, step.shortened ? on + (off - on) * 0.45 : off, velocity,
                                     At(m_section.opening, instrument.name, through, 0), step.slide});
          }
        }
      }
    }
  }

private:
  static double At(const std::map<std::string, Ramp>& ramps, const std::string& name, double through,
                   double otherwise) {
    const auto found = ramps.find(name);
    return found == ramps.end() ? otherwise
                                : found->second.from + (found->second.to - found->second.from) * through;
  }

  // Grids of two or four steps a beat swing, triplets stay straight.
  bool Swings(int grid) const { return (grid / m_song.meter) % 3 != 0; }

  double Swing(double beat, bool swings) const {
    if (!swings) return beat;
    const double whole = std::floor(beat + 1e-9), part = std::max(0.0, beat - whole);
    return whole +
           (part < 0.5 ? part * 2 * m_song.swing : m_song.swing + (part - 0.5) * 2 * (1 - m_song.swing));
  }

  std::vector<int> Notes(const Instrument& instrument, const Step& step, const Chord& chord,
                         std::vector<int>& voices) const {
    std::vector<int> notes;
    for (const Tone& tone : step.tones) switch (tone.kind) {
      case Tone::Kind::note: notes.push_back(tone.value + tone.shift + m_section.up); break;
      case Tone::Kind::degree: {
        const int step7 = tone.value - 1;
        notes.push_back(12 * (instrument.octave + 1 + step7 / 7) + m_song.key +
                        m_song.scale[static_cast<size_t>(step7 % 7)] + tone.shift + m_section.up);
        break;
      }
      case Tone::Kind::chordTone: notes.push_back(ChordTone(instrument, tone, chord)); break;
      case Tone::Kind::voices: {
        voices = VoicesOf(chord, instrument.voices, instrument.lowest, instrument.highest, instrument.ninths,
                          voices);
        if (voices.empty())
          throw std::runtime_error(m_song.file + ": " + instrument.name + " has no room for " + chord.name);
        if (tone.value == 0) {
          for (const int voice : voices) notes.push_back(voice + tone.shift);
        } else {
          const size_t k = static_cast<size_t>(tone.value) - 1;
          notes.push_back(voices[k % voices.size()] + 12 * static_cast<int>(k / voices.size()) + tone.shift);
        }
        break;
      }
      }
    return notes;
  }

  // The bass note in the lowest octave of the instrument, or an interval above it.
  static int ChordTone(const Instrument& instrument, const Tone& tone, const Chord& chord) {
    int note = instrument.lowest;
    while (note % 12 != chord.bass) ++note;
    if (tone.value == 0) return note + tone.shift;
    int interval = 0;
    switch (tone.value) {
    case 3: interval = chord.IntervalOf({3, 4, 5, 2}, 4); break;
    case 5: interval = chord.IntervalOf({7, 6, 8}, 7); break;
    case 6: interval = 9; break;
    case 7: interval = chord.IntervalOf({10, 11, 9}, 9); break;
    case 8: interval = 12; break;
    case 9: interval = 14; break;
    default: break;
    }
    return note + (chord.root - chord.bass + 12) % 12 + interval + tone.shift;
  }

  const Song& m_song;
  const Section& m_section;
  double m_base;
  Score& m_score;
};

const Section& Named(const Song& song, const std::string& name) {
  for (const Section& section : song.sections)
    if (section.name == name) return section;
  throw std::runtime_error(song.file + ": there is no section \"" + name + "\"");
}

Chord Raised(Chord chord, int up) {
  chord.root = (chord.root + up + 120) % 12;
  chord.bass = (chord.bass + up + 120) % 12;
  return chord;
}

std::string Place(const Song& song, const Score& score, double beat) {
  std::string name;
  double start = 0;
  for (const auto& [from, mark] : score.marks)
    if (from <= beat + kSame) start = from, name = mark;
  const double in = beat - start + kSame;
  char text[32];
  std::snprintf(text, sizeof text, ":%d.%.2f", static_cast<int>(in / song.meter) + 1,
                std::fmod(in, song.meter) + 1);
  return name + text;
}

// The step to the neighbour in the same part, 99 when it is more than a beat away.
int StepFrom(const std::vector<const ScoreNote*>& part, size_t at, int direction) {
  const ScoreNote& note = *part[at];
  for (size_t k = at; direction < 0 ? k-- > 0 : ++k < part.size();) {
    if (std::fabs(part[k]->on - note.on) < kSame) continue;
    const double gap = direction < 0 ? note.on - part[k]->off : part[k]->on - note.off;
    return gap < 1.01 ? part[k]->note - note.note : 99;
  }
  return 99;
}

void FindForeign(const Song& song, const Score& score, const std::vector<const ScoreNote*>& part,
                 std::vector<std::string>& found) {
  for (size_t k = 0; k < part.size(); ++k)
    for (size_t c = 0; c < score.chords.size(); ++c) {
      const ScoreNote& note = *part[k];
      const double end = c + 1 < score.chords.size() ? score.chords[c + 1].first : score.beats;
      const double from = std::max(note.on, score.chords[c].first), to = std::min(note.off, end);
      if (to - from <= 0.25 + kSame || score.chords[c].second.Has(note.note)) continue;
      const bool anticipates =
          c + 1 < score.chords.size() && score.chords[c + 1].second.Has(note.note) && to - from < 0.51;
      const int out = std::abs(StepFrom(part, k, 1));
      const bool resolves = out <= 2 && out != 0 && to - from < 1.01;
      if (anticipates || resolves) continue;
      found.push_back(song.instruments[static_cast<size_t>(note.instrument)].name + " " +
                      NoteName(note.note) + " is foreign to " + score.chords[c].second.name + " at " +
                      Place(song, score, from));
    }
}

} // namespace

const Chord& Score::ChordAt(double beat) const {
  if (beat >= beats - kSame) beat -= beats; // ahead of the first chord at the end of a loop
  size_t at = 0;
  while (at + 1 < chords.size() && chords[at + 1].first <= beat + kSame) ++at;
  return chords[at].second;
}

Score PlayOut(const Song& song) {
  Score score;
  for (const std::string& name : song.order) {
    const Section& section = Named(song, name);
    score.marks.emplace_back(score.beats, name);
    for (int b = 0; b < section.bars; ++b)
      for (const auto& [place, chord] : section.chords[static_cast<size_t>(b) % section.chords.size()])
        score.chords.emplace_back(score.beats + (b + place) * song.meter, Raised(chord, section.up));
    score.beats += section.bars * song.meter;
  }
  std::vector<std::vector<int>> voices(song.instruments.size());
  for (const auto& [base, name] : score.marks) {
    Player player(song, Named(song, name), base, score);
    for (size_t i = 0; i < song.instruments.size(); ++i) player.Play(static_cast<int>(i), voices[i]);
  }
  return score;
}

std::vector<std::string> HarshPlaces(const Song& song, const Score& score) {
  std::vector<std::string> found;
  std::vector<std::vector<const ScoreNote*>> parts(song.instruments.size());
  std::vector<const ScoreNote*> all;
  for (const ScoreNote& note : score.notes) {
    if (song.instruments[static_cast<size_t>(note.instrument)].role == "noise") continue;
    parts[static_cast<size_t>(note.instrument)].push_back(&note);
    all.push_back(&note);
  }
  const auto earlier = [](const ScoreNote* a, const ScoreNote* b) { return a->on < b->on; };
  for (auto& part : parts) {
    std::stable_sort(part.begin(), part.end(), earlier);
    FindForeign(song, score, part, found);
  }
  std::stable_sort(all.begin(), all.end(), earlier);
  for (size_t a = 0; a < all.size(); ++a)
    for (size_t b = a + 1; b < all.size() && all[b]->on < all[a]->off; ++b) {
      const int distance = std::abs(all[a]->note - all[b]->note);
      if ((distance != 1 && distance != 13) ||
          std::min(all[a]->off, all[b]->off) - all[b]->on <= 0.25 + kSame)
        continue;
      const auto named = [&](const ScoreNote* note) {
        return song.instruments[static_cast<size_t>(note->instrument)].name + " " + NoteName(note->note);
      };
      found.push_back(named(all[a]) + " rubs against " + named(all[b]) + " at " +
                      Place(song, score, all[b]->on) + " on " + score.ChordAt(all[b]->on).name);
    }
  return found;
}

} // namespace vesk::sound
