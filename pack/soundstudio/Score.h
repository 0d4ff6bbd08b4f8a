#pragma once
// A song played out: which note sounds when.
#include "pack/soundstudio/Song.h"

namespace vesk::sound {

struct ScoreNote {
  int instrument = 0, note = 0;
  double on = 0, off = 0; // beats
  double velocity = 0.8, cutoffOctaves = 0;
  bool slide = false;
};

struct ScoreHit {
  int instrument = 0;
  double on = 0, velocity = 0; // beats
};

struct Score {
  std::vector<ScoreNote> notes;
  std::vector<ScoreHit> hits;
  std::vector<std::pair<double, Chord>> chords;      // from a beat on
  std::vector<std::pair<double, std::string>> marks; // sections, from a beat on
  double beats = 0;
  const Chord& ChordAt(double beat) const;
};

// Throws std::runtime_error, in words, with the file.
Score PlayOut(const Song& song);

// What ears would stumble over, one sentence each: notes longer than a sixteenth that are foreign to the
// chord and neither pass nor resolve by step, and minor seconds or ninths between two parts. Parts with the
// role "noise" are left out.
std::vector<std::string> HarshPlaces(const Song& song, const Score& score);

} // namespace vesk::sound
