#pragma once
// Scripts, objects and code as the game's own tables have them.
#include "pack/ContainerWriter.h"

#include <cstdint>
#include <string>

namespace vesk {

void AddGameRecords(pack::Game& game);
int32_t GameCodeCount();
int FindGameObject(const std::string& symbol); // -1 none
int FindGameCode(const std::string& name);     // of a room's function: index in the code table, -1 none

} // namespace vesk
