#include "pack/soundstudio/Song.h"

#include "pack/TextSource.h"

#include <algorithm>
#include <stdexcept>

namespace vesk::sound {
namespace {

using Words = std::vector<std::string>;
constexpr double kLongest = 300; // seconds

Tone ReadTone(std::string text) {
  Tone tone;
  while (!text.empty() && (text.back() == '<' || text.back() == '>')) {
    tone.shift += text.back() == '>' ? 12 : -12;
    text.pop_back();
  }
  const auto digits = [&](size_t from) {
    size_t end = from;
    while (end < text.size() && text[end] >= '0' && text[end] <= '9')
      tone.value = tone.value * 10 + (text[end++] - '0');
    return end;
  };
  size_t end = 0;
  if (const int note = NoteNumber(text); note >= 0) {
    tone.value = note;
    return tone;
  }
  if (!text.empty() && text[0] == 'r') {
    tone.kind = Tone::Kind::chordTone;
    end = digits(1);
  } else if (!text.empty() && text[0] == 'v') {
    tone.kind = Tone::Kind::voices;
    end = digits(1);
  } else if ((end = digits(0)) > 0) {
    tone.kind = Tone::Kind::degree;
    for (; end < text.size() && (text[end] == '#' || text[end] == 'b'); ++end)
      tone.shift += text[end] == '#' ? 1 : -1;
  }
  if (text.empty() || end != text.size() || end == 0 || tone.value > 40)
    throw std::runtime_error("\"" + text + "\" is no step");
  return tone;
}

Step ReadStep(std::string word) {
  Step step;
  if (word == ".") return step;
  if (word == "-") {
    step.tie = true;
    return step;
  }
  for (; !word.empty(); word.pop_back()) {
    const char mark = word.back();
    if (mark == '!')
      step.velocity = 1;
    else if (mark == '?')
      step.velocity = 0.5;
    else if (mark == '~')
      step.slide = true;
    else if (mark == '\'')
      step.shortened = true;
    else if (mark == '^')
      step.ahead = true;
    else
      break;
  }
  for (const std::string& tone : Split(word, '+')) step.tones.push_back(ReadTone(tone));
  return step;
}

// Steps of equal length; "( )" divides one of them again.
void AddSteps(const Words& words, size_t& at, double place, double length, std::vector<Step>& steps,
              int& count) {
  struct Item {
    std::string word;
    Words inner;
  };
  std::vector<Item> items;
  while (at < words.size()) {
    if (words[at] != "(") {
      if (words[at] == ")") throw std::runtime_error("a \")\" without \"(\"");
      items.push_back({words[at++], {}});
      continue;
    }
    int depth = 1;
    Words inner;
    for (++at; at < words.size() && depth > 0; ++at) {
      depth += words[at] == "(" ? 1 : words[at] == ")" ? -1 : 0;
      if (depth > 0) inner.push_back(words[at]);
    }
    if (depth > 0 || inner.empty()) throw std::runtime_error("a \"(\" without steps and \")\"");
    items.push_back({"", inner});
  }
  count = static_cast<int>(items.size());
  const double width = length / std::max(1, count);
  for (size_t k = 0; k < items.size(); ++k) {
    const double here = place + static_cast<double>(k) * width;
    if (!items[k].word.empty()) {
      Step& step = steps.emplace_back(ReadStep(items[k].word));
      step.place = here, step.length = width;
      continue;
    }
    size_t inside = 0;
    int ignored = 0;
    AddSteps(items[k].inner, inside, here, width, steps, ignored);
  }
}

Bar DrumBar(const Words& words) {
  std::string text;
  for (const std::string& word : words) text += word;
  Bar bar;
  bar.grid = static_cast<int>(text.size());
  for (size_t i = 0; i < text.size(); ++i) {
    if (text[i] == '.') continue;
    if (std::string("Xxo123456789").find(text[i]) == std::string::npos)
      throw std::runtime_error(std::string("\"") + text[i] + "\" is no stroke: X x o 1 to 9 or .");
    Step& step = bar.steps.emplace_back();
    step.place = static_cast<double>(i) / bar.grid, step.length = 1.0 / bar.grid;
    step.velocity = text[i] == 'X' ? 1 : text[i] == 'x' ? 0.75 : text[i] == 'o' ? 0.5 : (text[i] - '0') / 9.0;
  }
  return bar;
}

class Reader {
public:
  explicit Reader(Song& song) : m_song(song) {}

