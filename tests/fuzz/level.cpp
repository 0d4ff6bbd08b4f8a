// Any text as a level file: it is refused in words, or it is checked, played and edited without a fatal
// report. The mutator knows the form of a level, so that most inputs reach the construction.
#include "Files/Base/Error.h"
#include "Files/Function/Function_Data_Structures.h"
#include "Files/Function/Function_Math.h"
#include "Files/IO/IO.h"
#include "Platform/Hash.h"
#include "apps/container/EmbeddedContainer.h"
#include "game/level/catalogue.h"
#include "game/level/level_build.h"
#include "game/level/level_check.h"
#include "game/play/start.h"
#include "sim/Simulation.h"

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <fstream>
#include <memory>
#include <random>
#include <string>
#include <string_view>
#include <vector>

using namespace vesk;

extern "C" size_t LLVMFuzzerMutate(uint8_t* data, size_t size, size_t maxSize);

namespace {

constexpr int64_t kOpeningFrames = 40; // past the fade, so that everything has woken
constexpr int kStrokes = 8;            // of all keys, by chance
constexpr int64_t kStrokeFrames = 10;
constexpr int64_t kEditedFrames = 4;
constexpr int32_t kSeed = 1; // every input meets the same chance

Simulation& Game() {
  static const auto game = [] {
    SimulationSettings settings;
    settings.container = {EmbeddedContainer(), EmbeddedContainerSize()};
    auto made = std::make_unique<Simulation>(settings);
    if (const std::string problem = made->Start(); !problem.empty()) {
      std::fprintf(stderr, "%s\n", problem.c_str());
      std::abort();
    }
    return made;
  }();
  return *game;
}

void MustRun(const char* doing) {
  if (Game().FatalReport().empty() && Game().Running()) return;
  std::fprintf(stderr, "%s a level ended the game: %s\n", doing, Game().FatalReport().c_str());
  std::abort();
}

using Chance = std::minstd_rand;

size_t Below(Chance& chance, size_t bound) { return chance() % std::max<size_t>(bound, 1); }

void PlayByChance(Chance chance) {
  Game().Step(kOpeningFrames);
  constexpr int kKeys[] = {vk_left, vk_right, vk_up, vk_down, 'X', 'Z', vk_space};
  for (int stroke = 0; stroke < kStrokes; ++stroke) {
    for (const int key : kKeys) Game().Key(key, Below(chance, 2) == 0);
    Game().Step(kStrokeFrames);
  }
  for (const int key : kKeys) Game().Key(key, false);
}

// ---- what levels are made of ----

std::string SomePair(Chance& chance, size_t bound) {
  return std::to_string(Below(chance, bound)) + "," + std::to_string(Below(chance, bound));
}

std::string SomeCode(Chance& chance) {
  switch (Below(chance, 8)) {
  case 0: return SomePair(chance, 40); // of the atlas
  case 1: return std::string(MarkerCatalogue()[Below(chance, MarkerCatalogue().size())].code);
  case 2: return std::string(ModifierCatalogue()[Below(chance, ModifierCatalogue().size())].code);
  case 3: return "TEXT:Main,there";
  case 4: return "DESTINATION:there";
  case 5:
    return Below(chance, 2) ? std::string(MusicLabels()[Below(chance, MusicLabels().size())].label)
                            : std::string(BackgroundLabels()[Below(chance, BackgroundLabels().size())].label);
  default: return std::string(ObjectCatalogue()[Below(chance, ObjectCatalogue().size())].code);
  }
}

std::string SomeNumber(Chance& chance) {
  static constexpr const char* kNumbers[] = {"0",  "1",   "14",     "24",    "40",
                                             "-1", "0.5", "100000", "1e300", "2147483648"};
  return kNumbers[Below(chance, std::size(kNumbers))];
}

// The ends of the quoted text that begins at or behind a place; none: past the end.
struct Quoted {
  size_t begin, end;
};
Quoted QuotedFrom(const std::string& text, size_t from) {
  const size_t open = text.find('"', from);
  const size_t close = open == text.npos ? text.npos : text.find('"', open + 1);
  return close == text.npos ? Quoted{text.size(), text.size()} : Quoted{open + 1, close};
}

void ReplaceText(std::string& text, Chance& chance) {
  const Quoted place = QuotedFrom(text, Below(chance, text.size()));
  if (place.begin >= text.size()) return;
  const std::string word = Below(chance, 3) ? SomeCode(chance) : SomePair(chance, 26);
  text.replace(place.begin, place.end - place.begin, word);
}

void ReplaceNumber(std::string& text, Chance& chance) {
  constexpr std::string_view kDigits = "-0123456789.e";
  size_t begin = text.find(':', Below(chance, text.size()));
  if (begin == text.npos || ++begin >= text.size() || kDigits.find(text[begin]) == kDigits.npos) return;
  const size_t end = std::min(text.find_first_not_of(kDigits, begin), text.size());
  text.replace(begin, end - begin, SomeNumber(chance));
}

// A new cell in front of some map.
void InsertCell(std::string& text, Chance& chance) {
  const size_t open = text.find('{', Below(chance, text.size()));
  if (open == text.npos) return;
  const bool empty = text.find_first_not_of(' ', open + 1) == text.find('}', open);
  text.insert(open + 1, "\"" + SomePair(chance, 26) + "\":\"" + SomeCode(chance) + (empty ? "\"" : "\","));
}

} // namespace

extern "C" size_t LLVMFuzzerCustomMutator(uint8_t* data, size_t size, size_t maxSize, unsigned seed) {
  Chance chance(seed + 1);
  std::string text(reinterpret_cast<const char*>(data), size);
  for (size_t changes = 1 + Below(chance, 4); changes > 0; --changes) switch (Below(chance, 8)) {
    case 0:
    case 1:
    case 2: InsertCell(text, chance); break;
    case 3:
    case 4: ReplaceText(text, chance); break;
    case 5: ReplaceNumber(text, chance); break;
    default: break;
    }
  if (text.size() > maxSize || std::string_view(reinterpret_cast<const char*>(data), size) == text)
    return LLVMFuzzerMutate(data, size, maxSize);
  std::memcpy(data, text.data(), text.size());
  return text.size();
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  Simulation& game = Game();
  const std::string_view text(reinterpret_cast<const char*>(data), size);
  std::string why;
  if (const int32_t root = ReadLevelTree(text, why); root >= 0) {
    CheckLevel(root);
    CountLevel(root);
    ds_map_destroy(root);
  }
  const std::string file = game.Directory() + "/Level/fuzzed.json";
  std::ofstream(file, std::ios::binary) << text;
  random_set_seed(kSeed);
  if (start_level(file, "Main").empty()) {
    PlayByChance(Chance(Hash_Text(text)));
    MustRun("Playing");
    if (!start_editing(file, "Main").empty()) std::abort();
    game.Step(kEditedFrames);
    MustRun("Editing");
  } else {
    game.Step();
    MustRun("Refusing");
  }
  return 0;
}
