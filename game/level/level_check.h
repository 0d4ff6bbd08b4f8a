#pragma once
// What is wrong with a level tree, in words, and what is in it.
#include <cstdint>
#include <map>
#include <string>
#include <string_view>
#include <vector>

namespace vesk {

struct LevelReport {
  std::vector<std::string> faults;         // each a sentence with section, layer and cell
  std::map<std::string, int> withoutRules; // codes whose things stand there without rules yet, and how many
};
// `root`: a map of sections as global.leveldata holds it.
LevelReport CheckLevel(int32_t root);

struct SectionCounts {
  std::string name;
  int32_t width = 0, height = 0; // cells
  std::string music, background, waterColour;
  bool rain = false, darkness = false;
  int32_t waterLevel = 0;                                     // cells
  std::map<std::string, int32_t> layers;                      // entries, by layer
  std::map<std::string, int32_t> objects, modifiers, markers; // entries, by code; texts count as their prefix
};
// In the order of the file.
std::vector<SectionCounts> CountLevel(int32_t root);

// The level of a file as a tree; -1 with `why` when it is none. The caller destroys the map.
int32_t ReadLevelTree(std::string_view file, std::string& why);

} // namespace vesk