  void Line(pack::SourceLine& line) {
    const std::string word = line.Word("a word");
    Words rest;
    while (!line.AtEnd()) rest.push_back(line.Word("a word"));
    if (Setting(word, rest)) return;
    if (word == "inst" || word == "drum") return AddInstrument(rest, word == "drum");
    if (word == "section") return AddSection(rest);
    if (word == "order") return void(m_song.order.insert(m_song.order.end(), rest.begin(), rest.end()));
    if (m_song.sections.empty()) throw std::runtime_error("\"" + word + "\" is unknown here");
    Section& section = m_song.sections.back();
    if (word == "vel" || word == "open")
      return AddRamp(rest, word == "vel" ? section.strength : section.opening);
    if (word == "chords") return AddChords(section, rest);
    AddBars(section, Named(word), rest);
  }

  void Finish() const {
    if (m_song.order.empty()) throw std::runtime_error("a song has an order");
    double beats = 0;
    for (const std::string& name : m_song.order) beats += FindSection(name).bars * m_song.meter;
    if (beats * 60 / m_song.tempo > kLongest)
      throw std::runtime_error("a song is not longer than 300 seconds");
    for (const Section& section : m_song.sections) {
      const std::string where = "section " + section.name + ": ";
      if (section.chords.empty()) throw std::runtime_error(where + "no chords");
      const auto check = [&](size_t bars, const std::string& what) {
        if (section.bars % static_cast<int>(bars) != 0)
          throw std::runtime_error(where + what + " has " + std::to_string(bars) +
                                   " bars, which don't divide " + std::to_string(section.bars));
      };
      check(section.chords.size(), "chords");
      for (const auto& [name, part] : section.parts) check(part.bars.size(), name);
    }
  }

private:
  static double At(const Words& words, size_t index) {
    if (index >= words.size()) throw std::runtime_error("a number is missing");
    return Number(words[index]);
  }

  bool Setting(const std::string& word, const Words& rest) {
    if (word == "song")
      m_song.name = rest.at(0);
    else if (word == "tempo")
      m_song.tempo = std::clamp(At(rest, 0), 20.0, 400.0);
    else if (word == "swing")
      m_song.swing = std::clamp(At(rest, 0), 0.3, 0.8);
    else if (word == "target")
      m_song.target = At(rest, 0);
    else if (word == "meter")
      m_song.meter = std::clamp(static_cast<int>(At(rest, 0)), 1, 12);
    else if (word == "once")
      m_song.loop = false;
    else if (word == "human")
      m_song.humanSeconds = At(rest, 0) / 1000, m_song.humanStrength = At(rest, 1);
    else if (word == "reverb")
      m_song.reverbSeconds = std::clamp(At(rest, 0), 0.1, 20.0), m_song.reverbDamping = At(rest, 1);
    else if (word == "echo")
      m_song.echoBeats = std::clamp(At(rest, 0), 0.01, 16.0), m_song.echoFeedback = At(rest, 1),
      m_song.echoDamping = At(rest, 2);
    else if (word == "key")
      m_song.key = ReadChord(rest.at(0)).root, m_song.scale = Scale(rest.size() > 1 ? rest[1] : "major");
    else
      return false;
    return true;
  }

  void AddInstrument(const Words& rest, bool drum) {
    Instrument instrument;
    instrument.name = rest.empty() ? "" : rest[0];
    if (instrument.name.empty() || Find(instrument.name))
      throw std::runtime_error("an instrument has a name of its own");
    for (size_t i = 1; i < rest.size(); ++i) Apply(instrument, rest[i]);
    if (drum != !instrument.drum.empty())
      throw std::runtime_error("a drum has type=, an instrument has none");
    if (!drum && instrument.first.wave == Wave::none) throw std::runtime_error("an instrument has osc=");
    m_song.instruments.push_back(std::move(instrument));
  }

  const Instrument* Find(const std::string& name) const {
    for (const Instrument& instrument : m_song.instruments)
      if (instrument.name == name) return &instrument;
    return nullptr;
  }
  const Instrument& Named(const std::string& name) const {
    const Instrument* found = Find(name);
    if (!found) throw std::runtime_error("\"" + name + "\" is no instrument");
    return *found;
  }
  const Section& FindSection(const std::string& name) const {
    for (const Section& section : m_song.sections)
      if (section.name == name) return section;
    throw std::runtime_error("there is no section \"" + name + "\"");
  }

