#pragma once
// Chords, scales and the voices of a chord.
#include <map>
#include <string>
#include <vector>

namespace vesk::sound {

struct Chord {
  std::string name;
  int root = 0, bass = 0;     // 0 to 11, C is 0
  std::vector<int> intervals; // above the root
  bool Has(int note) const;
  // The first of these intervals that the chord has.
  int IntervalOf(const std::vector<int>& wishes, int otherwise) const;
};

// "Ebmaj7/G". Throws std::runtime_error.
Chord ReadChord(const std::string& text);

// "major", "dorian" and so on: the seven steps above the key. Throws std::runtime_error.
const std::vector<int>& Scale(const std::string& name);

// Notes of the chord, rising, from lowest to highest, close to the notes before; empty when none fit. Third
// and seventh come first, the root last.
std::vector<int> VoicesOf(const Chord& chord, int count, int lowest, int highest, bool ninths,
                          const std::vector<int>& before);

std::string NoteName(int note);

} // namespace vesk::sound
