#pragma once
// Sources of songs, *.song: instruments, sections of parts in bars, and the order of the sections.
#include "pack/soundstudio/Harmony.h"
#include "pack/soundstudio/Instrument.h"

#include <filesystem>
#include <map>
#include <set>

namespace vesk::sound {

// What a step asks for; chords and scale decide later which note it is.
struct Tone {
  enum class Kind { note, degree, chordTone, voices } kind = Kind::note;
  int value = 0; // note number; degree from 1; interval of the chord, 0 its bass; voice from 1, 0 all
  int shift = 0; // semitones, with octaves
};

// One written step: where it stands in its bar and how long it is, both as shares of the bar. Without tones a
// rest.
struct Step {
  double place = 0, length = 0;
  double velocity = 0.8;
  bool tie = false, slide = false, shortened = false, ahead = false; // ahead: of the chord that comes next
  std::vector<Tone> tones;
};

struct Bar {
  std::vector<Step> steps;
  int grid = 0; // steps a bar is divided in
};

struct Part {
  std::vector<Bar> bars;
};

// From the first to the last bar of a section.
struct Ramp {
  double from = 1, to = 1;
};

struct Section {
  std::string name;
  int bars = 0, up = 0;
  std::vector<std::vector<std::pair<double, Chord>>> chords; // of each bar: place, chord
  std::map<std::string, Part> parts;
  std::map<std::string, Ramp> strength; // factor of velocities
  std::map<std::string, Ramp> opening;  // octaves added to cutoffs
  std::set<std::string> written;        // parts that stand in this section itself
};

struct Song {
  std::string name, file;
  double tempo = 120;  // beats a minute
  double swing = 0.5;  // where the second half of a beat begins
  double target = -16; // loudness
  double humanSeconds = 0, humanStrength = 0;
  double reverbSeconds = 1.2, reverbDamping = 0.4;
  double echoBeats = 0.75, echoFeedback = 0.3, echoDamping = 0.4;
  int meter = 4, key = 0;
  bool loop = true;
  std::vector<int> scale = {0, 2, 4, 5, 7, 9, 11};
  std::vector<Instrument> instruments;
  std::vector<Section> sections;
  std::vector<std::string> order;
};

// Throws std::runtime_error, in words, with file and line.
Song ReadSong(const std::filesystem::path& file);

} // namespace vesk::sound
