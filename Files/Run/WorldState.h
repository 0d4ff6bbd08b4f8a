#pragma once
// The running world as named parts with named fields, for the checksum and for telling two worlds apart.
#include <cstdint>
#include <functional>
#include <string>
#include <utility>
#include <vector>

namespace vesk {

using WorldFieldTexts = std::vector<std::pair<std::string, std::string>>; // name and value, in order

struct WorldPart {
  std::string name;                        // "instance 100040 (obj_x)", "room", "global"
  uint64_t digest;                         // of all fields
  std::function<WorldFieldTexts()> fields; // good until the world changes
};

// Room, backgrounds, views, tiles in their order, instances by id, globals, counters, random state. Nothing
// of a game that runs no room but what is global.
std::vector<WorldPart> World_Parts();
// Of all parts.
uint64_t World_Checksum();

} // namespace vesk