  void AddSection(const Words& rest) {
    Section section;
    const std::string name = rest.empty() ? "" : rest[0];
    const int bars = static_cast<int>(At(rest, 1));
    if (bars < 1 || bars > 64) throw std::runtime_error("a section has 1 to 64 bars");
    int up = 0;
    for (size_t i = 2; i + 1 < rest.size(); i += 2) {
      if (rest[i] == "like")
        section = FindSection(rest[i + 1]);
      else if (rest[i] == "up")
        up = static_cast<int>(At(rest, i + 1));
      else
        throw std::runtime_error("\"" + rest[i] + "\" is neither like nor up");
    }
    section.name = name, section.bars = bars, section.up += up;
    section.written.clear();
    m_song.sections.push_back(std::move(section));
  }

  void AddRamp(const Words& rest, std::map<std::string, Ramp>& ramps) const {
    const std::string name = Named(rest.empty() ? "" : rest[0]).name;
    const double from = At(rest, 1);
    ramps[name] = {from, rest.size() > 2 ? At(rest, 2) : from};
  }

  // Words between bars "|".
  static std::vector<Words> Bars(const Words& rest) {
    std::vector<Words> bars(1);
    for (const std::string& word : rest)
      if (word == "|")
        bars.emplace_back();
      else
        bars.back().push_back(word);
    bars.erase(std::remove_if(bars.begin(), bars.end(), [](const Words& bar) { return bar.empty(); }),
               bars.end());
    return bars;
  }

  static void AddChords(Section& section, const Words& rest) {
    if (section.written.insert("chords").second) section.chords.clear();
    for (const Words& words : Bars(rest)) {
      std::vector<std::pair<double, Chord>> bar;
      for (size_t i = 0; i < words.size(); ++i) {
        const double place = static_cast<double>(i) / static_cast<double>(words.size());
        if (words[i] != "%") {
          bar.emplace_back(place, ReadChord(words[i]));
          continue;
        }
        if (bar.empty() && section.chords.empty()) throw std::runtime_error("\"%\" repeats what isn't there");
        const Chord chord = bar.empty() ? section.chords.back().back().second : bar.back().second;
        bar.emplace_back(place, chord);
      }
      section.chords.push_back(std::move(bar));
    }
  }

  void AddBars(Section& section, const Instrument& instrument, const Words& rest) const {
    Part& part = section.parts[instrument.name];
    if (section.written.insert(instrument.name).second) part = {};
    if (rest == Words{"none"}) {
      section.parts.erase(instrument.name);
      return;
    }
    for (const Words& words : Bars(rest)) {
      const std::string& first = words[0];
      if (words.size() == 1 && first == "%") {
        if (part.bars.empty()) throw std::runtime_error("\"%\" repeats what isn't there");
        part.bars.push_back(part.bars.back());
      } else if (words.size() == 1 && first.size() == 2 && first[0] == 'x' && first[1] >= '2' &&
                 first[1] <= '9') {
        Repeat(part, first[1] - '0');
      } else {
        part.bars.push_back(ReadBar(instrument, words));
      }
    }
    if (part.bars.empty()) throw std::runtime_error(instrument.name + " has no bars");
  }

  static void Repeat(Part& part, int times) {
    const std::vector<Bar> bars = part.bars;
    for (int i = 1; i < times; ++i) part.bars.insert(part.bars.end(), bars.begin(), bars.end());
  }

  Bar ReadBar(const Instrument& instrument, const Words& words) const {
    Bar bar;
    if (instrument.drum.empty()) {
      size_t at = 0;
      AddSteps(words, at, 0, 1, bar.steps, bar.grid);
    } else {
      bar = DrumBar(words);
    }
    if (bar.grid % m_song.meter != 0)
      throw std::runtime_error("a bar of " + std::to_string(bar.grid) + " steps in a meter of " +
                               std::to_string(m_song.meter));
    return bar;
  }

  Song& m_song;
};

} // namespace

Song ReadSong(const std::filesystem::path& file) {
  Song song;
  song.file = file.string();
  Reader reader(song);
  for (pack::SourceLine& line : pack::ReadSource(file)) {
    try {
      reader.Line(line);
    } catch (const std::exception& error) { line.Fail(error.what()); }
  }
  try {
    reader.Finish();
  } catch (const std::runtime_error& error) { throw std::runtime_error(song.file + ": " + error.what()); }
  return song;
}

} // namespace vesk::sound
