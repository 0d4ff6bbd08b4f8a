#include "pack/soundstudio/Harmony.h"

#include <algorithm>
#include <cstdlib>
#include <stdexcept>

namespace vesk::sound {
namespace {

const std::map<std::string, std::vector<int>>& Qualities() {
  static const std::map<std::string, std::vector<int>> kQualities = {{"", {0, 4, 7}},
                                                                     {"m", {0, 3, 7}},
                                                                     {"5", {0, 7}},
                                                                     {"6", {0, 4, 7, 9}},
                                                                     {"m6", {0, 3, 7, 9}},
                                                                     {"69", {0, 4, 7, 9, 14}},
                                                                     {"7", {0, 4, 7, 10}},
                                                                     {"maj7", {0, 4, 7, 11}},
                                                                     {"m7", {0, 3, 7, 10}},
                                                                     {"mM7", {0, 3, 7, 11}},
                                                                     {"9", {0, 4, 7, 10, 14}},
                                                                     {"m9", {0, 3, 7, 10, 14}},
                                                                     {"maj9", {0, 4, 7, 11, 14}},
                                                                     {"13", {0, 4, 7, 10, 14, 21}},
                                                                     {"7b9", {0, 4, 7, 10, 13}},
                                                                     {"m7b5", {0, 3, 6, 10}},
                                                                     {"dim7", {0, 3, 6, 9}},
                                                                     {"dim", {0, 3, 6}},
                                                                     {"aug", {0, 4, 8}},
                                                                     {"sus4", {0, 5, 7}},
                                                                     {"sus2", {0, 2, 7}},
                                                                     {"7sus4", {0, 5, 7, 10}},
                                                                     {"9sus4", {0, 5, 7, 10, 14}},
                                                                     {"add9", {0, 4, 7, 14}},
                                                                     {"madd9", {0, 3, 7, 14}},
                                                                     {"maj7#11", {0, 4, 7, 11, 18}},
                                                                     {"7#9", {0, 4, 7, 10, 15}}};
  return kQualities;
}

// The note a name begins with, and how many characters it took.
int ReadRoot(const std::string& text, size_t& used) {
  static constexpr int kSteps[7] = {9, 11, 0, 2, 4, 5, 7};
  if (text.empty() || text[0] < 'A' || text[0] > 'G')
    throw std::runtime_error("\"" + text + "\" is no chord");
  int root = kSteps[text[0] - 'A'];
  used = 1;
  if (text.size() > 1 && (text[1] == '#' || text[1] == 'b')) root += text[1] == '#' ? 1 : -1, used = 2;
  return (root + 12) % 12;
}

// What a set of notes costs: far from the middle of the range, narrow, far from the notes before.
double Cost(const std::vector<int>& notes, int lowest, int highest, const std::vector<int>& before) {
  double cost = std::abs((notes.front() + notes.back()) - (lowest + highest)) * 0.075;
  for (size_t a = 0; a < notes.size(); ++a)
    for (size_t b = a + 1; b < notes.size(); ++b) {
      if (notes[b] - notes[a] == 1) cost += b + 1 == notes.size() ? 7 : 3;
      if (notes[b] - notes[a] == 13) cost += 8;
    }
  for (size_t k = 0; k < notes.size() && !before.empty(); ++k)
    cost += std::abs(notes[k] - before[std::min(k, before.size() - 1)]);
  return cost;
}

} // namespace

bool Chord::Has(int note) const {
  const int tone = ((note % 12) + 12) % 12;
  return tone == bass || std::any_of(intervals.begin(), intervals.end(),
                                     [&](int interval) { return (root + interval) % 12 == tone; });
}

int Chord::IntervalOf(const std::vector<int>& wishes, int otherwise) const {
  for (const int wish : wishes)
    if (std::find(intervals.begin(), intervals.end(), wish) != intervals.end()) return wish;
  return otherwise;
}

Chord ReadChord(const std::string& text) {
  Chord chord;
  chord.name = text;
  size_t used = 0;
  const size_t slash = text.find('/');
  const std::string upper = text.substr(0, slash);
  chord.root = chord.bass = ReadRoot(upper, used);
  const auto quality = Qualities().find(upper.substr(used));
  if (quality == Qualities().end()) throw std::runtime_error("\"" + text + "\" is no chord");
  chord.intervals = quality->second;
  if (slash != std::string::npos) {
    const std::string lower = text.substr(slash + 1);
    chord.bass = ReadRoot(lower, used);
    if (used != lower.size()) throw std::runtime_error("\"" + text + "\" is no chord");
  }
  return chord;
}

const std::vector<int>& Scale(const std::string& name) {
  static const std::map<std::string, std::vector<int>> kScales = {
      {"major", {0, 2, 4, 5, 7, 9, 11}},      {"minor", {0, 2, 3, 5, 7, 8, 10}},
      {"dorian", {0, 2, 3, 5, 7, 9, 10}},     {"lydian", {0, 2, 4, 6, 7, 9, 11}},
      {"mixolydian", {0, 2, 4, 5, 7, 9, 10}}, {"phrygian", {0, 1, 3, 5, 7, 8, 10}},
      {"harmonic", {0, 2, 3, 5, 7, 8, 11}},   {"blues", {0, 2, 3, 4, 7, 9, 10}}};
  const auto found = kScales.find(name);
  if (found == kScales.end()) throw std::runtime_error("\"" + name + "\" is no scale");
  return found->second;
}

std::vector<int> VoicesOf(const Chord& chord, int count, int lowest, int highest, bool ninths,
                          const std::vector<int>& before) {
  std::vector<int> order;
  const auto take = [&](std::initializer_list<int> wishes) {
    for (const int wish : wishes)
      if (std::find(chord.intervals.begin(), chord.intervals.end(), wish) != chord.intervals.end())
        order.push_back(wish);
  };
  take({3, 4, 5, 2});
  take({10, 11, 9});
  if (ninths) take({13, 14, 15, 21, 18});
  take({6, 8, 7});
  take({0});
  const size_t voices = std::min(static_cast<size_t>(count), order.size());
  std::vector<int> classes;
  for (size_t i = 0; i < voices; ++i) classes.push_back((chord.root + order[i]) % 12);
  std::sort(classes.begin(), classes.end());
  std::vector<int> best;
  double least = 0;
  do {
    for (int first = lowest; first <= highest; ++first) {
      if (first % 12 != classes[0]) continue;
      std::vector<int> notes{first};
      for (size_t k = 1; k < voices; ++k) {
        int next = notes.back() + 1;
        while (next % 12 != classes[k]) ++next;
        notes.push_back(next);
      }
      if (notes.back() > highest) continue;
      const double cost = Cost(notes, lowest, highest, before);
      if (best.empty() || cost < least) best = notes, least = cost;
    }
  } while (std::next_permutation(classes.begin(), classes.end()));
  return best;
}

std::string NoteName(int note) {
  static constexpr const char* kNames[12] = {"C", "C#", "D", "Eb", "E", "F", "F#", "G", "Ab", "A", "Bb", "B"};
  return kNames[((note % 12) + 12) % 12] + std::to_string(note / 12 - 1);
}

} // namespace vesk::sound
